#include "lumetra/colourise/tint.h"

#include <algorithm>

namespace lumetra {
namespace {

/// The 8-bit tint. The product is formed in 32 bits and wraps: components have any value.
unsigned char tinted8(unsigned char sample, int component) {
    const std::uint32_t product = sample * static_cast<std::uint32_t>(component);
    return static_cast<unsigned char>(static_cast<std::int32_t>(product) / 255);
}

bool isByte(int component) { return component >= 0 && component <= 255; }

/// What `tinted8` does with components that are bytes, sixteen pixels side by side: they fill three
/// vector registers, whose lanes belong to one channel each.
///
/// sample·component/255, cut off, is the high half of sample·(257·component + 1), for every sample
/// and every component below 255. For 255 the factor wraps to 0 and the sample itself is let
/// through.
class TintLanes {
public:
    static constexpr std::size_t count = 48;

    explicit TintLanes(const Tint& tint) {
        for (std::size_t i = 0; i < count; ++i) {
            factor_[i] = static_cast<std::uint16_t>(257 * tint[i % 3] + 1);
            through_[i] = tint[i % 3] == 255 ? 255 : 0;
        }
    }

    unsigned char tinted(unsigned char sample, std::size_t lane) const {
        const auto product = std::uint32_t{sample} * factor_[lane];
        return static_cast<unsigned char>(product >> 16 | (sample & through_[lane]));
    }

private:
    std::uint16_t factor_[count];
    unsigned char through_[count];
};

/// The 16-bit tint: bits 8 to 23 of the product of sample and component. In 16 bits, they are the
/// high half of the sample times 256 of the component, plus the sample times the component's bits
/// that the 256 push out.
struct WideTint {
    explicit WideTint(int component)
        : low(static_cast<std::uint16_t>(static_cast<std::uint32_t>(component) << 8)),
          high(static_cast<std::uint16_t>(static_cast<std::uint32_t>(component) >> 8)) {}

    std::uint16_t tinted(std::uint16_t sample) const {
        const auto carried = static_cast<std::uint16_t>(std::uint32_t{sample} * low >> 16);
        return static_cast<std::uint16_t>(carried + std::uint32_t{sample} * high);
    }

    std::uint16_t low;
    std::uint16_t high;
};

} // namespace

void tintPixels(const unsigned char* __restrict pixels, unsigned char* __restrict tinted,
                std::size_t count, const Tint& tint) {
    const std::size_t samples = 3 * count;
    if (!std::all_of(tint.begin(), tint.end(), isByte)) {
        for (std::size_t i = 0; i < samples; ++i)
            tinted[i] = tinted8(pixels[i], tint[i % 3]);
        return;
    }

    const TintLanes lanes(tint);
    std::size_t done = 0;
    for (; done + TintLanes::count <= samples; done += TintLanes::count)
        for (std::size_t i = 0; i < TintLanes::count; ++i)
            tinted[done + i] = lanes.tinted(pixels[done + i], i);
    for (std::size_t i = 0; done + i < samples; ++i)
        tinted[done + i] = lanes.tinted(pixels[done + i], i);
}

void tintSamples(const std::uint16_t* __restrict samples, std::uint16_t* __restrict pixels,
                 std::size_t count, const Tint& tint) {
    const WideTint blue(tint[0]);
    const WideTint green(tint[1]);
    const WideTint red(tint[2]);
    for (std::size_t i = 0; i < count; ++i) {
        pixels[3 * i] = blue.tinted(samples[i]);
        pixels[3 * i + 1] = green.tinted(samples[i]);
        pixels[3 * i + 2] = red.tinted(samples[i]);
    }
}

} // namespace lumetra
