#include "lumetra/lumetra"

#include "lumetra/colourise/bitmap_round_trip.h"
#include "lumetra/colourise/colour_source.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace lumetra {
namespace {

/// The dye colour's components in the order of an image's channels: blue, green, red.
using Tint = std::array<int, 3>;

/// A product in 32 bits that wraps, for samples are up to 65535 and components of any value.
std::uint32_t product(unsigned sample, int component) {
    return sample * static_cast<std::uint32_t>(component);
}

unsigned char tinted8(unsigned char sample, int component) {
    return static_cast<unsigned char>(static_cast<std::int32_t>(product(sample, component)) / 255);
}

std::uint16_t tinted16(std::uint16_t sample, int component) {
    return static_cast<std::uint16_t>(product(sample, component) >> 8);
}

/// Raises the black levels for every component that is full on, so that a dye's background stays
/// dark: less for the channel at the component's place in red, green, blue order than for the
/// others, but never up to the white level.
void raiseBlackLevels(TS_LEVELS& levels, const Tint& tint) {
    const auto raise = [](unsigned short& black, unsigned short white, int amount) {
        black = static_cast<unsigned short>(std::min(white - 1, black + amount));
    };
    const auto [blue, green, red] = tint;
    const std::array<int, 3> redGreenBlue{red, green, blue};
    for (std::size_t i = 0; i < redGreenBlue.size(); ++i) {
        if (redGreenBlue[i] != 255)
            continue;
        raise(levels.wLowB, levels.wHighB, i == 0 ? 2 : 3);
        raise(levels.wLowG, levels.wHighG, i == 1 ? 2 : 3);
        raise(levels.wLowR, levels.wHighR, i == 2 ? 2 : 3);
    }
}

/// Stretches the levels of each channel of pixels without row padding.
void stretchPacked(unsigned char* pixels, int width, int height, const Tint& tint) {
    TS_LEVELS levels{};
    Lumetra::AutoCountHistoRGB24(pixels, width, height, levels);
    raiseBlackLevels(levels, tint);
    Lumetra::StretchLevelsRGB24(levels, pixels, width, height);
}

/// Automatic levels. The level functions know no row padding, so padded rows are packed for them.
void stretchLevels(PixelArea area, const Tint& tint) {
    const auto width = static_cast<int>(area.width);
    const auto height = static_cast<int>(area.height);
    if (area.stride == area.rowBytes())
        return stretchPacked(area.first, width, height, tint);

    std::vector<unsigned char> bytes(area.rowBytes() * area.height);
    const PixelArea packed{bytes.data(), area.width, area.height, area.rowBytes()};
    copyPixels(area, packed);
    stretchPacked(packed.first, width, height, tint);
    copyPixels(packed, area);
}

/// The channel with the largest total; the lowest of those that are equal.
std::size_t dominantChannel(PixelArea area) {
    std::array<std::uint64_t, 3> totals{};
    for (std::size_t y = 0; y < area.height; ++y) {
        const unsigned char* row = area.row(y);
        for (std::size_t i = 0; i < area.rowBytes(); ++i)
            totals[i % 3] += row[i];
    }
    return static_cast<std::size_t>(std::max_element(totals.begin(), totals.end()) -
                                    totals.begin());
}

/// Fills all three bytes of each pixel with its sample in the dominant channel.
void fillWithDominantChannel(PixelArea from, PixelArea to) {
    const std::size_t channel = dominantChannel(from);
    for (std::size_t y = 0; y < from.height; ++y) {
        const unsigned char* in = from.row(y) + channel;
        unsigned char* out = to.row(y);
        for (std::size_t x = 0; x < from.width; ++x)
            out[3 * x] = out[3 * x + 1] = out[3 * x + 2] = in[3 * x];
    }
}

void tint8(PixelArea from, PixelArea to, const Tint& tint) {
    for (std::size_t y = 0; y < from.height; ++y) {
        const unsigned char* in = from.row(y);
        unsigned char* out = to.row(y);
        for (std::size_t i = 0; i < from.rowBytes(); ++i)
            out[i] = tinted8(in[i], tint[i % 3]);
    }
}

/// The 16-bit tint of each pixel's largest sample.
cv::Mat tint16(const cv::Mat& source, const Tint& tint) {
    cv::Mat result(source.size(), CV_16UC3);
    const int channels = source.channels();
    for (int y = 0; y < source.rows; ++y) {
        const auto* in = source.ptr<std::uint16_t>(y);
        auto* out = result.ptr<std::uint16_t>(y);
        for (int x = 0; x < source.cols; ++x, in += channels, out += 3) {
            const std::uint16_t sample = *std::max_element(in, in + channels);
            for (std::size_t k = 0; k < tint.size(); ++k)
                out[k] = tinted16(sample, tint[k]);
        }
    }
    return result;
}

} // namespace
} // namespace lumetra

void Lumetra::Dye(cv::Mat& src, cv::Mat& dst, int nRed, int nGreen, int nBlue, bool bAutoLevels,
                  bool bDominantChannel) {
    using namespace lumetra;
    const Tint tint{nBlue, nGreen, nRed};
    const cv::Mat source = colourSource(src);
    if (isSixteenBit(source)) {
        dst = tint16(source, tint);
        return;
    }

    RoundTripStages stages;
    if (bAutoLevels)
        stages.inPlace = [&](PixelArea area) { stretchLevels(area, tint); };
    if (bDominantChannel)
        stages.fill = fillWithDominantChannel;
    stages.transform = [&](PixelArea from, PixelArea to) { tint8(from, to, tint); };
    bitmapRoundTrip(preparedForBitmap(source), dst, stages);
}
