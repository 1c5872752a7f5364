#include "lumetra/colourise/tint.h"

#include <algorithm>

namespace lumetra {
namespace {

bool isByte(int component) { return component >= 0 && component <= 255; }

/// `tinted8` for components that are bytes: the product fits 16 bits, and so does the division.
unsigned char tintedByByte(unsigned char sample, std::uint16_t component) {
    const auto product = static_cast<std::uint16_t>(sample * component);
    const auto high = static_cast<std::uint16_t>(std::uint32_t{product} * 0x8081 >> 16);
    return static_cast<unsigned char>(high >> 7); // product / 255, exact in 16 bits
}

} // namespace

void tintPixels(const unsigned char* __restrict pixels, unsigned char* __restrict tinted,
                std::size_t count, const Tint& tint) {
    const std::size_t samples = 3 * count;
    if (!std::all_of(tint.begin(), tint.end(), isByte)) {
        for (std::size_t i = 0; i < samples; ++i)
            tinted[i] = tinted8(pixels[i], tint[i % 3]);
        return;
    }

    // Sixteen pixels at a time fill three vector registers, whose lanes belong to one channel each.
    constexpr std::size_t lanes = 48;
    std::uint16_t components[lanes];
    for (std::size_t i = 0; i < lanes; ++i)
        components[i] = static_cast<std::uint16_t>(tint[i % 3]);
    std::size_t done = 0;
    for (; done + lanes <= samples; done += lanes)
        for (std::size_t i = 0; i < lanes; ++i)
            tinted[done + i] = tintedByByte(pixels[done + i], components[i]);
    for (std::size_t i = 0; done + i < samples; ++i)
        tinted[done + i] = tintedByByte(pixels[done + i], components[i]);
}

void tintSamples(const std::uint16_t* samples, std::uint16_t* pixels, std::size_t count,
                 const Tint& tint) {
    const auto [blue, green, red] = tint;
    for (std::size_t i = 0; i < count; ++i) {
        pixels[3 * i] = tinted16(samples[i], blue);
        pixels[3 * i + 1] = tinted16(samples[i], green);
        pixels[3 * i + 2] = tinted16(samples[i], red);
    }
}

} // namespace lumetra
