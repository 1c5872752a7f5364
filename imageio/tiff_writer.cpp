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

/// As libtiff has it.
int schemeOf(TiffCompression compression) {
    switch (compression) {
    case TiffCompression::none:
        return COMPRESSION_NONE;
    case TiffCompression::lzw:
        return COMPRESSION_LZW;
    case TiffCompression::deflate:
        return COMPRESSION_ADOBE_DEFLATE;
    case TiffCompression::zstd:
        return COMPRESSION_ZSTD;
    }
    return COMPRESSION_NONE;
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
    void describe(cv::Size size, int type);
    void copyRows(const cv::Mat& rows);

    AtomicFile file;
    QFile io; ///< The same file: libtiff reads back a little of what it has written.
    TiffHandle tiff;
    std::vector<std::uint8_t> strip;
    std::optional<double> pixelSize; ///< In µm.
    TiffCompression compression = TiffCompression::lzw;
    int rowsPerStrip = 1, rowsLeft = 0; ///< Of the page that is written.
    std::uint32_t stripNumber = 0;
};

TiffWriter::TiffWriter(const QString& file, Existing existing, std::uint64_t expectedBytes,
                       std::optional<double> pixelSize, TiffCompression compression)
    : output_(std::make_unique<Output>(file, existing)) {
    output_->pixelSize = pixelSize;
    output_->compression = compression;
    if (!TIFFIsCODECConfigured(static_cast<std::uint16_t>(schemeOf(compression))))
        output_->file.fail(QStringLiteral("this build of libtiff does not have the compression ") +
                           tiffCompressionName(compression));
    constexpr std::uint64_t smallForm = 4000000000; // compression may not help
    Output& out = *output_;
    if (!out.io.open(out.file.device().handle(), QIODevice::ReadWrite | QIODevice::Unbuffered))
        out.fail();
    out.tiff = openTiff(out.io, expectedBytes > smallForm ? "w8" : "w");
    if (!out.tiff)
        out.fail();
}

TiffWriter::~TiffWriter() = default;

void TiffWriter::Output::describe(cv::Size size, int type) {
    const bool isColour = CV_MAT_CN(type) == 3;
    set(TIFFTAG_IMAGEWIDTH, size.width);
    set(TIFFTAG_IMAGELENGTH, size.height);
    set(TIFFTAG_SAMPLESPERPIXEL, CV_MAT_CN(type));
    set(TIFFTAG_BITSPERSAMPLE, CV_MAT_DEPTH(type) == CV_8U ? 8 : 16);
    set(TIFFTAG_PHOTOMETRIC, isColour ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
    set(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    set(TIFFTAG_ROWSPERSTRIP, static_cast<std::uint32_t>(rowsPerStrip));
    set(TIFFTAG_COMPRESSION, schemeOf(compression));
    if (compression != TiffCompression::none)
        set(TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    constexpr int fastest = 1; // what a longer search finds in noise is not worth its time
    if (compression == TiffCompression::deflate)
        set(TIFFTAG_ZIPQUALITY, fastest);
    if (compression == TiffCompression::zstd)
        set(TIFFTAG_ZSTD_LEVEL, fastest);
    if (pixelSize) {
        constexpr double micrometresInCentimetre = 10000;
        set(TIFFTAG_RESOLUTIONUNIT, RESUNIT_CENTIMETER);
        set(TIFFTAG_XRESOLUTION, micrometresInCentimetre / *pixelSize);
        set(TIFFTAG_YRESOLUTION, micrometresInCentimetre / *pixelSize);
    }
}

void TiffWriter::Output::copyRows(const cv::Mat& rows) {
    const std::size_t rowBytes = rows.elemSize() * static_cast<std::size_t>(rows.cols);
    strip.resize(rowBytes * static_cast<std::size_t>(rows.rows));
    std::uint8_t* out = strip.data();
    for (int y = 0; y < rows.rows; ++y, out += rowBytes)
        if (rows.depth() == CV_8U)
            copyRow(rows.ptr<std::uint8_t>(y), rows.cols, rows.channels(), out);
        else
            copyRow(rows.ptr<std::uint16_t>(y), rows.cols, rows.channels(),
                    reinterpret_cast<std::uint16_t*>(out));
}

int TiffWriter::rowsOfStrip(cv::Size size, int type) {
    constexpr std::size_t stripBytes = 1 << 18; // so that readers can take it piece by piece
    const std::size_t rowBytes = CV_ELEM_SIZE(type) * static_cast<std::size_t>(size.width);
    return static_cast<int>(
        std::max<std::size_t>(1, stripBytes / std::max<std::size_t>(1, rowBytes)));
}

void TiffWriter::add(const cv::Mat& page) {
    begin(page.size(), page.type());
    addRows(page);
}

void TiffWriter::begin(cv::Size size, int type) {
    CV_Assert(CV_MAT_CN(type) == 1 || CV_MAT_CN(type) == 3);
    CV_Assert(CV_MAT_DEPTH(type) == CV_8U || CV_MAT_DEPTH(type) == CV_16U);
    Output& out = *output_;
    out.rowsPerStrip = rowsOfStrip(size, type);
    out.rowsLeft = size.height;
    out.stripNumber = 0;
    out.describe(size, type);
}

void TiffWriter::addRows(const cv::Mat& rows) {
    Output& out = *output_;
    for (int y = 0; y < rows.rows; y += std::min(out.rowsPerStrip, rows.rows - y)) {
        out.copyRows(rows.rowRange(y, y + std::min(out.rowsPerStrip, rows.rows - y)));
        if (TIFFWriteEncodedStrip(out.tiff.get(), out.stripNumber++, out.strip.data(),
                                  static_cast<tmsize_t>(out.strip.size())) < 0)
            out.fail();
    }
    out.rowsLeft -= rows.rows;
    if (out.rowsLeft == 0 && !TIFFWriteDirectory(out.tiff.get()))
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
