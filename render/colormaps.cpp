#include "render/colormaps.h"

#include "render/colormap_knots.h"

#include <algorithm>
#include <cstddef>

namespace lumetra {
namespace {

/// Steps and values of one component between which it follows a straight line.
class Knots {
public:
    explicit Knots(std::string_view digits) : digits_(digits) {}

    std::size_t size() const { return digits_.size() / 4; }
    int step(std::size_t knot) const { return byteAt(4 * knot); }
    int value(std::size_t knot) const { return byteAt(4 * knot + 2); }

private:
    int byteAt(std::size_t i) const { return 16 * digit(digits_[i]) + digit(digits_[i + 1]); }
    static int digit(char c) { return c <= '9' ? c - '0' : c - 'A' + 10; }

    std::string_view digits_;
};

/// Where the line through two knots is at a step between them, rounded, halves up.
int onLine(const Knots& knots, std::size_t first, int step) {
    const int run = knots.step(first + 1) - knots.step(first);
    const int rise = knots.value(first + 1) - knots.value(first);
    const int doubled = 2 * (rise * (step - knots.step(first)) + knots.value(first) * run) + run;
    return doubled / (2 * run);
}

void fill(Colormap& colormap, std::uint8_t Colour::*component, const Knots& knots) {
    for (std::size_t knot = 0; knot + 1 < knots.size(); ++knot)
        for (int step = knots.step(knot); step <= knots.step(knot + 1); ++step)
            colormap[static_cast<std::size_t>(step)].*component =
                static_cast<std::uint8_t>(onLine(knots, knot, step));
}

Colormap grayColormap() {
    Colormap colormap;
    for (std::size_t i = 0; i < colormap.size(); ++i) {
        const auto level = static_cast<std::uint8_t>(i);
        colormap[i] = {level, level, level};
    }
    return colormap;
}

} // namespace

std::vector<const char*> colormapNames() {
    std::vector<const char*> names{"gray", "oklab"};
    for (const ColormapKnots& knots : colormapKnots)
        names.push_back(knots.name);
    return names;
}

std::optional<Colormap> findColormap(std::string_view name) {
    if (name == "gray")
        return grayColormap();
    if (name == "oklab")
        return oklabColormap();
    for (const ColormapKnots& knots : colormapKnots) {
        if (name != knots.name)
            continue;
        Colormap colormap;
        fill(colormap, &Colour::red, Knots(knots.red));
        fill(colormap, &Colour::green, Knots(knots.green));
        fill(colormap, &Colour::blue, Knots(knots.blue));
        return colormap;
    }
    return std::nullopt;
}

Colormap reversed(const Colormap& colormap) {
    Colormap result = colormap;
    std::reverse(result.begin(), result.end());
    return result;
}

} // namespace lumetra
