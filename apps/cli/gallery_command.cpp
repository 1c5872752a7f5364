// lumetra gallery: a page of the images of a data set.

#include "apps/cli/commands.h"
#include "apps/cli/gallery_page.h"
#include "apps/cli/options.h"
#include "apps/cli/progress.h"
#include "apps/cli/render_spec.h"
#include "apps/cli/signals.h"
#include "apps/cli/workers.h"
#include "apps/common/error.h"
#include "apps/common/messages.h"
#include "apps/common/settings.h"
#include "imageio/image_file.h"
#include "imageio/image_writer.h"
#include "imageio/output_conflicts.h"
#include "render/shrink.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace lumetra {
namespace {

/// An image small enough for a thousand of them on a page.
cv::Mat reduced(const cv::Mat& image) {
    constexpr int side = 256;
    const double scale = double(side) / std::max(image.cols, image.rows);
    const auto shorter = [&](int length) { return std::max(cvRound(length * scale), 1); };
    cv::Mat small = scale < 1 ? cv::Mat() : image;
    if (scale < 1)
        shrink(image, {shorter(image.cols), shorter(image.rows)}, small);
    if (small.depth() == CV_16U)
        small.convertTo(small, CV_8U, 1 / 257.0);
    return small;
}

/// Makes a thumbnail, unless there is one of this very image: it bears the image's time.
void makeThumbnail(const QString& file, const QString& thumbnail) {
    const QDateTime time = QFileInfo(file).lastModified();
    if (QFileInfo(thumbnail).lastModified() == time)
        return;
    const cv::Mat small = reduced(ImageFile(file).page(1));
    throwIfInterrupted();
    QDir().mkpath(QFileInfo(thumbnail).path()); // what goes wrong, writing tells
    writeImage(thumbnail, small, Existing::replace);
    QFile written(thumbnail);
    if (written.open(QIODevice::ReadWrite))
        written.setFileTime(time, QFileDevice::FileModificationTime);
}

void makeThumbnails(Gallery& gallery, const GalleryOptions& options) {
    const QDir thumbnails(thumbnailFolder(options.output.file));
    Progress progress(QStringLiteral("thumbnails"), static_cast<int>(gallery.tiles.size()),
                      options.output.quiet, options.progress);
    const auto makeWorker = [&] {
        return [&](std::size_t i) {
            Tile& tile = gallery.tiles[i];
            if (tile.file.isEmpty())
                return progress.fieldDone();
            const QString thumbnail =
                thumbnails.filePath(nameBelow(options.folder, tile.file) + QStringLiteral(".jpg"));
            try {
                makeThumbnail(tile.file, thumbnail);
                tile.thumbnail = thumbnail;
                progress.fieldDone();
            } catch (const Interrupted&) {
                throw;
            } catch (...) {
                tile.problem = currentExceptionText();
                tile.isBroken = true;
                progress.fieldFailed();
            }
        };
    };
    runWorkers(options.jobs, gallery.tiles.size(), makeWorker, [&] { progress.tick(); });
    throwIfInterrupted();
}

Gallery galleryOf(const GalleryOptions& options) {
    const QString& folder = options.folder;
    LatestEntries entries;
    bool hasLines = false;
    for (const QString& log : options.logs)
        hasLines |= addLatestEntries(entries, log, folder);
    Gallery gallery;
    gallery.title =
        options.title.isEmpty() ? QDir(folder).absolutePath().section('/', -1) : options.title;
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

int printResult(const Gallery& gallery, const GalleryOptions& options) {
    int status = done;
    std::size_t problems = 0;
    for (const Tile& tile : gallery.tiles) {
        problems += tile.problem.isEmpty() ? 0 : 1;
        if (!tile.isBroken)
            continue;
        status = failed;
        printError(tile.problem);
    }
    if (!options.output.quiet)
        printError(
            QStringLiteral("%1: %2, %3 of them failed")
                .arg(options.output.file, plural(gallery.tiles.size(), QStringLiteral("image")))
                .arg(problems));
    return status;
}

/// Makes the folders of the page and of its thumbnails.
void requireFolders(const QString& page) {
    for (const QString& folder : {QFileInfo(page).path(), thumbnailFolder(page)})
        if (!QDir().mkpath(folder) || !QFileInfo(folder).isWritable())
            throw Error(QStringLiteral("%1: is not a folder that can be written").arg(folder));
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
    const QString extension = QFileInfo(output).suffix().toLower();
    if (extension != QLatin1String("html") && extension != QLatin1String("htm"))
        throw Error(QStringLiteral("%1: a gallery is written as .html").arg(output));
    checkOutput(output, {}, existingOf(options.output));
    Gallery gallery = galleryOf(options);
    if (gallery.tiles.empty()) {
        printError(QStringLiteral("there is no image in %1").arg(options.folder));
        return nothingMatched;
    }
    checkOutputConflicts({output, options.progress}, filesRead(gallery, options));
    requireFolders(output);
    makeThumbnails(gallery, options);
    writeBytes(output, galleryPage(gallery, output), existingOf(options.output));
    return printResult(gallery, options);
}

} // namespace lumetra
