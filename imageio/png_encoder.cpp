#include "imageio/png_encoder.h"

#include "imageio/atomic_file.h"
#include "imageio/png_guard.h"

#include <QSysInfo>

#include <cmath>

#include <zlib.h>

namespace lumetra {
namespace {

/// As PNG has it; 0 for none, and for what its 31 bits do not hold.
png_uint_32 pixelsPerMetre(std::optional<double> micrometres) {
    const double perMetre = micrometres ? std::round(1e6 / *micrometres) : 0;
    return perMetre >= 1 && perMetre <= PNG_UINT_31_MAX ? static_cast<png_uint_32>(perMetre) : 0;
}

class PngEncoder {
public:
    explicit PngEncoder(QIODevice& device)
        : device_(device), png_(png_create_write_struct(PNG_LIBPNG_VER_STRING, &errors_,
                                                        PngErrors::fail, PngErrors::passOver)),
          info_(png_ ? png_create_info_struct(png_) : nullptr) {
        if (!info_) {
            png_destroy_write_struct(&png_, nullptr);
            throw std::bad_alloc();
        }
        png_set_write_fn(
            png_, &device_,
            [](png_structp png, png_bytep bytes, std::size_t count) {
                auto* to = static_cast<QIODevice*>(png_get_io_ptr(png));
                if (!writeAll(*to, reinterpret_cast<const char*>(bytes),
                              static_cast<qint64>(count)))
                    png_error(png, "the file takes no more");
            },
            [](png_structp) {});
    }
    ~PngEncoder() { png_destroy_write_struct(&png_, &info_); }
    PngEncoder(const PngEncoder&) = delete;
    PngEncoder& operator=(const PngEncoder&) = delete;

    void write(const cv::Mat& image, std::optional<double> pixelSize) {
        guarded(png_, errors_, "cannot be written", [&] {
            const bool isColour = image.channels() == 3;
            png_set_filter(png_, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB);
            png_set_compression_level(png_, Z_BEST_SPEED);
            png_set_compression_strategy(png_, Z_RLE);
            png_set_IHDR(png_, info_, static_cast<png_uint_32>(image.cols),
                         static_cast<png_uint_32>(image.rows), image.depth() == CV_8U ? 8 : 16,
                         isColour ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_NONE,
                         PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
            if (const auto perMetre = pixelsPerMetre(pixelSize); perMetre > 0)
                png_set_pHYs(png_, info_, perMetre, perMetre, PNG_RESOLUTION_METER);
            png_write_info(png_, info_);
            if (isColour)
                png_set_bgr(png_);
            if (image.depth() == CV_16U && QSysInfo::ByteOrder == QSysInfo::LittleEndian)
                png_set_swap(png_);
            for (int y = 0; y < image.rows; ++y)
                png_write_row(png_, image.ptr(y));
            png_write_end(png_, info_);
        });
    }

private:
    QIODevice& device_;
    PngErrors errors_;
    png_structp png_;
    png_infop info_;
};

} // namespace

void encodePng(const cv::Mat& image, QIODevice& device, std::optional<double> pixelSize) {
    PngEncoder(device).write(image, pixelSize);
}

} // namespace lumetra
