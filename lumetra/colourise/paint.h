// Colouring by look-up: an 8-bit sample has at most 256 outcomes.
#pragma once

#include <opencv2/core/mat.hpp>

#include <array>
#include <cstddef>
#include <cstdint>

namespace lumetra {

/// A 24-bit pixel as it lies in memory, with zero bytes behind, in a word wide enough for two.
using PackedColour = std::uint64_t;

constexpr PackedColour packedColour(unsigned char blue, unsigned char green, unsigned char red) {
    return blue | PackedColour{green} << 8 | PackedColour{red} << 16;
}

/// A colour for each 8-bit level.
using LevelColours = std::array<PackedColour, 256>;

/// Writes pixels in the colours of their levels, two at a time.
class Palette {
public:
    explicit Palette(const LevelColours& colours);

    void paint(const unsigned char* levels, unsigned char* pixels, std::size_t count) const;

private:
    LevelColours first_;
    LevelColours second_; ///< The same colours, where the second pixel of a pair has them.
};

/// The picture in which each pixel has the colour of its sample in one channel of an 8-bit image.
void paint(const cv::Mat& image, std::size_t channel, const LevelColours& colours, cv::Mat& dst);

} // namespace lumetra
