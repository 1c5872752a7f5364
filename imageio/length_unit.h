// Lengths as image files give them.
#pragma once

#include <QString>

#include <optional>

namespace lumetra {

/// A length in µm.
/// @param unit  As metadata write it: "µm", "um", "micron", "nm", "mm", "cm", "inch", ...
/// @return Nothing if the unit is no length (a pixel, a unit not known), or the length not a
///         positive finite number.
std::optional<double> micrometres(double length, const QString& unit);

/// A pixel size that plain resolution tags tell; nothing if it is larger than 10 µm: resolutions
/// below 2540 dpi (72, 96, 300, ...) are for screens and printers.
std::optional<double> plainPixelSize(double micrometres);

} // namespace lumetra
