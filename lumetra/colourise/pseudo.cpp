#include "lumetra/colourise/pseudo.h"

#include "lumetra/colourise/image_range.h"
#include "lumetra/colourise/source_form.h"
#include "lumetra/colourise/strips.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace lumetra {
namespace {

/// Where the intensities of an image, from its smallest pixel value to its largest, lie among the
/// slots.
template<class Value>
class SlotScale {
public:
    explicit SlotScale(ValueRange<Value> range)
        : smallest_(range.smallest), slotsPerLevel_(255.0 / (range.largest - range.smallest + 1)) {}

    /// The slot of an intensity within the range.
    unsigned char slot(Value intensity) const {
        return static_cast<unsigned char>((intensity - smallest_) * slotsPerLevel_);
    }

private:
    int smallest_;
    double slotsPerLevel_;
};

/// Rounds down to one less than the level for 67 of the 256 levels of gray. The sum must stay in
/// this order: it decides which.
constexpr unsigned char luma8(unsigned char blue, unsigned char green, unsigned char red) {
    return static_cast<unsigned char>(static_cast<int>(blue * 0.3 + green * 0.59 + red * 0.11));
}

constexpr std::array<unsigned char, 256> lumaOfGray = [] {
    std::array<unsigned char, 256> luma{};
    for (std::size_t level = 0; level < luma.size(); ++level) {
        const auto gray = static_cast<unsigned char>(level);
        luma[level] = luma8(gray, gray, gray);
    }
    return luma;
}();

/// Weights of 128 in all, so that gray keeps its level.
std::uint16_t luma16(std::uint16_t blue, std::uint16_t green, std::uint16_t red) {
    return static_cast<std::uint16_t>((38U * blue + 75U * green + 15U * red) >> 7);
}

void colourGray8(const cv::Mat& image, cv::Mat& dst, const LevelColours& colours) {
    const LevelColours ofLuma = lumaColours(valueRange<unsigned char>(image), colours);
    LevelColours ofLevel;
    for (std::size_t level = 0; level < ofLevel.size(); ++level)
        ofLevel[level] = ofLuma[lumaOfGray[level]];
    paint(image, 0, ofLevel, dst);
}

void colourColour8(const cv::Mat& image, cv::Mat& dst, const LevelColours& colours) {
    const Palette ofLuma(lumaColours(valueRange<unsigned char>(image), colours));
    makeFromStrips<unsigned char, unsigned char>(
        image, dst, CV_8UC3, [&](const unsigned char* in, unsigned char* out, std::size_t count) {
            paintByLuma(in, out, count, ofLuma);
        });
}

/// 48-bit pixels in the colours of the slots, each component the high byte of a value.
std::array<PixelWord, 256> wideColours(const LevelColours& colours) {
    std::array<PixelWord, 256> words;
    std::transform(colours.begin(), colours.end(), words.begin(), [](PackedColour colour) {
        const PixelWord word = colour;
        return (word & 0xFF) << 8 | (word & 0xFF00) << 16 | (word & 0xFF0000) << 24;
    });
    return words;
}

void colour16(const cv::Mat& image, cv::Mat& dst, const LevelColours& colours) {
    using Value = std::uint16_t;
    const SlotScale<Value> scale(valueRange<Value>(image));
    const std::array<PixelWord, 256> ofSlot = wideColours(colours);
    const bool gray = image.channels() == 1;
    std::array<unsigned char, stripPixels> slots;
    makeFromStrips<Value, Value>(
        image, dst, CV_16UC3, [&](const Value* in, Value* out, std::size_t count) {
            for (std::size_t i = 0; i < count; ++i)
                slots[i] =
                    scale.slot(gray ? in[i] : luma16(in[3 * i], in[3 * i + 1], in[3 * i + 2]));
            writePixelWords(out, count, [&](std::size_t i) { return ofSlot[slots[i]]; });
        });
}

} // namespace

bool pseudo(const cv::Mat& source, cv::Mat& dst, const LevelColours& colours) {
    switch (formOf(source)) {
    case SourceForm::gray8:
        colourGray8(source, dst, colours);
        return true;
    case SourceForm::colour8:
        colourColour8(source, dst, colours);
        return true;
    case SourceForm::gray16:
    case SourceForm::colour16:
        colour16(source, dst, colours);
        return true;
    case SourceForm::other:
        break;
    }
    return false;
}

// Luma can come out one below the smallest pixel value: like anything outside the range, that takes
// the nearest slot.
LevelColours lumaColours(ValueRange<unsigned char> range, const LevelColours& colours) {
    const SlotScale<unsigned char> scale(range);
    LevelColours ofLuma;
    for (std::size_t luma = 0; luma < ofLuma.size(); ++luma) {
        const auto inRange =
            std::clamp(static_cast<unsigned char>(luma), range.smallest, range.largest);
        ofLuma[luma] = colours[scale.slot(inRange)];
    }
    return ofLuma;
}

void paintByLuma(const unsigned char* pixels, unsigned char* coloured, std::size_t count,
                 const Palette& ofLuma) {
    std::array<unsigned char, stripPixels> luma;
    cutIntoStrips(count, [&](std::size_t first, std::size_t inStrip) {
        const unsigned char* const in = pixels + 3 * first;
        for (std::size_t i = 0; i < inStrip; ++i)
            luma[i] = luma8(in[3 * i], in[3 * i + 1], in[3 * i + 2]);
        ofLuma.paint(luma.data(), coloured + 3 * first, inStrip);
    });
}

} // namespace lumetra
