// The colour of a dye and what it does to samples.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace lumetra {

/// A dye colour's components in the order of an image's channels: blue, green, red.
using Tint = std::array<int, 3>;

/// A product in 32 bits that wraps: samples go up to 65535 and components have any value.
constexpr std::uint32_t product(unsigned sample, int component) {
    return sample * static_cast<std::uint32_t>(component);
}

constexpr unsigned char tinted8(unsigned char sample, int component) {
    return static_cast<unsigned char>(static_cast<std::int32_t>(product(sample, component)) / 255);
}

constexpr std::uint16_t tinted16(std::uint16_t sample, int component) {
    return static_cast<std::uint16_t>(product(sample, component) >> 8);
}

/// Tints 24-bit pixels into others, which may not overlap them.
void tintPixels(const unsigned char* pixels, unsigned char* tinted, std::size_t count,
                const Tint& tint);

/// Makes 48-bit pixels of 16-bit samples.
void tintSamples(const std::uint16_t* samples, std::uint16_t* pixels, std::size_t count,
                 const Tint& tint);

} // namespace lumetra
