// Colouring by look-up: an 8-bit pixel value has at most 256 outcomes.
#pragma once

#include <opencv2/core/mat.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace lumetra {

#ifdef __BYTE_ORDER__ // compilers without it know no other order than this
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__,
              "pixels are packed into words whose lowest byte is the first in memory");
#endif

/// A colour in one number: blue in the lowest byte, then green and red.
using PackedColour = std::uint32_t;

constexpr PackedColour packedColour(unsigned char blue, unsigned char green, unsigned char red) {
    return blue | PackedColour{green} << 8 | PackedColour{red} << 16;
}

/// A colour for each 8-bit level.
using LevelColours = std::array<PackedColour, 256>;

/// Six bytes of pixels as they lie in memory: two 24-bit pixels or one of 48 bits. The two bytes
/// above them do not matter.
using PixelWord = std::uint64_t;

/// Writes the words that `wordAt(i)` gives for 0 to `count` − 1, six bytes of each, one behind the
/// other. A whole word is stored at a time: its last two bytes lie where the next word comes. Of
/// the last one only the six bytes are stored, so nothing behind them is ever written.
template<class WordAt>
void writePixelWords(void* pixels, std::size_t count, WordAt wordAt) {
    constexpr std::size_t bytes = 6;
    constexpr std::size_t block = 8; // as many as the compiler unrolls
    auto* const out = static_cast<unsigned char*>(pixels);
    const auto write = [&](std::size_t i, std::size_t stored) {
        const PixelWord word = wordAt(i);
        std::memcpy(out + bytes * i, &word, stored);
    };
    std::size_t done = 0;
    for (; done + block < count; done += block)
        for (std::size_t i = 0; i < block; ++i)
            write(done + i, sizeof(PixelWord));
    for (; done + 1 < count; ++done)
        write(done, sizeof(PixelWord));
    if (done < count)
        write(done, bytes);
}

/// Writes 24-bit pixels in the colours of their levels, two at a time.
class Palette {
public:
    explicit Palette(const LevelColours& colours);

    void paint(const unsigned char* levels, unsigned char* pixels, std::size_t count) const;

private:
    using Words = std::array<PixelWord, 256>;

    Words first_;  ///< The colours where the first pixel of a word has them.
    Words second_; ///< The same, where the second one does.
};

/// Makes `dst` the image in which each pixel has the colour of its value in one channel of an 8-bit
/// image.
void paint(const cv::Mat& image, std::size_t channel, const LevelColours& colours, cv::Mat& dst);

} // namespace lumetra
