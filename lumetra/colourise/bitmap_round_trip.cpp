#include "lumetra/colourise/bitmap_round_trip.h"

#include "lumetra/colourise/reduction.h"

#include <opencv2/imgcodecs.hpp>

#include <cstdint>
#include <memory>
#include <new>
#include <vector>

namespace lumetra {
namespace {

// A bitmap file: 14 bytes of file header, 40 of BITMAPINFOHEADER, then the pixels; little-endian.
constexpr std::size_t headerBytes = 54;
constexpr std::size_t fileSizeField = 2;
constexpr std::size_t pixelOffsetField = 10;
constexpr std::size_t bitCountField = 28; ///< With the low half of the compression behind it.

std::uint32_t readField(const unsigned char* bytes) {
    return bytes[0] | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 |
           std::uint32_t{bytes[3]} << 24;
}

void writeField(unsigned char* bytes, std::uint32_t value) {
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<unsigned char>(value >> 8 * i);
}

/// Bytes of a 24-bit row, rounded up to a multiple of four.
std::size_t bitmapStride(std::size_t width) { return (3 * width + 3) / 4 * 4; }

} // namespace

void bitmapRoundTrip(const cv::Mat& prepared, cv::Mat& dst, const RoundTripStages& stages) {
    dst = prepared.clone();

    std::vector<unsigned char> encoded;
    cv::imencode(".bmp", reducedTo8Bits(dst), encoded, {});
    if (encoded.size() < headerBytes)
        return;

    const auto width = static_cast<std::size_t>(prepared.cols);
    const auto height = static_cast<std::size_t>(prepared.rows);
    const std::size_t stride = bitmapStride(width);
    const std::size_t areaBytes = stride * height;
    const std::size_t pixelOffset = readField(&encoded[pixelOffsetField]);
    if (encoded.size() < pixelOffset || encoded.size() - pixelOffset < areaBytes)
        return;

    const PixelArea encodedArea{encoded.data() + pixelOffset, width, height, stride};
    if (stages.inPlace)
        stages.inPlace(encodedArea);

    const std::unique_ptr<unsigned char[]> workingBytes(
        new (std::nothrow) unsigned char[areaBytes]());
    if (!workingBytes)
        return;
    const PixelArea working{workingBytes.get(), width, height, stride};
    stages.fill(encodedArea, working);

    std::vector<unsigned char> rebuilt(headerBytes + areaBytes);
    stages.transform(working, {rebuilt.data() + headerBytes, width, height, stride});

    std::copy_n(encoded.begin(), headerBytes, rebuilt.begin());
    writeField(&rebuilt[fileSizeField], static_cast<std::uint32_t>(rebuilt.size()));
    writeField(&rebuilt[bitCountField], 24);
    dst = cv::imdecode(cv::Mat(rebuilt), cv::IMREAD_COLOR);
}

} // namespace lumetra
