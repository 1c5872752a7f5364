#include "lumetra/colourise/tint.h"

#include <algorithm>

namespace lumetra {
namespace {

bool isByte(int component) { return component >= 0 && component <= 255; }

/// The 8-bit tint: value × component / 255, cut off. A product of bytes fits 16 bits, sixteen of
/// them in two vector registers; components of any value take 32, in which the product wraps.
template<class Product>
void tintBytes(const unsigned char* __restrict pixels, unsigned char* __restrict tinted,
               std::size_t count, const Tint& tint) {
    // Sixteen pixels side by side fill three registers, whose lanes belong to one channel each.
    constexpr std::size_t lanes = 48;
    Product factors[lanes];
    for (std::size_t i = 0; i < lanes; ++i)
        factors[i] = static_cast<Product>(tint[i % 3]);

    const auto tintLane = [&](unsigned char value, std::size_t lane) {
        const auto product =
            static_cast<Product>(value * static_cast<std::uint32_t>(factors[lane]));
        return static_cast<unsigned char>(product / 255);
    };
    const std::size_t values = 3 * count;
    std::size_t done = 0;
    for (; done + lanes <= values; done += lanes)
        for (std::size_t i = 0; i < lanes; ++i)
            tinted[done + i] = tintLane(pixels[done + i], i);
    for (std::size_t i = 0; done + i < values; ++i)
        tinted[done + i] = tintLane(pixels[done + i], i);
}

/// The 16-bit tint: bits 8 to 23 of the product of value and component. In 16 bits, they are the
/// high half of the value times 256 of the component, plus the value times the component's bits
/// that the 256 push out.
struct WideTint {
    explicit WideTint(int component)
        : low(static_cast<std::uint16_t>(static_cast<std::uint32_t>(component) << 8)),
          high(static_cast<std::uint16_t>(static_cast<std::uint32_t>(component) >> 8)) {}

    std::uint16_t tinted(std::uint16_t value) const {
        const auto carried = static_cast<std::uint16_t>(std::uint32_t{value} * low >> 16);
        return static_cast<std::uint16_t>(carried + std::uint32_t{value} * high);
    }

    std::uint16_t low;
    std::uint16_t high;
};

} // namespace

void tintPixels(const unsigned char* pixels, unsigned char* tinted, std::size_t count,
                const Tint& tint) {
    if (std::all_of(tint.begin(), tint.end(), isByte))
        tintBytes<std::uint16_t>(pixels, tinted, count, tint);
    else
        tintBytes<std::int32_t>(pixels, tinted, count, tint);
}

void tintSamples(const std::uint16_t* __restrict values, std::uint16_t* __restrict pixels,
                 std::size_t count, const Tint& tint) {
    const WideTint blue(tint[0]);
    const WideTint green(tint[1]);
    const WideTint red(tint[2]);
    for (std::size_t i = 0; i < count; ++i) {
        pixels[3 * i] = blue.tinted(values[i]);
        pixels[3 * i + 1] = green.tinted(values[i]);
        pixels[3 * i + 2] = red.tinted(values[i]);
    }
}

} // namespace lumetra
