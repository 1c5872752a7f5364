// What gray and colour levels share: the gap between a black and a white level, and the table that
// a stretch is made of.
#pragma once

#include <array>

namespace lumetra {

/// A black and a white level of one channel.
struct Levels {
    unsigned short black;
    unsigned short white;
};

/// The levels themselves if black + 1 < white, else one step wider on each side within 0 to 255.
Levels withMinimumGap(Levels measured);

/// New value of each 8-bit value.
using LevelTable = std::array<unsigned char, 256>;

/// The table that maps black to 0, white to 255 and the values between linearly, rounded.
///
/// Any levels are taken; black is clamped to at most 253, white to 2 to 255.
LevelTable levelTable(Levels levels);

} // namespace lumetra
