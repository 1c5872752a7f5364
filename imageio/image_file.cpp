#include "imageio/image_file.h"

#include "imageio/bmp_reader.h"
#include "imageio/jpeg_reader.h"
#include "imageio/png_reader.h"
#include "imageio/pnm_reader.h"
#include "imageio/reason.h"
#include "imageio/tiff_reader.h"

#include <QFile>
#include <QFileInfo>

#include <array>
#include <utility>

namespace lumetra {
namespace {

struct Format {
    bool (*recognises)(const QByteArray& start);
    std::unique_ptr<PageReader> (*open)(std::unique_ptr<QFile> file);
};

template<class Reader>
constexpr Format formatOf() {
    return {Reader::recognises, [](std::unique_ptr<QFile> file) -> std::unique_ptr<PageReader> {
                return std::make_unique<Reader>(std::move(file));
            }};
}

constexpr std::array formats{formatOf<TiffReader>(), formatOf<PngReader>(), formatOf<JpegReader>(),
                             formatOf<BmpReader>(), formatOf<PnmReader>()};

std::unique_ptr<PageReader> openReader(const QString& file) {
    const QFileInfo info(file);
    if (!info.exists())
        throw Reason("there is no such file");
    if (!info.isFile())
        throw Reason("is not a file");
    auto opened = std::make_unique<QFile>(file);
    if (!opened->open(QIODevice::ReadOnly))
        throw Reason(opened->errorString());
    const QByteArray start = opened->peek(8);
    for (const Format& format : formats)
        if (format.recognises(start))
            return format.open(std::move(opened));
    throw Reason(start.isEmpty() ? "is empty" : "is not a TIFF, PNG, JPEG, BMP, PGM or PPM file");
}

} // namespace

ImageFile::ImageFile(QString file) : file_(std::move(file)) {
    reader_ = withFileName(file_, [this] { return openReader(file_); });
}

ImageFile::~ImageFile() = default;
ImageFile::ImageFile(ImageFile&&) noexcept = default;
ImageFile& ImageFile::operator=(ImageFile&&) noexcept = default;

int ImageFile::pages() const { return reader_->pages(); }

cv::Mat ImageFile::page(int number) const {
    return withFileName(file_, [&] {
        if (number < 1 || number > pages())
            throw Reason(
                QStringLiteral("there is no page %1; the file has %2").arg(number).arg(pages()));
        return reader_->read(number - 1);
    });
}

cv::Mat ImageFile::grayPage(int number) const {
    cv::Mat read = page(number);
    if (read.channels() != 1)
        throw FileError(file_, QStringLiteral("has colours, and a channel must be gray"));
    return read;
}

} // namespace lumetra
