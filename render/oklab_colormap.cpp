#include "render/colormaps.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace lumetra {
namespace {

constexpr double pi = 3.14159265358979323846;

using Rgb = std::array<double, 3>;

/// OKLab to linear sRGB; colours that a screen cannot show leave the range of 0 to 1.
Rgb linearRgb(double lightness, double a, double b) {
    const auto cube = [](double x) { return x * x * x; };
    const double l = cube(lightness + 0.3963377774 * a + 0.2158037573 * b);
    const double m = cube(lightness - 0.1055613458 * a - 0.0638541728 * b);
    const double s = cube(lightness - 0.0894841775 * a - 1.2914855480 * b);
    return {4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s,
            -1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s,
            -0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s};
}

bool isVisible(const Rgb& colour) {
    constexpr double tolerance = 1e-4; // far below one step of eight bits
    return std::all_of(colour.begin(), colour.end(),
                       [](double x) { return x >= -tolerance && x <= 1 + tolerance; });
}

/// The colour of this lightness and hue with the chroma wanted, or as much of it as can be shown.
Rgb shownColour(double lightness, double hue, double chroma) {
    Rgb colour;
    do {
        colour = linearRgb(lightness, chroma * std::cos(hue), chroma * std::sin(hue));
        chroma *= 0.99;
    } while (!isVisible(colour));
    return colour;
}

std::uint8_t screenValue(double linear) {
    const double x = std::clamp(linear, 0.0, 1.0);
    const double encoded = x <= 0.0031308 ? 12.92 * x : 1.055 * std::pow(x, 1 / 2.4) - 0.055;
    return static_cast<std::uint8_t>(std::lround(255 * encoded));
}

} // namespace

Colormap oklabColormap() {
    constexpr double brightest = 0.97, firstHue = 280 * pi / 180, lastHue = (360 + 105) * pi / 180;
    Colormap colormap;
    for (std::size_t i = 0; i < colormap.size(); ++i) {
        const double t = static_cast<double>(i) / static_cast<double>(colormap.size() - 1);
        const double hue = firstHue + (lastHue - firstHue) * t;
        const Rgb colour = shownColour(brightest * t, hue, 0.06 + 0.14 * std::sin(pi * t));
        colormap[i] = {screenValue(colour[0]), screenValue(colour[1]), screenValue(colour[2])};
    }
    return colormap;
}

} // namespace lumetra
