// Pixels side by side: from the values of all channels to those of the image.
#pragma once

#include "render/blend.h"
#include "render/instruction_set.h"
#include "render/intensity_lut.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumetra {

/// A component of a colour, for tinting: an intensity v becomes v · component / 255, truncated, if
/// it has 8 bits, and v · component / 256 if it has 16. Both are the high half of one product.
struct TintFactor {
    TintFactor() = default;
    TintFactor(std::uint8_t component, bool is16Bit);

    std::uint16_t factor = 0; ///< The tinted intensity is v · factor / 65,536, truncated,
    bool isWhole = false;     ///< or v itself.
};

/// The values of a channel, and what is made of them: intensities, and components in the order that
/// the image has them.
struct RowChannel {
    const void* values = nullptr; ///< Of `bitDepth` bits, one for each pixel.
    int bitDepth = 8;
    const IntensityLut* lut = nullptr; ///< To 8 bits; without it, values are intensities.

    std::array<TintFactor, 3> factors;
    /// In place of the factors, the colour of every intensity: the first component in the lowest
    /// byte, in the highest one what an image of four components has there.
    const std::uint32_t* colours = nullptr;

    Blend blend = Blend::add;

    bool is16Bit() const { return bitDepth == 16 && !lut && !colours; }
};

/// A row of the image, or several that lie one behind the other.
struct Row {
    std::vector<RowChannel> channels; ///< At least one; the first is laid over black.
    int components = 3;               ///< 4 of 8 bits each have 255 in the last.
    bool is16Bit = false;             ///< Then 8-bit channels keep their share of full scale.
    void* pixels = nullptr;
    std::size_t count = 0; ///< Of pixels.
};

using RenderRow = void (*)(const Row& row);

/// The function that fills in the pixels of a row, as it is compiled for these instructions.
RenderRow renderRowFor(InstructionSet set);

} // namespace lumetra
