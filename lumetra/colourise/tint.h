// The colour of a dye and what it does to pixel values.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace lumetra {

/// A dye colour's components in the order of an image's channels: blue, green, red.
using Tint = std::array<int, 3>;

/// Tints 24-bit pixels into others, which may not overlap them.
void tintPixels(const unsigned char* pixels, unsigned char* tinted, std::size_t count,
                const Tint& tint);

/// Makes 48-bit pixels of 16-bit gray values, which they may not overlap.
void tintSamples(const std::uint16_t* values, std::uint16_t* pixels, std::size_t count,
                 const Tint& tint);

} // namespace lumetra
