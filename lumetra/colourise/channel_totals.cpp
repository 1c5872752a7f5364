#include "lumetra/colourise/channel_totals.h"

#include "lumetra/colourise/strips.h"

#include <algorithm>

namespace lumetra {

void ChannelTotals::add(const unsigned char* pixels, std::size_t count) {
    cutIntoStrips(count, [&](std::size_t first, std::size_t inStrip) {
        addStrip(pixels + 3 * first, 3 * inStrip);
    });
}

std::size_t ChannelTotals::dominantChannel() const {
    const auto largest = std::max_element(totals_.begin(), totals_.end());
    return static_cast<std::size_t>(largest - totals_.begin());
}

void ChannelTotals::addStrip(const unsigned char* values, std::size_t count) {
    constexpr std::size_t lanes = 48;
    static_assert(stripPixels / 16 * 255 <= 65535, "a lane must hold the sum of a strip");
    std::uint16_t sums[lanes] = {};
    std::size_t done = 0;
    for (; done + lanes <= count; done += lanes)
        for (std::size_t i = 0; i < lanes; ++i)
            sums[i] = static_cast<std::uint16_t>(sums[i] + values[done + i]);
    for (std::size_t i = 0; i < lanes; ++i)
        totals_[i % 3] += sums[i];
    for (; done < count; ++done)
        totals_[done % 3] += values[done];
}

void fillWithChannel(const unsigned char* in, std::size_t channel, unsigned char* out,
                     std::size_t count) {
    for (std::size_t x = 0; x < count; ++x) {
        const unsigned char value = in[3 * x + channel];
        out[3 * x] = out[3 * x + 1] = out[3 * x + 2] = value;
    }
}

} // namespace lumetra
