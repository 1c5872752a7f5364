// Smallest and largest samples.
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

    void include(SampleRange other) {
        smallest = std::min(smallest, other.smallest);
        largest = std::max(largest, other.largest);
    }
};

/// The ranges of the samples at places 0, 3, 6 ..., at 1, 4, 7 ... and at 2, 5, 8 ....
template<class Sample>
using ThreeRanges = std::array<SampleRange<Sample>, 3>;

/// The ranges of the three bytes of 24-bit pixels.
using ColourRanges = ThreeRanges<unsigned char>;

/// Adds the ranges of `count` samples more; the first of them has place 0.
template<class Sample>
void includeSamples(ThreeRanges<Sample>& ranges, const Sample* samples, std::size_t count) {
    // Sixteen triples side by side, so that each lane of a vector register belongs to one place.
    constexpr std::size_t lanes = 48;
    Sample smallest[lanes];
    Sample largest[lanes];
    std::fill_n(smallest, lanes, std::numeric_limits<Sample>::max());
    std::fill_n(largest, lanes, std::numeric_limits<Sample>::min());

    std::size_t done = 0;
    for (; done + lanes <= count; done += lanes) {
        for (std::size_t i = 0; i < lanes; ++i) {
            const Sample sample = samples[done + i];
            smallest[i] = sample < smallest[i] ? sample : smallest[i];
            largest[i] = sample > largest[i] ? sample : largest[i];
        }
    }

    for (std::size_t i = 0; i < lanes; ++i)
        ranges[i % 3].include({smallest[i], largest[i]});
    for (; done < count; ++done)
        ranges[done % 3].include({samples[done], samples[done]});
}

/// The range of all samples, whatever their place.
template<class Sample>
SampleRange<Sample> merged(const ThreeRanges<Sample>& ranges) {
    SampleRange<Sample> all;
    for (const SampleRange<Sample>& range : ranges)
        all.include(range);
    return all;
}

} // namespace lumetra
