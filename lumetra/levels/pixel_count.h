#pragma once

#include <cstddef>

namespace lumetra {

/// Pixels of a `w` × `h` buffer; none where a side is below 1.
inline std::size_t pixelCount(int w, int h) {
    return w > 0 && h > 0 ? static_cast<std::size_t>(w) * static_cast<std::size_t>(h) : 0;
}

} // namespace lumetra
