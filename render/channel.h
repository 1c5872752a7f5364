// How a channel is displayed.
#pragma once

#include "render/blend.h"
#include "render/colour.h"

#include <opencv2/core/types.hpp>

#include <optional>
#include <string>

namespace lumetra {

/// The pixel values that are displayed as black and as full brightness, in the units of the plane:
/// from 0 to 65535, `low` below `high`.
struct ContrastLimits {
    int low = 0;
    int high = 255;
};

inline bool operator==(ContrastLimits a, ContrastLimits b) {
    return a.low == b.low && a.high == b.high;
}
inline bool operator!=(ContrastLimits a, ContrastLimits b) { return !(a == b); }

/// The same of pixel values of any type, such as floating-point ones: finite, `low` below `high`.
struct ValueLimits {
    double low = 0;
    double high = 1;
};

inline bool operator==(ValueLimits a, ValueLimits b) { return a.low == b.low && a.high == b.high; }
inline bool operator!=(ValueLimits a, ValueLimits b) { return !(a == b); }

/// The display settings of one channel. All of it is plain data: kept in settings files, edited by
/// panels, compared.
struct Channel {
    std::string name; ///< What the user calls it, in UTF-8; may be empty.
    std::string dye;  ///< A dye's name in UTF-8, or empty where only the colour is known.
    Colour colour{255, 255, 255};         ///< The dye's colour, or the user's.
    cv::Point offset;                     ///< Pixels that the plane is moved left (x) and up (y).
    std::optional<ContrastLimits> levels; ///< None keeps pixel values and bit depth.
    double gamma = 1; ///< From `smallestGamma` to `largestGamma`: below 1 brightens mid-tones.
    bool visible = true;
    Blend blend = Blend::add; ///< How it is laid over the visible channels before it.
    int levelsBits = 0; ///< The bit depth that `levels` were found at, 8 or 16; 0 if not known.
    /// Of a channel whose pixel values are neither 8- nor 16-bit unsigned: the contrast limits, as
    /// which its plane was brought to 16 bits, so that `levels` are 0 and 65535.
    std::optional<ValueLimits> valueLimits{};
    std::optional<Colormap> colormap = {}; ///< In place of the colour; what it makes has 8 bits.
};

inline bool operator==(const Channel& a, const Channel& b) {
    return a.name == b.name && a.dye == b.dye && a.colour == b.colour && a.offset == b.offset &&
           a.levels == b.levels && a.levelsBits == b.levelsBits && a.valueLimits == b.valueLimits &&
           a.gamma == b.gamma && a.visible == b.visible && a.blend == b.blend &&
           a.colormap == b.colormap;
}
inline bool operator!=(const Channel& a, const Channel& b) { return !(a == b); }

/// The range of gammas that make sense.
constexpr double smallestGamma = 0.01;
constexpr double largestGamma = 100;

} // namespace lumetra
