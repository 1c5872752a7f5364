// Counts the memory that a call takes from the heap.
#pragma once

#include <cstddef>

/// Memory allocated since construction, at its peak. One at a time.
class MemoryMeter {
public:
    MemoryMeter();
    std::size_t peakBytes() const;

private:
    std::size_t before_;
};
