// The straight line that a stretch follows between a black and a white level.
#pragma once

#include "lumetra/levels/sample_range.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace lumetra {

/// A black and a white level of one channel.
struct Levels {
    unsigned short black;
    unsigned short white;
};

/// The automatic levels of samples in a range: its ends, one step wider on each side within 0 to
/// 255 where they are equal or neighbours; 0 and 255 for the empty range.
Levels levelsOf(SampleRange<unsigned char> range);

/// The stretch of one channel: 255·(v − black)/(white − black), rounded, halves up, for a value v
/// between the levels, 0 below them and 255 above.
///
/// It is computed in 16 bits, eight values to a vector register: with x = v − black, clamped to 0
/// to span, the new value is the high half of (x·scale + offset)·multiplier.
struct LevelRamp {
    unsigned char black;
    unsigned char span;
    std::uint16_t scale;
    std::uint16_t offset;
    std::uint16_t multiplier;
};

/// Takes any levels: black is clamped to at most 253 and white to 2 to 255, and a white level at or
/// below the black one makes a threshold.
LevelRamp levelRamp(Levels levels);

/// The stretch of samples whose channels take turns.
template<std::size_t Channels>
class Stretch {
public:
    explicit Stretch(const std::array<Levels, Channels>& levels) {
        for (std::size_t channel = 0; channel < Channels; ++channel) {
            const LevelRamp ramp = levelRamp(levels[channel]);
            for (std::size_t i = channel; i < laneCount; i += Channels) {
                lanes_.black[i] = ramp.black;
                lanes_.span[i] = ramp.span;
                lanes_.scale[i] = ramp.scale;
                lanes_.offset[i] = ramp.offset;
                lanes_.multiplier[i] = ramp.multiplier;
            }
        }
    }

    /// Stretches `count` samples in place, the first of them of channel 0.
    void operator()(unsigned char* samples, std::size_t count) const {
        std::size_t done = 0;
        for (; done + laneCount <= count; done += laneCount)
            stretchLanes(samples + done, laneCount, lanes_);
        stretchLanes(samples + done, count - done, lanes_);
    }

private:
    static constexpr std::size_t laneCount = 16 * Channels;

    struct Lanes {
        unsigned char black[laneCount];
        unsigned char span[laneCount];
        std::uint16_t scale[laneCount];
        std::uint16_t offset[laneCount];
        std::uint16_t multiplier[laneCount];
    };

    static void stretchLanes(unsigned char* __restrict samples, std::size_t count,
                             const Lanes& __restrict lanes) {
        for (std::size_t i = 0; i < count; ++i) {
            const auto above =
                static_cast<unsigned char>(std::max(samples[i], lanes.black[i]) - lanes.black[i]);
            const auto scaled = static_cast<std::uint16_t>(
                std::min(above, lanes.span[i]) * lanes.scale[i] + lanes.offset[i]);
            samples[i] =
                static_cast<unsigned char>(std::uint32_t{scaled} * lanes.multiplier[i] >> 16);
        }
    }

    Lanes lanes_;
};

} // namespace lumetra
