#include "lumetra/colourise/gray_strip.h"

#include "lumetra/colourise/channel_totals.h"

#include <cstring>

namespace lumetra {
namespace {

constexpr std::size_t levelCount = 256;

constexpr std::array<unsigned char, 3 * levelCount> grayPixels = [] {
    std::array<unsigned char, 3 * levelCount> pixels{};
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<unsigned char>(i / 3);
    return pixels;
}();

} // namespace

GrayStrip::GrayStrip() : bytes_(grayPixels) {}

void GrayStrip::stretch(const Stretch<3>& stretch) { stretch(bytes_.data(), bytes_.size()); }

void GrayStrip::fillWithChannel(std::size_t channel) {
    lumetra::fillWithChannel(bytes_.data(), channel, bytes_.data(), levelCount);
}

LevelColours GrayStrip::tinted(const Tint& tint) const {
    std::array<unsigned char, 3 * levelCount + 1> pixels; // the last one is read with a byte behind
    tintPixels(bytes_.data(), pixels.data(), levelCount, tint);
    pixels.back() = 0;
    LevelColours colours;
    for (std::size_t level = 0; level < colours.size(); ++level) {
        PackedColour colour;
        std::memcpy(&colour, &pixels[3 * level], sizeof colour);
        colours[level] = colour & 0xFFFFFF;
    }
    return colours;
}

} // namespace lumetra
