// lumetra gallery: a page of the images of a data set.

#include "apps/cli/commands.h"
#include "apps/cli/gallery_page.h"
#include "apps/cli/options.h"
#include "apps/cli/progress.h"
#include "apps/cli/render_spec.h"
#include "apps/cli/thumbnails.h"
#include "apps/common/error.h"
#include "apps/common/messages.h"
#include "apps/common/settings.h"
#include "imageio/output_conflicts.h"

namespace lumetra {
namespace {

Gallery galleryOf(const GalleryOptions& options) {
    const QString& folder = options.folder;
    LatestEntries entries;
    bool hasLines = false;
    for (const QString& log : options.logs)
        hasLines |= addLatestEntries(entries, log, folder);
    Gallery gallery;
    gallery.title = options.title.isEmpty() ? folderTitle(folder) : options.title;
    gallery.isList = options.list;
    gallery.tiles = findImages(folder);
    if (entries.empty() && hasLines)
        printError(QStringLiteral("no image in %1 is in the logs, whose paths are relative to the "
                                  "folder of their run")
                       .arg(folder));
    addLogged(gallery.tiles, folder, entries);
    gallery.legend = commonLegend(entries);
    if (!options.settings.isEmpty()) {
        const Settings settings = readSettings(options.settings, DyeList());
        gallery.legend = legendOf(settings.channels, {});
        if (const auto& measured = settings.measured)
            gallery.measured = QStringLiteral("Contrast limits measured over %1 files (%2)")
                                   .arg(measured->files)
                                   .arg(measured->method);
    }
    return gallery;
}

QStringList filesRead(const Gallery& gallery, const GalleryOptions& options) {
    QStringList files = QStringList(options.logs) << options.settings;
    for (const Tile& tile : gallery.tiles)
        files << tile.file;
    return files;
}

} // namespace

int runGallery(const GalleryOptions& options) {
    const QString& output = options.output.file;
    checkPage(output, existingOf(options.output));
    Gallery gallery = galleryOf(options);
    if (gallery.tiles.empty()) {
        printError(QStringLiteral("there is no image in %1").arg(options.folder));
        return nothingMatched;
    }
    checkOutputConflicts({output, options.progress}, filesRead(gallery, options));
    requireFolders(output);
    {
        Progress progress(QStringLiteral("thumbnails"), static_cast<int>(gallery.tiles.size()),
                          options.output.quiet, options.progress);
        Thumbnails(output, options.folder).make(gallery.tiles, options.jobs, progress);
    }
    return writePage(gallery, options.output);
}

} // namespace lumetra
