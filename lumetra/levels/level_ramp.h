// The straight line that a stretch follows between a black and a white level.
#pragma once

#include "lumetra/levels/value_range.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace lumetra {

/// A black and a white level of one channel.
struct Levels {
    unsigned short black;
    unsigned short white;
};

/// The levels of blue, green and red.
using ChannelLevels = std::array<Levels, 3>;

/// The automatic levels of values in a range: its ends, one step wider on each side within 0 to
/// 255 where they are equal or neighbours; 0 and 255 for the empty range.
Levels levelsOf(ValueRange<unsigned char> range);

/// The stretch of one channel: 255·(v − black)/(white − black), rounded, halves up, for a value v
/// between the levels, 0 below them and 255 above.
///
/// It is computed in 16 bits, eight values to a vector register: with v clamped to the levels, the
/// new value is the high half of (v·scale + offset)·multiplier, shifted right by `shift` more. The
/// sum wraps around to a number of 16 bits.
struct LevelRamp {
    static constexpr int shift = 7;

    unsigned char black;
    unsigned char white;
    std::uint16_t scale;
    std::uint16_t offset;
    std::uint16_t multiplier;
};

/// Takes any levels: black is clamped to at most 253 and white to 2 to 255, and a white level at or
/// below the black one makes a threshold.
LevelRamp levelRamp(Levels levels);

/// The stretch of values whose channels take turns.
template<std::size_t Channels>
class Stretch {
public:
    explicit Stretch(const std::array<Levels, Channels>& levels) {
        for (std::size_t channel = 0; channel < Channels; ++channel) {
            const LevelRamp ramp = levelRamp(levels[channel]);
            for (std::size_t i = channel; i < laneCount; i += Channels) {
                lanes_.black[i] = ramp.black;
                lanes_.white[i] = ramp.white;
                lanes_.scale[i] = ramp.scale;
                lanes_.offset[i] = ramp.offset;
                lanes_.multiplier[i] = ramp.multiplier;
            }
        }
    }

    /// Stretches `count` values in place, the first of them of channel 0.
    void operator()(unsigned char* values, std::size_t count) const {
        std::size_t done = 0;
        for (; done + laneCount <= count; done += laneCount)
            stretchLanes(values + done, laneCount, &lanes_);
        stretchLanes(values + done, count - done, &lanes_);
    }

private:
    static constexpr std::size_t laneCount = 16 * Channels;

    struct Lanes {
        unsigned char black[laneCount];
        unsigned char white[laneCount];
        std::uint16_t scale[laneCount];
        std::uint16_t offset[laneCount];
        std::uint16_t multiplier[laneCount];
    };

    static void stretchLanes(unsigned char* __restrict values, std::size_t count,
                             const Lanes* __restrict lanes) {
        for (std::size_t i = 0; i < count; ++i) {
            // Compared by value: references to the larger one become two instructions more.
            const unsigned char value = values[i];
            const unsigned char black = lanes->black[i];
            const unsigned char white = lanes->white[i];
            const unsigned char fromBlack = value < black ? black : value;
            const unsigned char inside = fromBlack < white ? fromBlack : white;
            const auto scaled =
                static_cast<std::uint16_t>(inside * lanes->scale[i] + lanes->offset[i]);
            const auto high =
                static_cast<std::uint16_t>(std::uint32_t{scaled} * lanes->multiplier[i] >> 16);
            values[i] = static_cast<unsigned char>(high >> LevelRamp::shift);
        }
    }

    Lanes lanes_;
};

} // namespace lumetra
