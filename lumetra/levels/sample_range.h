// Smallest and largest sample of a run.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

namespace lumetra {

/// Smallest and largest value seen; starts out empty, with `smallest` above `largest`.
template<class Sample>
struct SampleRange {
    Sample smallest = std::numeric_limits<Sample>::max();
    Sample largest = std::numeric_limits<Sample>::min();

    void include(Sample sample) {
        smallest = std::min(smallest, sample);
        largest = std::max(largest, sample);
    }

    void include(SampleRange other) {
        smallest = std::min(smallest, other.smallest);
        largest = std::max(largest, other.largest);
    }
};

/// The range of each channel of `count` samples that alternate over `Channels` channels.
///
/// `count` is a multiple of `Channels`.
template<std::size_t Channels, class Sample>
std::array<SampleRange<Sample>, Channels> channelRanges(const Sample* samples, std::size_t count) {
    // Sixteen pixels side by side fill whole vector registers, whatever the number of channels.
    constexpr std::size_t lanes = 16 * Channels;
    std::array<Sample, lanes> smallest;
    std::array<Sample, lanes> largest;
    smallest.fill(std::numeric_limits<Sample>::max());
    largest.fill(std::numeric_limits<Sample>::min());

    std::size_t done = 0;
    for (; done + lanes <= count; done += lanes) {
        for (std::size_t i = 0; i < lanes; ++i) {
            smallest[i] = std::min(smallest[i], samples[done + i]);
            largest[i] = std::max(largest[i], samples[done + i]);
        }
    }

    std::array<SampleRange<Sample>, Channels> ranges;
    for (std::size_t i = 0; i < lanes; ++i)
        ranges[i % Channels].include(SampleRange<Sample>{smallest[i], largest[i]});
    for (; done < count; ++done)
        ranges[done % Channels].include(samples[done]);
    return ranges;
}

} // namespace lumetra
