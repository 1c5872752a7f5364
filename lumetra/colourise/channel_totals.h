// Which channel of an image is the brightest.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace lumetra {

/// The sums of each channel's values over 24-bit pixels.
class ChannelTotals {
public:
    void add(const unsigned char* pixels, std::size_t count);

    /// The channel with the largest total; the lowest of those that are equal.
    std::size_t dominantChannel() const;

private:
    void addStrip(const unsigned char* values, std::size_t count);

    std::array<std::uint64_t, 3> totals_{};
};

/// Fills all three bytes of each pixel with its value in one channel; `in` and `out` may be the
/// same.
void fillWithChannel(const unsigned char* in, std::size_t channel, unsigned char* out,
                     std::size_t count);

} // namespace lumetra
