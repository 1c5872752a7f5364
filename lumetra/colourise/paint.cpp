#include "lumetra/colourise/paint.h"

#include "lumetra/colourise/strips.h"

#include <algorithm>
#include <cstring>

namespace lumetra {

Palette::Palette(const LevelColours& colours) : first_(colours) {
    std::transform(colours.begin(), colours.end(), second_.begin(),
                   [](PackedColour colour) { return colour << 24; });
}

void Palette::paint(const unsigned char* levels, unsigned char* pixels, std::size_t count) const {
    // Whole words are fastest. Of a pair's levels, two more are read and not used; of its pixels,
    // two bytes more are written, where the next pixel is about to be. So two pixels at least are
    // left for the end.
    constexpr std::size_t block = 16;
    std::size_t done = 0;
    for (; done + block + 2 <= count; done += block, levels += block, pixels += 3 * block) {
        for (std::size_t i = 0; i < block; i += 2) {
            std::uint32_t ahead;
            std::memcpy(&ahead, levels + i, sizeof ahead);
            const PackedColour pair = first_[ahead & 0xFF] | second_[ahead >> 8 & 0xFF];
            std::memcpy(pixels + 3 * i, &pair, sizeof pair);
        }
    }
    for (; done < count; ++done, ++levels, pixels += 3)
        std::memcpy(pixels, &first_[*levels], 3);
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
