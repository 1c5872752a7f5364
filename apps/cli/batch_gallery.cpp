#include "apps/cli/batch_gallery.h"

#include "apps/cli/commands.h"
#include "apps/cli/field_list.h"
#include "apps/cli/gallery_page.h"
#include "apps/cli/render_spec.h"
#include "apps/common/error.h"
#include "imageio/file_error.h"

#include <QFileInfo>

#include <algorithm>

namespace lumetra {
namespace {

/// The folder that all outputs lie in or below, the same for every part of a data set.
QString folderOf(const BatchOptions& options) {
    const QString& list = options.dataSet.fields;
    const QString pattern =
        list.isEmpty() ? options.image.output.file : FieldList(list).header().images;
    return QFileInfo(pattern.section(QLatin1Char('{'), 0, 0) + QLatin1Char('x')).path();
}

OutputOptions pageOf(const BatchOptions& options) {
    OutputOptions page = options.image.output;
    page.file = options.gallery;
    page.overwrite |= options.resume;
    return page;
}

} // namespace

BatchGallery::BatchGallery(const BatchOptions& options)
    : options_(options), page_(pageOf(options)), folder_(folderOf(options)),
      thumbnails_(options.gallery, folder_), log_(options.log) {
    requireFolders(page_.file);
    if (!log_.isEmpty())
        return;
    if (!ownLog_.open())
        throw Error(QStringLiteral("%1: %2").arg(ownLog_.fileTemplate(), ownLog_.errorString()));
    log_ = ownLog_.fileName();
}

void BatchGallery::add(const QString& image, const cv::Mat& thumbnail) const {
    try {
        if (!thumbnail.empty())
            thumbnails_.write(image, thumbnail);
    } catch (const FileError&) { // a thumbnail that is missing in the end is tried once more
    }
}

int BatchGallery::finish(const FieldSet& fields) const {
    QStringList images;
    for (std::size_t i = 0; i < fields.size(); ++i)
        images << fields[i].job.output;
    Gallery gallery;
    gallery.title = folderTitle(folder_);
    gallery.tiles = tilesOf(folder_, images);
    const bool isPart = !options_.shard.isEmpty();
    if (!isPart) {
        LatestEntries entries;
        addLatestEntries(entries, log_, folder_);
        addLogged(gallery.tiles, folder_, entries);
        gallery.legend = commonLegend(entries);
    }
    const bool isComplete =
        std::all_of(gallery.tiles.begin(), gallery.tiles.end(), [&](const Tile& tile) {
            return tile.file.isEmpty() || thumbnails_.isUpToDate(tile.file);
        });
    Progress progress(QStringLiteral("thumbnails"), static_cast<int>(gallery.tiles.size()),
                      page_.quiet || isComplete, {});
    thumbnails_.make(gallery.tiles, options_.dataSet.jobs, progress);
    return isPart ? printBroken(gallery) : writePage(gallery, page_);
}

} // namespace lumetra
