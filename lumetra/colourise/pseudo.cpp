#include "lumetra/lumetra"

#include "lumetra/colourise/bitmap_round_trip.h"
#include "lumetra/colourise/colour_source.h"
#include "lumetra/colourise/paint.h"
#include "lumetra/colourise/strips.h"
#include "lumetra/levels/sample_range.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <vector>

namespace lumetra {
namespace {

/// The caller's colours by slot; slots beyond the list are black.
LevelColours slotColours(const QVector<QColor>& list) {
    LevelColours colours{};
    const auto count = std::min(static_cast<std::size_t>(list.size()), colours.size());
    std::transform(list.begin(), list.begin() + static_cast<std::ptrdiff_t>(count), colours.begin(),
                   [](const QColor& colour) {
                       return packedColour(static_cast<unsigned char>(colour.blue()),
                                           static_cast<unsigned char>(colour.green()),
                                           static_cast<unsigned char>(colour.red()));
                   });
    return colours;
}

/// The colour slot of each intensity from the smallest sample of an image to its largest.
template<class Sample>
std::vector<unsigned char> slotTable(SampleRange<Sample> range) {
    std::vector<unsigned char> slots(static_cast<std::size_t>(range.largest - range.smallest) + 1);
    const double slotsPerLevel = 255.0 / static_cast<double>(slots.size());
    for (std::size_t k = 0; k < slots.size(); ++k)
        slots[k] = static_cast<unsigned char>(static_cast<double>(k) * slotsPerLevel);
    return slots;
}

/// The colour of each 8-bit luma in an image with this range. Luma can come out one below the
/// smallest sample: like anything outside the range, that takes the nearest slot.
LevelColours lumaColours(SampleRange<unsigned char> range, const LevelColours& colours) {
    const std::vector<unsigned char> slots = slotTable(range);
    LevelColours ofLuma;
    for (int luma = 0; luma < 256; ++luma) {
        const int inRange = std::clamp<int>(luma, range.smallest, range.largest);
        ofLuma[static_cast<std::size_t>(luma)] =
            colours[slots[static_cast<std::size_t>(inRange - range.smallest)]];
    }
    return ofLuma;
}

/// Rounds down to one less than the level for 67 of the 256 levels of gray. The sum must stay in
/// this order: it decides which.
constexpr unsigned char luma8(unsigned char blue, unsigned char green, unsigned char red) {
    return static_cast<unsigned char>(static_cast<int>(blue * 0.3 + green * 0.59 + red * 0.11));
}

constexpr std::array<unsigned char, 256> lumaOfGray = [] {
    std::array<unsigned char, 256> luma{};
    for (std::size_t level = 0; level < luma.size(); ++level) {
        const auto sample = static_cast<unsigned char>(level);
        luma[level] = luma8(sample, sample, sample);
    }
    return luma;
}();

/// Weights of 128 in all, so that gray keeps its level.
std::uint16_t luma16(std::uint16_t blue, std::uint16_t green, std::uint16_t red) {
    return static_cast<std::uint16_t>((38U * blue + 75U * green + 15U * red) >> 7);
}

void colouredGray8(const cv::Mat& image, cv::Mat& dst, const LevelColours& colours) {
    const LevelColours ofLuma = lumaColours(merged(imageRanges<unsigned char>(image)), colours);
    LevelColours ofLevel;
    for (std::size_t level = 0; level < ofLevel.size(); ++level)
        ofLevel[level] = ofLuma[lumaOfGray[level]];
    paint(image, 0, ofLevel, dst);
}

/// `luma8` of a strip as far as whole numbers can tell: the hundredth of a sum of hundredths. Where
/// that is a whole number, the sum in `double` may have come out below it, and `doubtful` is 1.
void lumaInHundredths(const unsigned char* __restrict in, std::size_t count,
                      unsigned char* __restrict luma, unsigned char* __restrict doubtful) {
    for (std::size_t i = 0; i < count; ++i) {
        const auto sum =
            static_cast<std::uint16_t>(30 * in[3 * i] + 59 * in[3 * i + 1] + 11 * in[3 * i + 2]);
        const auto high = static_cast<std::uint16_t>(std::uint32_t{sum} * 0xA3D8 >> 16);
        const auto whole = static_cast<std::uint16_t>(high >> 6); // sum / 100
        luma[i] = static_cast<unsigned char>(whole);
        doubtful[i] = static_cast<std::uint16_t>(100 * whole) == sum;
    }
}

using Strip = std::array<unsigned char, stripPixels>;

bool isGray(const unsigned char* in, std::size_t count) {
    unsigned char differences = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned char green = in[3 * i + 1];
        differences |= static_cast<unsigned char>((in[3 * i] ^ green) | (in[3 * i + 2] ^ green));
    }
    return differences == 0;
}

/// `luma8` of a strip. Doubtful pixels are few, about one in a hundred, and are computed one by
/// one. In a gray picture every pixel is doubtful, and its luma is looked up instead.
void lumaOfStrip(const unsigned char* in, std::size_t count, Strip& luma) {
    Strip doubtful{};
    lumaInHundredths(in, count, luma.data(), doubtful.data());
    const auto setLuma = [&](std::size_t i) {
        luma[i] = luma8(in[3 * i], in[3 * i + 1], in[3 * i + 2]);
    };
    constexpr std::size_t seemsGray = 128; // pixels, if the first ones are all doubtful
    std::size_t oneByOne = 0;
    for (std::size_t place = 0; place < count; place += 8) {
        std::uint64_t flags = 0; // of eight pixels
        std::memcpy(&flags, &doubtful[place], sizeof flags);
        for (; flags != 0; flags &= flags - 1, ++oneByOne)
            setLuma(place + static_cast<std::size_t>(__builtin_ctzll(flags)) / 8);
        if (place + 8 == seemsGray && oneByOne == seemsGray && isGray(in, count)) {
            for (std::size_t i = 0; i < count; ++i)
                luma[i] = lumaOfGray[in[3 * i]];
            return;
        }
    }
}

/// Colours the pixels of a strip by their luma.
void paintByLuma(const unsigned char* in, unsigned char* out, std::size_t count,
                 const Palette& ofLuma) {
    Strip luma;
    lumaOfStrip(in, count, luma);
    ofLuma.paint(luma.data(), out, count);
}

void colouredColour8(const cv::Mat& image, cv::Mat& dst, const LevelColours& colours) {
    const Palette ofLuma(lumaColours(merged(imageRanges<unsigned char>(image)), colours));
    makeFromStrips<unsigned char, unsigned char>(
        image, dst, CV_8UC3, [&](const unsigned char* in, unsigned char* out, std::size_t count) {
            paintByLuma(in, out, count, ofLuma);
        });
}

void colourBitmap(const cv::Mat& image, cv::Mat& dst, const LevelColours& colours) {
    RoundTripStages stages;
    stages.transform = [&](PixelArea from, PixelArea to) {
        ColourRanges ranges;
        from.forEachRow(
            [&](unsigned char* row) { ranges.include(threeRanges(row, from.rowBytes())); });
        const Palette ofLuma(lumaColours(merged(ranges), colours));
        for (std::size_t y = 0; y < from.height; ++y)
            forEachStrip(from.width, [&](std::size_t first, std::size_t count) {
                paintByLuma(from.row(y) + 3 * first, to.row(y) + 3 * first, count, ofLuma);
            });
    };
    bitmapRoundTrip(image, dst, stages);
}

/// A colour as a 48-bit pixel, each sample the high byte of its own, with a zero sample behind.
using WideColour = std::array<std::uint16_t, 4>;

WideColour wideColour(PackedColour packed) {
    const auto sample = [packed](int channel) {
        return static_cast<std::uint16_t>((packed >> 8 * channel & 0xFF) << 8);
    };
    return {sample(0), sample(1), sample(2), 0};
}

/// The slots of an image's 16-bit intensities and their colours.
class WideColours {
public:
    WideColours(SampleRange<std::uint16_t> range, const LevelColours& colours)
        : smallest_(range.smallest), slots_(slotTable(range)) {
        std::transform(colours.begin(), colours.end(), colours_.begin(), wideColour);
    }

    void paint(const std::uint16_t* intensities, std::uint16_t* pixels, std::size_t count) const {
        // Whole words, as `Palette` writes them; no strip is without a pixel.
        for (std::size_t i = 0; i + 1 < count; ++i)
            std::memcpy(pixels + 3 * i, &colour(intensities[i]), 8);
        std::memcpy(pixels + 3 * (count - 1), &colour(intensities[count - 1]), 6);
    }

private:
    const WideColour& colour(std::uint16_t intensity) const {
        return colours_[slots_[static_cast<std::size_t>(intensity - smallest_)]];
    }

    std::uint16_t smallest_;
    std::vector<unsigned char> slots_;
    std::array<WideColour, 256> colours_;
};

void coloured16(const cv::Mat& image, cv::Mat& dst, const LevelColours& colours) {
    using Sample = std::uint16_t;
    const WideColours wide(merged(imageRanges<Sample>(image)), colours);
    const bool gray = image.channels() == 1;
    std::array<Sample, stripPixels> luma;
    makeFromStrips<Sample, Sample>(
        image, dst, CV_16UC3, [&](const Sample* in, Sample* out, std::size_t count) {
            if (gray)
                return wide.paint(in, out, count);
            for (std::size_t i = 0; i < count; ++i)
                luma[i] = luma16(in[3 * i], in[3 * i + 1], in[3 * i + 2]);
            wide.paint(luma.data(), out, count);
        });
}

} // namespace
} // namespace lumetra

void Lumetra::Pseudo(cv::Mat& src, cv::Mat& dst, QVector<QColor> const& vecColor) {
    const lumetra::LevelColours colours = lumetra::slotColours(vecColor);
    const cv::Mat source = lumetra::colourSource(src);
    switch (lumetra::colourWay(source)) {
    case lumetra::ColourWay::gray8:
        lumetra::colouredGray8(source, dst, colours);
        break;
    case lumetra::ColourWay::colour8:
        lumetra::colouredColour8(source, dst, colours);
        break;
    case lumetra::ColourWay::gray16:
    case lumetra::ColourWay::colour16:
        lumetra::coloured16(source, dst, colours);
        break;
    case lumetra::ColourWay::bitmap:
        lumetra::colourBitmap(source, dst, colours);
        break;
    }
}
