#include "apps/cli/thumbnails.h"

#include "apps/cli/signals.h"
#include "apps/cli/workers.h"
#include "apps/common/error.h"
#include "apps/common/messages.h"
#include "imageio/gray_check.h"
#include "imageio/image_file.h"
#include "imageio/image_writer.h"
#include "imageio/output_conflicts.h"
#include "render/shrink.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace lumetra {
namespace {

QDateTime timeOf(const QString& file) { return QFileInfo(file).lastModified(); }

} // namespace

cv::Mat thumbnailOf(const cv::Mat& image) {
    constexpr int side = 256;
    const cv::Mat plain = grayIfEqual(image);
    const double scale = double(side) / std::max(plain.cols, plain.rows);
    const auto shorter = [&](int length) { return std::max(cvRound(length * scale), 1); };
    cv::Mat small;
    if (scale < 1)
        shrink(plain, {shorter(plain.cols), shorter(plain.rows)}, small);
    else
        small = plain.clone();
    if (small.depth() == CV_16U)
        small.convertTo(small, CV_8U, 1 / 257.0);
    return small;
}

Thumbnails::Thumbnails(const QString& page, QString folder)
    : folder_(std::move(folder)), beside_(thumbnailFolder(page)) {}

QString Thumbnails::nameFor(const QString& image) const {
    return QDir(beside_).filePath(nameBelow(folder_, image) + QStringLiteral(".jpg"));
}

bool Thumbnails::isUpToDate(const QString& image) const {
    const QDateTime time = timeOf(nameFor(image));
    return time.isValid() && time == timeOf(image);
}

void Thumbnails::write(const QString& image, const cv::Mat& thumbnail) const {
    const QString name = nameFor(image);
    QDir().mkpath(QFileInfo(name).path()); // what goes wrong, writing tells
    writeImage(name, thumbnail, Existing::replace);
    QFile written(name);
    if (written.open(QIODevice::ReadWrite))
        written.setFileTime(timeOf(image), QFileDevice::FileModificationTime);
}

void Thumbnails::make(std::vector<Tile>& tiles, int jobs, Progress& progress) const {
    const auto makeWorker = [&] {
        return [&](std::size_t i) {
            Tile& tile = tiles[i];
            if (tile.file.isEmpty())
                return progress.fieldDone();
            try {
                if (!isUpToDate(tile.file)) {
                    const cv::Mat thumbnail = thumbnailOf(ImageFile(tile.file).page(1));
                    throwIfInterrupted();
                    write(tile.file, thumbnail);
                }
                tile.thumbnail = nameFor(tile.file);
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
    runWorkers(jobs, tiles.size(), makeWorker, [&] { progress.tick(); });
    throwIfInterrupted();
}

void requireFolders(const QString& page) {
    for (const QString& folder : {QFileInfo(page).path(), thumbnailFolder(page)})
        if (!QDir().mkpath(folder) || !QFileInfo(folder).isWritable())
            throw Error(QStringLiteral("%1: is not a folder that can be written").arg(folder));
}

void checkPage(const QString& page, Existing existing) {
    const QString extension = QFileInfo(page).suffix().toLower();
    if (extension != QLatin1String("html") && extension != QLatin1String("htm"))
        throw Error(QStringLiteral("%1: a gallery is written as .html").arg(page));
    checkOutput(page, {}, existing);
}

} // namespace lumetra
