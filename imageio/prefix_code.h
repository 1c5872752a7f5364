// Prefix codes as DEFLATE has them (RFC 1951, section 3.2.2).
#pragma once

#include <cstdint>
#include <vector>

namespace lumetra {

/// What is written for a symbol, lowest bit first; of length 0 if the symbol does not occur.
struct PrefixCode {
    std::uint16_t bits = 0;
    std::uint16_t length = 0;
};

/// The codes in which the symbols of a text take the fewest bits.
/// @param frequencies  How often each symbol occurs: at least two of them, no more than
/// 2^`longest`,
///                     together less than 2^28 times.
/// @param longest      The most bits of a code, 1 to 15.
std::vector<PrefixCode> prefixCodes(const std::vector<std::uint32_t>& frequencies,
                                    unsigned longest);

} // namespace lumetra
