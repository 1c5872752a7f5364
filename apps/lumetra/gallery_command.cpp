// lumetra gallery: a page of the pictures of a data set.

#include "apps/common/failure.h"
#include "apps/common/messages.h"
#include "apps/common/settings.h"
#include "apps/common/stack.h"
#include "apps/common/writing.h"
#include "apps/lumetra/commands.h"
#include "apps/lumetra/gallery_page.h"
#include "apps/lumetra/options.h"
#include "apps/lumetra/progress.h"
#include "apps/lumetra/signals.h"
#include "apps/lumetra/workers.h"

#include <opencv2/imgproc.hpp>

#include <CLI/CLI.hpp>

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace apps {
namespace {

struct GalleryOptions {
    std::string folder, output, settings, title, progress;
    std::vector<std::string> logs;
    int jobs = defaultJobs();
    bool list = false, overwrite = false, quiet = false;
};

/// A picture small enough for a thousand of them on a page.
cv::Mat reduced(const cv::Mat& picture) {
    constexpr int side = 256;
    const double scale = double(side) / std::max(picture.cols, picture.rows);
    cv::Mat small = picture;
    if (scale < 1)
        cv::resize(picture, small,
                   {std::max(cvRound(picture.cols * scale), 1),
                    std::max(cvRound(picture.rows * scale), 1)},
                   0, 0, cv::INTER_AREA);
    if (small.depth() == CV_16U)
        small.convertTo(small, CV_8U, 1 / 257.0);
    return small;
}

/// Makes a thumbnail, unless there is one of this very picture: it bears the picture's time.
void makeThumbnail(const QString& file, const QString& thumbnail) {
    const QDateTime time = QFileInfo(file).lastModified();
    if (QFileInfo(thumbnail).lastModified() == time)
        return;
    const cv::Mat small = reduced(Stack(file).page(1));
    throwIfInterrupted();
    QDir().mkpath(QFileInfo(thumbnail).path()); // what goes wrong, writing tells
    writePicture(thumbnail, small);
    QFile written(thumbnail);
    if (written.open(QIODevice::ReadWrite))
        written.setFileTime(time, QFileDevice::FileModificationTime);
}

void makeThumbnails(Gallery& gallery, const GalleryOptions& options) {
    const QDir thumbnails(thumbnailFolder(text(options.output)));
    Progress progress(QStringLiteral("thumbnails"), static_cast<int>(gallery.tiles.size()),
                      options.quiet, text(options.progress));
    const auto makeWorker = [&] {
        return [&](std::size_t i) {
            Tile& tile = gallery.tiles[i];
            if (tile.file.isEmpty())
                return progress.fieldDone();
            const QString thumbnail = thumbnails.filePath(
                nameBelow(text(options.folder), tile.file) + QStringLiteral(".jpg"));
            try {
                makeThumbnail(tile.file, thumbnail);
                tile.thumbnail = thumbnail;
                progress.fieldDone();
            } catch (const Interrupted&) {
                throw;
            } catch (...) {
                tile.problem = currentReason();
                tile.isBroken = true;
                progress.fieldFailed();
            }
        };
    };
    runWorkers(options.jobs, gallery.tiles.size(), makeWorker, [&] { progress.tick(); });
    throwIfInterrupted();
}

Gallery galleryOf(const GalleryOptions& options) {
    const QString folder = text(options.folder);
    std::vector<LoggedPicture> log;
    for (const std::string& file : options.logs)
        for (LoggedPicture& picture : readLog(text(file)))
            log.push_back(std::move(picture));
    Gallery gallery;
    gallery.title =
        options.title.empty() ? QDir(folder).absolutePath().section('/', -1) : text(options.title);
    gallery.isList = options.list;
    gallery.tiles = findPictures(folder);
    const LastWords words = lastWords(log, folder);
    if (words.empty() && !log.empty())
        tell(QStringLiteral("lumetra: the logs tell of no picture in %1; the names in a log count "
                            "from the folder of its run\n")
                 .arg(shown(folder)));
    addLogged(gallery.tiles, folder, words);
    gallery.legend = commonLegend(words);
    if (!options.settings.empty()) {
        const Settings settings = readSettings(text(options.settings), DyeList());
        gallery.legend = legendOf(settings.channels, {});
        if (const auto& measured = settings.measured)
            gallery.measured = QStringLiteral("Levels measured over %1 files (%2)")
                                   .arg(measured->files)
                                   .arg(measured->method);
    }
    return gallery;
}

int tellResult(const Gallery& gallery, const GalleryOptions& options) {
    int status = done;
    std::size_t problems = 0;
    for (const Tile& tile : gallery.tiles) {
        problems += tile.problem.isEmpty() ? 0 : 1;
        if (!tile.isBroken)
            continue;
        status = failed;
        tell(QStringLiteral("lumetra: %1\n").arg(tile.problem));
    }
    if (!options.quiet)
        tell(QStringLiteral("lumetra: %1: %2, %3 of them broken\n")
                 .arg(shown(text(options.output)),
                      counted(gallery.tiles.size(), QStringLiteral("picture")))
                 .arg(problems));
    return status;
}

/// Makes the folders of the page and of its thumbnails.
void requireFolders(const QString& page) {
    for (const QString& folder : {QFileInfo(page).path(), thumbnailFolder(page)})
        if (!QDir().mkpath(folder) || !QFileInfo(folder).isWritable())
            throw Failure(QStringLiteral("%1: cannot be written into").arg(shown(folder)));
}

QStringList filesRead(const Gallery& gallery, const GalleryOptions& options) {
    QStringList files = texts(options.logs) << text(options.settings);
    for (const Tile& tile : gallery.tiles)
        files << tile.file;
    return files;
}

int makeGallery(const GalleryOptions& options) {
    const QString output = text(options.output);
    const QString extension = QFileInfo(output).suffix().toLower();
    if (extension != QLatin1String("html") && extension != QLatin1String("htm"))
        throw Failure(QStringLiteral("%1: a gallery is written as .html").arg(shown(output)));
    checkOutput(output, {}, options.overwrite);
    Gallery gallery = galleryOf(options);
    if (gallery.tiles.empty()) {
        tell(QStringLiteral("lumetra: there is no picture in %1\n")
                 .arg(shown(text(options.folder))));
        return nothingMatched;
    }
    keepApart({output, text(options.progress)}, filesRead(gallery, options));
    requireFolders(output);
    makeThumbnails(gallery, options);
    const QByteArray html = galleryPage(gallery, output);
    removeLeftovers({output});
    writeBytes(output, html.constData(), static_cast<std::size_t>(html.size()));
    return tellResult(gallery, options);
}

} // namespace

void addGalleryCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<GalleryOptions>();
    CLI::App& command = *program.add_subcommand(
        "gallery", "Makes a page of the pictures of a data set, for a browser");
    command
        .add_option("DIR", options->folder,
                    "The folder of the pictures, those in folders below it included. Names that "
                    "hold a well, such as B03, are set in rows and columns")
        ->type_name("")
        ->required();
    command
        .add_option("-o,--output", options->output,
                    "The page to write. Its thumbnails go into a folder beside it: of "
                    "index.html, index_thumbnails")
        ->type_name("OUT")
        ->required();
    command
        .add_option("--log", options->logs,
                    "What 'lumetra batch' or 'lumetra merge' logged: shows channels and levels, "
                    "and marks broken fields with their reason. To be used in the folder of that "
                    "run, and once for each log")
        ->type_name("FILE")
        ->allow_extra_args(false);
    command
        .add_option("--settings", options->settings,
                    "Shows channels and levels of this file that 'lumetra levels' wrote")
        ->type_name("FILE");
    command.add_option("--title", options->title, "The heading; by default the folder's name")
        ->type_name("TEXT");
    command.add_flag("--list", options->list, "Shows one picture after another, without wells");
    command.add_option("--jobs", options->jobs, "How many pictures at once; by default the cores")
        ->type_name("N")
        ->check(CLI::Range(1, 1024, "1 to 1024"));
    command
        .add_option("--progress", options->progress,
                    "Appends key=value lines to FILE, after each picture")
        ->type_name("FILE");
    command.add_flag("--overwrite", options->overwrite,
                     "Replaces a page that is there already; thumbnails of pictures that are the "
                     "same are kept");
    command.add_flag("--quiet", options->quiet, "Says nothing unless something fails");
    command.footer("example: lumetra gallery out -o out/index.html --log plate.log");
    command.callback([&action, options] { action = [options] { return makeGallery(*options); }; });
}

} // namespace apps
