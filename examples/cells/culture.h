/// @file
/// Cultured cells: their positions and shapes.

#ifndef LUMETRA_EXAMPLES_CULTURE_H
#define LUMETRA_EXAMPLES_CULTURE_H

#include <array>
#include <cmath>
#include <random>
#include <vector>

#include <opencv2/core/types.hpp>

using Point = cv::Point2d;

inline constexpr double pi = 3.14159265358979323846;

inline Point towards(double angle) { return {std::cos(angle), std::sin(angle)}; }

/// Random numbers that are the same with every standard library; the distributions of <random> may
/// differ.
class Random {
public:
    explicit Random(unsigned seed) : engine(seed) {}

    double uniform(double low, double high) {
        return low + (high - low) * static_cast<double>(engine()) / 4294967296.0;
    }

    double normal() {
        const double radius = std::sqrt(-2 * std::log(1 - uniform(0, 1)));
        return radius * std::cos(uniform(0, 2 * pi));
    }

    /// A point at a distance of `low` to `high` from the origin.
    Point away(double low, double high) {
        const double distance = uniform(low, high);
        return distance * towards(uniform(0, 2 * pi));
    }

private:
    std::mt19937 engine;
};

/// An ellipse with a few waves in its outline.
struct Shape {
    Point centre;
    double angle, length, width; ///< Direction of the long axis and both half axes, in pixels.
    std::array<double, 3> waves, phases;

    /// 0 in the centre, 1 on the outline, growing outwards.
    double reach(Point p) const;
};

struct Cell {
    Shape body;
    std::vector<Shape> chromatin; ///< One nucleus, or the two plates of a dividing cell.
    double stain;                 ///< Relative uptake of the dyes, about 1.
    bool dividing;
    std::vector<Shape> neighbours; ///< The bodies of the cells around it.

    /// Whether a point lies in this cell, not in a neighbour.
    bool holds(Point p) const;

    bool hasChromatinAt(Point p) const;
};

/// Cells side by side, in the field and slightly beyond it; about one in twelve is dividing.
std::vector<Cell> culture(int size, Random& random);

#endif
