#include "imageio/length_unit.h"

#include <QStringList>

#include <cmath>
#include <vector>

namespace lumetra {

std::optional<double> micrometres(double length, const QString& unit) {
    struct Unit {
        double micrometres;
        QStringList names;
    };
    static const std::vector<Unit> units{
        // The micro sign, and the Greek letter.
        {1,
         {QStringLiteral("\u00B5m"), QStringLiteral("\u03BCm"), "um", "micron", "microns",
          "micrometer", "micrometre", "micrometers", "micrometres"}},
        {1e-6, {"pm"}},
        {1e-4, {QStringLiteral("\u00C5"), QStringLiteral("\u212B"), "angstrom"}},
        {1e-3, {"nm", "nanometer", "nanometre", "nanometers", "nanometres"}},
        {1e3, {"mm", "millimeter", "millimetre", "millimeters", "millimetres"}},
        {1e4, {"cm", "centimeter", "centimetre", "centimeters", "centimetres"}},
        {1e6, {"m", "meter", "metre", "meters", "metres"}},
        {25400, {"in", "inch", "inches", "\""}},
    };
    const QString wanted = unit.trimmed();
    for (const Unit& known : units)
        if (known.names.contains(wanted, Qt::CaseInsensitive)) {
            const double result = length * known.micrometres;
            if (std::isfinite(result) && result > 0)
                return result;
        }
    return {};
}

std::optional<double> plainPixelSize(double micrometres) {
    constexpr double largest = 10;
    if (micrometres > 0 && micrometres <= largest)
        return micrometres;
    return {};
}

} // namespace lumetra
