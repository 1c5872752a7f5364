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
    // Whole words are fastest. The two bytes too many of a pair land where the next pixel is about
    // to be written, so at least one pixel is left for the end.
    constexpr std::size_t block = 8;
    std::size_t done = 0;
    for (; done + block < count; done += block, levels += block, pixels += 3 * block) {
        for (std::size_t i = 0; i < block; i += 2) {
            const PackedColour pair = first_[levels[i]] | second_[levels[i + 1]];
            std::memcpy(pixels + 3 * i, &pair, sizeof pair);
        }
    }
    for (; done < count; ++done, ++levels, pixels += 3)
        std::memcpy(pixels, &first_[*levels], 3);
}

cv::Mat painted(const cv::Mat& image, std::size_t channel, const LevelColours& colours) {
    const Palette palette(colours);
    const auto channels = static_cast<std::size_t>(image.channels());
    std::array<unsigned char, stripPixels> levels;
    return madeFromStrips<unsigned char, unsigned char>(
        image, CV_8UC3, [&](const unsigned char* in, unsigned char* out, std::size_t count) {
            if (channels == 1)
                return palette.paint(in, out, count);
            for (std::size_t i = 0; i < count; ++i)
                levels[i] = in[3 * i + channel];
            palette.paint(levels.data(), out, count);
        });
}

} // namespace lumetra
