// Smallest and largest values.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

namespace lumetra {

/// Smallest and largest value seen; starts out empty, with `smallest` above `largest`.
template<class Value>
struct ValueRange {
    Value smallest = std::numeric_limits<Value>::max();
    Value largest = std::numeric_limits<Value>::min();

    void include(ValueRange other) {
        smallest = std::min(smallest, other.smallest);
        largest = std::max(largest, other.largest);
    }
};

/// The ranges of the values at places 0, 3, 6 ..., at 1, 4, 7 ... and at 2, 5, 8 ....
template<class Value>
using ThreeRanges = std::array<ValueRange<Value>, 3>;

/// The ranges of the three bytes of 24-bit pixels.
using ColourRanges = ThreeRanges<unsigned char>;

/// Adds the ranges of `count` values more; the first of them has place 0.
template<class Value>
void includeValues(ThreeRanges<Value>& ranges, const Value* values, std::size_t count) {
    // Sixteen triples side by side, so that each lane of a vector register belongs to one place.
    constexpr std::size_t lanes = 48;
    Value smallest[lanes];
    Value largest[lanes];
    std::fill_n(smallest, lanes, std::numeric_limits<Value>::max());
    std::fill_n(largest, lanes, std::numeric_limits<Value>::min());

    std::size_t done = 0;
    for (; done + lanes <= count; done += lanes) {
        for (std::size_t i = 0; i < lanes; ++i) {
            const Value value = values[done + i];
            smallest[i] = value < smallest[i] ? value : smallest[i];
            largest[i] = value > largest[i] ? value : largest[i];
        }
    }

    for (std::size_t i = 0; i < lanes; ++i)
        ranges[i % 3].include({smallest[i], largest[i]});
    for (; done < count; ++done)
        ranges[done % 3].include({values[done], values[done]});
}

/// The range of all values, whatever their place.
template<class Value>
ValueRange<Value> merged(const ThreeRanges<Value>& ranges) {
    ValueRange<Value> all;
    for (const ValueRange<Value>& range : ranges)
        all.include(range);
    return all;
}

} // namespace lumetra
