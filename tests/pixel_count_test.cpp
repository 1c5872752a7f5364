// Pixels of buffers that no test has the memory for.

#include "lumetra/levels/pixel_count.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

TEST(PixelCount, IsExactBeyondInt) {
    for (std::size_t w : {1U, 46341U, 65536U, 1U << 30, unsigned{INT_MAX}})
        for (std::size_t h : {2U, 46341U, 65536U, unsigned{INT_MAX}})
            EXPECT_EQ(lumetra::pixelCount(static_cast<int>(w), static_cast<int>(h)), w * h);
}

} // namespace
