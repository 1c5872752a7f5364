#include "lumetra/colourise/paint.h"

#include "lumetra/colourise/strips.h"

#include <algorithm>

namespace lumetra {

Palette::Palette(const LevelColours& colours) {
    for (std::size_t level = 0; level < colours.size(); ++level) {
        first_[level] = colours[level];
        second_[level] = PixelWord{colours[level]} << 24;
    }
}

void Palette::paint(const unsigned char* levels, unsigned char* pixels, std::size_t count) const {
    writePixelWords(pixels, count / 2, [&](std::size_t i) {
        std::uint16_t pair;
        std::memcpy(&pair, levels + 2 * i, sizeof pair);
        return first_[pair & 0xFF] | second_[pair >> 8];
    });
    if (count % 2 != 0)
        std::memcpy(pixels + 3 * (count - 1), &first_[levels[count - 1]], 3);
}

void paint(const cv::Mat& image, std::size_t channel, const LevelColours& colours, cv::Mat& dst) {
    const Palette palette(colours);
    const auto channels = static_cast<std::size_t>(image.channels());
    std::array<unsigned char, stripPixels> levels;
    makeFromStrips<unsigned char, unsigned char>(
        image, dst, CV_8UC3, [&](const unsigned char* in, unsigned char* out, std::size_t count) {
            if (channels == 1)
                return palette.paint(in, out, count);
            for (std::size_t i = 0; i < count; ++i)
                levels[i] = in[3 * i + channel];
            palette.paint(levels.data(), out, count);
        });
}

} // namespace lumetra
