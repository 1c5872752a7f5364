// DEFLATE (RFC 1951) for bytes that repeat, if at all, as runs.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumetra {

/// Compresses bytes block by block. Runs of one byte are its only matches; all else is left to
/// prefix codes, which are made for each block.
class DeflateEncoder {
public:
    static constexpr std::size_t largestBlock = 1 << 17; ///< Codes and bytes stay in the cache.

    /// Appends a block to `out`, as far as it fills whole bytes.
    /// @param count   1 to `largestBlock`.
    /// @param isLast  Ends the stream and fills up its last byte.
    void encode(const std::uint8_t* bytes, std::size_t count, bool isLast,
                std::vector<std::uint8_t>& out);

    /// Fills up the last byte so that another encoder's blocks can follow.
    void endPart(std::vector<std::uint8_t>& out);

    /// The end of a stream of parts: a last block that is empty.
    static std::array<std::uint8_t, 5> lastBlock() { return {1, 0, 0, 0xff, 0xff}; }

private:
    std::uint64_t left_ = 0; ///< Bits that do not fill a byte yet, the first one lowest.
    unsigned leftCount_ = 0;
};

} // namespace lumetra
