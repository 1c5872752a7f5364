// How contrast limits are found.
#pragma once

#include "render/histogram.h"

#include <optional>
#include <string>
#include <string_view>

namespace lumetra {

/// The word of a user for how contrast limits are found.
struct LUMETRA_RENDER_EXPORT LevelPolicy {
    enum class Method {
        clip,  ///< The range of the pixel values, without a share cut off at each end.
        fixed, ///< Given by the user.
        none   ///< Pixel values stay as they are, in their bit depth.
    };
    Method method = Method::clip;
    double percent = 0.1; ///< Of `clip`, from 0 to below 50; 0 takes smallest and largest value.
    ValueLimits limits;   ///< Of `fixed`, in pixel values of whatever type.

    /// The policy of limits that are known.
    static LevelPolicy fixedTo(ValueLimits limits) { return {Method::fixed, 0, limits}; }
    static LevelPolicy fixedTo(ContrastLimits limits) {
        return fixedTo(
            ValueLimits{static_cast<double>(limits.low), static_cast<double>(limits.high)});
    }

    /// Whether the limits depend on images.
    bool isMeasured() const { return method == Method::clip; }

    /// The limits that are known before there is an image; none where they are not whole numbers
    /// from 0 to 65535, which fit images of 8 or 16 bits alone.
    std::optional<ContrastLimits> known() const;

    /// As `parseLevelPolicy` understands it.
    std::string text() const;
};

/// Understands `auto` (smallest and largest pixel value), `clip:PERCENT`, `LOW:HIGH` (finite
/// numbers, LOW below HIGH) and `none`.
/// @throws RenderError for anything else.
LUMETRA_RENDER_EXPORT LevelPolicy parseLevelPolicy(std::string_view text);

/// The contrast limits of pixel values so distributed; none if they stay as they are.
///
/// Where a share cut off leaves one value only, that of a constant background, it stays black: the
/// limits are this value and the largest one, or, if none is larger, the smallest one and this. An
/// image of one value has its neighbours within the bit depth as limits, as the library's automatic
/// levels are.
LUMETRA_RENDER_EXPORT std::optional<ContrastLimits> levelsOf(const Histogram& histogram,
                                                             const LevelPolicy& policy);

} // namespace lumetra
