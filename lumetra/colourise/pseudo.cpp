#include "lumetra/lumetra"

#include "lumetra/colourise/bitmap_round_trip.h"
#include "lumetra/colourise/image_range.h"
#include "lumetra/colourise/paint.h"
#include "lumetra/colourise/source_form.h"
#include "lumetra/colourise/strips.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace lumetra {
namespace {

/// The caller's colours by slot; slots beyond the list are black.
LevelColours slotColours(const QVector<QColor>& list) {
    LevelColours colours{};
    const auto count = std::min(static_cast<std::size_t>(list.size()), colours.size());
    std::transform(list.begin(), list.begin() + static_cast<std::ptrdiff_t>(count), colours.begin(),
                   [](const QColor& colour) { return colour.rgb() & 0xFFFFFF; });
    return colours;
}

/// Where the intensities of an image, from its smallest sample to its largest, lie among the slots.
template<class Sample>
class SlotScale {
public:
    explicit SlotScale(SampleRange<Sample> range)
        : smallest_(range.smallest), slotsPerLevel_(255.0 / (range.largest - range.smallest + 1)) {}

    /// The slot of an intensity within the range.
    unsigned char slot(Sample intensity) const {
        return static_cast<unsigned char>((intensity - smallest_) * slotsPerLevel_);
    }

private:
    int smallest_;
    double slotsPerLevel_;
};

/// The colour of each 8-bit luma in an image with this range. Luma can come out one below the
/// smallest sample: like anything outside the range, that takes the nearest slot.
LevelColours lumaColours(SampleRange<unsigned char> range, const LevelColours& colours) {
    const SlotScale<unsigned char> scale(range);
    LevelColours ofLuma;
    for (std::size_t luma = 0; luma < ofLuma.size(); ++luma) {
        const auto inRange =
            std::clamp(static_cast<unsigned char>(luma), range.smallest, range.largest);
        ofLuma[luma] = colours[scale.slot(inRange)];
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

void colourGray8(const cv::Mat& image, cv::Mat& dst, const LevelColours& colours) {
    const LevelColours ofLuma = lumaColours(sampleRange<unsigned char>(image), colours);
    LevelColours ofLevel;
    for (std::size_t level = 0; level < ofLevel.size(); ++level)
        ofLevel[level] = ofLuma[lumaOfGray[level]];
    paint(image, 0, ofLevel, dst);
}

using Strip = std::array<unsigned char, stripPixels>;

/// Colours the pixels of a strip by their luma.
void paintByLuma(const unsigned char* in, unsigned char* out, std::size_t count,
                 const Palette& ofLuma) {
    Strip luma;
    for (std::size_t i = 0; i < count; ++i)
        luma[i] = luma8(in[3 * i], in[3 * i + 1], in[3 * i + 2]);
    ofLuma.paint(luma.data(), out, count);
}

void colourColour8(const cv::Mat& image, cv::Mat& dst, const LevelColours& colours) {
    const Palette ofLuma(lumaColours(sampleRange<unsigned char>(image), colours));
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
            [&](const unsigned char* row) { includeSamples(ranges, row, from.rowBytes()); });
        const Palette ofLuma(lumaColours(merged(ranges), colours));
        for (std::size_t y = 0; y < from.height; ++y)
            cutIntoStrips(from.width, [&](std::size_t first, std::size_t count) {
                paintByLuma(from.row(y) + 3 * first, to.row(y) + 3 * first, count, ofLuma);
            });
    };
    bitmapRoundTrip(image, dst, stages);
}

/// 48-bit pixels in the colours of the slots, each component the high byte of a sample.
std::array<PixelWord, 256> wideColours(const LevelColours& colours) {
    std::array<PixelWord, 256> words;
    std::transform(colours.begin(), colours.end(), words.begin(), [](PackedColour colour) {
        const PixelWord word = colour;
        return (word & 0xFF) << 8 | (word & 0xFF00) << 16 | (word & 0xFF0000) << 24;
    });
    return words;
}

void colour16(const cv::Mat& image, cv::Mat& dst, const LevelColours& colours) {
    using Sample = std::uint16_t;
    const SlotScale<Sample> scale(sampleRange<Sample>(image));
    const std::array<PixelWord, 256> ofSlot = wideColours(colours);
    const bool gray = image.channels() == 1;
    Strip slots;
    makeFromStrips<Sample, Sample>(
        image, dst, CV_16UC3, [&](const Sample* in, Sample* out, std::size_t count) {
            for (std::size_t i = 0; i < count; ++i)
                slots[i] =
                    scale.slot(gray ? in[i] : luma16(in[3 * i], in[3 * i + 1], in[3 * i + 2]));
            writePixelWords(out, count, [&](std::size_t i) { return ofSlot[slots[i]]; });
        });
}

} // namespace
} // namespace lumetra

void Lumetra::Pseudo(cv::Mat& src, cv::Mat& dst, const QVector<QColor>& vecColor) {
    const lumetra::LevelColours colours = lumetra::slotColours(vecColor);
    const cv::Mat source = lumetra::colourable(src);
    switch (lumetra::formOf(source)) {
    case lumetra::SourceForm::gray8:
        lumetra::colourGray8(source, dst, colours);
        break;
    case lumetra::SourceForm::colour8:
        lumetra::colourColour8(source, dst, colours);
        break;
    case lumetra::SourceForm::gray16:
    case lumetra::SourceForm::colour16:
        lumetra::colour16(source, dst, colours);
        break;
    case lumetra::SourceForm::other:
        lumetra::colourBitmap(source, dst, colours);
        break;
    }
}
