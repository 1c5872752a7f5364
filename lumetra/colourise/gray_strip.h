// What colouring makes of each gray level.
#pragma once

#include "lumetra/colourise/paint.h"
#include "lumetra/colourise/tint.h"
#include "lumetra/levels/level_ramp.h"

#include <array>
#include <cstddef>

namespace lumetra {

/// A strip of 256 pixels, one for each gray level, which the stages of `Dye` turn into what they
/// make of the levels.
class GrayStrip {
public:
    GrayStrip();

    void stretch(const Stretch<3>& stretch);
    void fillWithChannel(std::size_t channel);
    LevelColours tinted(const Tint& tint) const;

private:
    std::array<unsigned char, 3 * 256> bytes_;
};

} // namespace lumetra
