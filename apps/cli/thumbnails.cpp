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
#include <cstdint>
#include <utility>

namespace lumetra {
namespace {

/// Makes an image much smaller: each pixel is the mean of eight that are spread evenly over its
/// area, which takes far less time than the mean of all.
template<class Value>
cv::Mat meanOfSome(const cv::Mat& image, cv::Size size) {
    constexpr std::size_t across = 4, down = 2;
    const auto channels = static_cast<std::size_t>(image.channels());
    const auto places = [](int length, int parts) { // in the middle of each part
        std::vector<std::size_t> all;
        for (std::int64_t i = 0; i < parts; ++i)
            all.push_back(
                static_cast<std::size_t>((2 * i + 1) * length / (std::int64_t{2} * parts)));
        return all;
    };
    std::vector<std::size_t> columns = places(image.cols, size.width * int{across});
    for (std::size_t& column : columns)
        column *= channels;
    const std::vector<std::size_t> rows = places(image.rows, size.height * int{down});
    cv::Mat small(size, image.type());
    for (int y = 0; y < size.height; ++y) {
        const std::size_t* const row = &rows[static_cast<std::size_t>(y) * down];
        const auto* const upper = image.ptr<Value>(static_cast<int>(row[0]));
        const auto* const lower = image.ptr<Value>(static_cast<int>(row[1]));
        auto* out = small.ptr<Value>(y);
        for (std::size_t x = 0; x < columns.size(); x += across)
            for (std::size_t k = 0; k < channels; ++k) {
                std::uint32_t sum = across * down / 2; // to round
                for (std::size_t i = x; i < x + across; ++i)
                    sum += std::uint32_t{upper[columns[i] + k]} + lower[columns[i] + k];
                *out++ = static_cast<Value>(sum / (across * down));
            }
    }
    return small;
}

cv::Mat shrunk(const cv::Mat& image, cv::Size size) {
    constexpr int much = 4;
    if (image.cols >= much * size.width && image.rows >= much * size.height)
        return image.depth() == CV_8U ? meanOfSome<std::uint8_t>(image, size)
                                      : meanOfSome<std::uint16_t>(image, size);
    cv::Mat small;
    shrink(image, size, small);
    return small;
}

QDateTime timeOf(const QString& file) { return QFileInfo(file).lastModified(); }

} // namespace

cv::Mat thumbnailOf(const cv::Mat& image) {
    constexpr int side = 256;
    const cv::Mat plain = grayIfEqual(image);
    const double scale = double(side) / std::max(plain.cols, plain.rows);
    const auto shorter = [&](int length) { return std::max(cvRound(length * scale), 1); };
    cv::Mat small =
        scale < 1 ? shrunk(plain, {shorter(plain.cols), shorter(plain.rows)}) : plain.clone();
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
