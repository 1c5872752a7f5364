#include "imageio/png_reader.h"

#include "imageio/length_unit.h"
#include "imageio/orientation.h"
#include "imageio/png_guard.h"

#include <QByteArray>
#include <QtEndian>

#include <optional>
#include <tuple>
#include <utility>
#include <vector>

namespace lumetra {
namespace {

constexpr auto damaged = "is damaged or cut short";

/// One pass of libpng through a file.
class PngDecoder {
public:
    explicit PngDecoder(QFile& file)
        : png_(png_create_read_struct(PNG_LIBPNG_VER_STRING, &errors_, PngErrors::fail,
                                      PngErrors::passOver)),
          info_(png_ ? png_create_info_struct(png_) : nullptr) {
        if (!info_) {
            png_destroy_read_struct(&png_, nullptr, nullptr);
            throw std::bad_alloc();
        }
        png_set_read_fn(png_, &file, [](png_structp png, png_bytep bytes, std::size_t count) {
            auto* from = static_cast<QFile*>(png_get_io_ptr(png));
            const auto wanted = static_cast<qint64>(count);
            if (from->read(reinterpret_cast<char*>(bytes), wanted) != wanted)
                png_error(png, "the file ends too early");
        });
    }
    ~PngDecoder() { png_destroy_read_struct(&png_, &info_, nullptr); }
    PngDecoder(const PngDecoder&) = delete;
    PngDecoder& operator=(const PngDecoder&) = delete;

    /// Reads what comes before the pixels.
    void readStart() {
        guarded(png_, errors_, damaged, [this] { png_read_info(png_, info_); });
    }

    /// The colours 0xRRGGBB of a palette, black where it has fewer than 256; none if there is no
    /// palette, or it is gray.
    std::vector<std::uint32_t> palette() const {
        constexpr std::size_t most = 256;
        png_colorp colours = nullptr;
        int count = 0;
        if (png_get_color_type(png_, info_) != PNG_COLOR_TYPE_PALETTE ||
            png_get_PLTE(png_, info_, &colours, &count) == 0)
            return {};
        std::vector<std::uint32_t> palette;
        bool isGray = true;
        for (int i = 0; i < count; ++i) {
            const png_color& c = colours[i];
            isGray = isGray && c.red == c.green && c.green == c.blue;
            palette.push_back(static_cast<std::uint32_t>(c.red << 16 | c.green << 8 | c.blue));
        }
        palette.resize(isGray ? 0 : most);
        return palette;
    }

    /// The sides of a pixel in µm.
    std::pair<std::optional<double>, std::optional<double>> pixelSize() const {
        constexpr double micrometresPerMetre = 1e6;
        const auto size = [](png_uint_32 perMetre) {
            return perMetre > 0 ? plainPixelSize(micrometresPerMetre / perMetre) : std::nullopt;
        };
        return {size(png_get_x_pixels_per_meter(png_, info_)),
                size(png_get_y_pixels_per_meter(png_, info_))};
    }

    /// Reads what comes before the pixels, and says what they shall be.
    /// @param hasIndices  A palette's indices are wanted, not its colours.
    void readHeader(bool hasIndices) {
        readStart();
        guarded(png_, errors_, damaged, [&] {
            const int kind = png_get_color_type(png_, info_);
            if (kind == PNG_COLOR_TYPE_PALETTE && hasIndices)
                png_set_packing(png_);
            else if (kind == PNG_COLOR_TYPE_PALETTE)
                png_set_palette_to_rgb(png_);
            else if (kind == PNG_COLOR_TYPE_GRAY && bitDepth() < 8)
                png_set_expand_gray_1_2_4_to_8(png_);
            if (kind != PNG_COLOR_TYPE_PALETTE || !hasIndices)
                png_set_strip_alpha(png_);
            if ((kind & PNG_COLOR_MASK_COLOR) != 0 && !hasIndices)
                png_set_bgr(png_);
            if (bitDepth() == 16 && QSysInfo::ByteOrder == QSysInfo::LittleEndian)
                png_set_swap(png_);
            passes_ = png_set_interlace_handling(png_);
            png_read_update_info(png_, info_);
        });
    }

    png_uint_32 width() const { return png_get_image_width(png_, info_); }
    png_uint_32 height() const { return png_get_image_height(png_, info_); }
    int type() const {
        return CV_MAKETYPE(bitDepth() == 16 ? CV_16U : CV_8U, png_get_channels(png_, info_));
    }

    /// Whether rows come one after another.
    bool isInOnePass() const { return passes_ == 1; }

    void readPixels(cv::Mat& image) {
        for (int pass = 0; pass < passes_; ++pass)
            readRows(image);
        readEnd();
    }

    void readRows(cv::Mat& rows) {
        guarded(png_, errors_, damaged, [&] {
            for (int y = 0; y < rows.rows; ++y)
                png_read_row(png_, rows.ptr(y), nullptr);
        });
    }

    /// Checks that the file is whole. EXIF may come here, too.
    void readEnd() {
        guarded(png_, errors_, damaged, [&] { png_read_end(png_, info_); });
    }

    int orientation() const {
#ifdef PNG_eXIf_SUPPORTED
        png_uint_32 count = 0;
        png_bytep bytes = nullptr;
        if (png_get_eXIf_1(png_, info_, &count, &bytes) != 0)
            return exifOrientation(bytes, count);
#endif
        return 1;
    }

private:
    int bitDepth() const { return png_get_bit_depth(png_, info_); }

    PngErrors errors_;
    png_structp png_;
    png_infop info_;
    int passes_ = 1;
};

class PngRows : public PlaneRows {
public:
    /// @param decoder  That has read the header.
    PngRows(std::unique_ptr<PngDecoder> decoder, cv::Size size)
        : PlaneRows(size, decoder->type()), decoder_(std::move(decoder)), left_(size.height) {}

    void read(cv::Mat& rows) override {
        decoder_->readRows(rows);
        left_ -= rows.rows;
        if (left_ > 0)
            return;
        decoder_->readEnd();
        if (decoder_->orientation() != 1)
            throw Reason("says behind its pixels that it is turned, too late for one so large");
    }

private:
    std::unique_ptr<PngDecoder> decoder_;
    int left_;
};

} // namespace

bool PngReader::recognises(const QByteArray& start) {
    return start.startsWith("\x89PNG\r\n\x1a\n");
}

cv::Mat PngReader::decoded(bool hasIndices) {
    file().seek(0);
    PngDecoder decoder(file());
    decoder.readHeader(hasIndices);
    cv::Mat image = newImage(decoder.width(), decoder.height(), decoder.type());
    decoder.readPixels(image);
    return oriented(image, decoder.orientation());
}

cv::Mat PngReader::read(int /*index*/) { return decoded(false); }

cv::Mat PngReader::readPlane(int index, int component) {
    return hasPalette_ ? decoded(true) : PageReader::readPlane(index, component);
}

std::unique_ptr<PlaneRows> PngReader::rows(int /*index*/, int /*component*/) {
    file().seek(0);
    auto decoder = std::make_unique<PngDecoder>(file());
    decoder->readHeader(hasPalette_);
    const bool isPlain = !hasPalette_ && CV_MAT_CN(decoder->type()) == 1 &&
                         decoder->isInOnePass() && decoder->orientation() == 1;
    if (!isPlain)
        return {};
    const cv::Size size = checkedSize(decoder->width(), decoder->height(), decoder->type());
    return std::make_unique<PngRows>(std::move(decoder), size);
}

FileDescription PngReader::describe() {
    file().seek(0);
    PngDecoder decoder(file());
    decoder.readStart();
    FileDescription description = PageReader::describe();
    FileMetadata& metadata = description.metadata;
    metadata.channels[0].lut = decoder.palette();
    hasPalette_ = !metadata.channels[0].lut.empty();
    std::tie(metadata.pixelSizeX, metadata.pixelSizeY) = decoder.pixelSize();
    return description;
}

} // namespace lumetra
