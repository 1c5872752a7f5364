#include "imageio/tiff_writer.h"

#include "imageio/tiff_handle.h"

#include <opencv2/core.hpp>

#include <QFile>

#include <algorithm>
#include <vector>

namespace lumetra {
namespace {

/// A row as TIFF stores it: red before green before blue.
template<class Value>
void copyRow(const Value* in, int pixels, int channels, Value* out) {
    if (channels == 1) {
        std::copy_n(in, pixels, out);
        return;
    }
    for (int x = 0; x < pixels; ++x, in += 3, out += 3) {
        out[0] = in[2];
        out[1] = in[1];
        out[2] = in[0];
    }
}

} // namespace

struct TiffWriter::Output {
    Output(const QString& name, Existing existing) : file(name, existing) {}

    [[noreturn]] void fail() const {
        file.fail(io.error() != QFileDevice::NoError
                      ? io.errorString()
                      : QStringLiteral("the pages are too large for a TIFF file"));
    }
    template<class Value>
    void set(std::uint32_t tag, Value value) {
        TIFFSetField(tiff.get(), tag, value);
    }
    void describe(const cv::Mat& page);

    AtomicFile file;
    QFile io; ///< The same file: libtiff reads back a little of what it has written.
    TiffHandle tiff;
    std::vector<std::uint8_t> row;
    std::optional<double> pixelSize; ///< In µm.
};

TiffWriter::TiffWriter(const QString& file, Existing existing, std::uint64_t expectedBytes,
                       std::optional<double> pixelSize)
    : output_(std::make_unique<Output>(file, existing)) {
    output_->pixelSize = pixelSize;
    constexpr std::uint64_t smallForm = 4000000000; // compression may not help
    Output& out = *output_;
    if (!out.io.open(out.file.device().handle(), QIODevice::ReadWrite | QIODevice::Unbuffered))
        out.fail();
    out.tiff = openTiff(out.io, expectedBytes > smallForm ? "w8" : "w");
    if (!out.tiff)
        out.fail();
}

TiffWriter::~TiffWriter() = default;

void TiffWriter::Output::describe(const cv::Mat& page) {
    const bool isColour = page.channels() == 3;
    set(TIFFTAG_IMAGEWIDTH, page.cols);
    set(TIFFTAG_IMAGELENGTH, page.rows);
    set(TIFFTAG_SAMPLESPERPIXEL, page.channels());
    set(TIFFTAG_BITSPERSAMPLE, page.depth() == CV_8U ? 8 : 16);
    set(TIFFTAG_PHOTOMETRIC, isColour ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
    set(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    set(TIFFTAG_COMPRESSION, COMPRESSION_LZW);
    set(TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    if (pixelSize) {
        constexpr double micrometresInCentimetre = 10000;
        set(TIFFTAG_RESOLUTIONUNIT, RESUNIT_CENTIMETER);
        set(TIFFTAG_XRESOLUTION, micrometresInCentimetre / *pixelSize);
        set(TIFFTAG_YRESOLUTION, micrometresInCentimetre / *pixelSize);
    }
    constexpr std::size_t stripBytes = 1 << 18; // so that readers can take it piece by piece
    const auto rows = std::max<std::size_t>(1, stripBytes / std::max<std::size_t>(1, row.size()));
    set(TIFFTAG_ROWSPERSTRIP, static_cast<std::uint32_t>(rows));
}

void TiffWriter::add(const cv::Mat& page) {
    CV_Assert(page.channels() == 1 || page.channels() == 3);
    CV_Assert(page.depth() == CV_8U || page.depth() == CV_16U);
    Output& out = *output_;
    out.row.resize(static_cast<std::size_t>(page.cols) * page.elemSize());
    out.describe(page);
    for (int y = 0; y < page.rows; ++y) {
        if (page.depth() == CV_8U)
            copyRow(page.ptr<std::uint8_t>(y), page.cols, page.channels(), out.row.data());
        else
            copyRow(page.ptr<std::uint16_t>(y), page.cols, page.channels(),
                    reinterpret_cast<std::uint16_t*>(out.row.data()));
        if (TIFFWriteScanline(out.tiff.get(), out.row.data(), static_cast<std::uint32_t>(y)) < 0)
            out.fail();
    }
    if (!TIFFWriteDirectory(out.tiff.get()))
        out.fail();
}

void TiffWriter::commit() {
    Output& out = *output_;
    if (!TIFFFlush(out.tiff.get()))
        out.fail();
    out.tiff.reset();
    out.io.close();
    out.file.commit();
}

} // namespace lumetra
