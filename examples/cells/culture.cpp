#include "culture.h"

#include <algorithm>

#include <opencv2/core.hpp>

double Shape::reach(Point p) const {
    const Point axis = towards(angle), d = p - centre;
    const double u = d.dot(axis) / length, v = d.cross(axis) / width;
    const double around = std::atan2(v, u);
    double outline = 1;
    for (size_t i = 0; i < waves.size(); ++i)
        outline += waves[i] * std::cos(double(i + 2) * around + phases[i]);
    return std::hypot(u, v) / outline;
}

bool Cell::holds(Point p) const {
    const double reach = body.reach(p);
    return reach < 1 && std::all_of(neighbours.begin(), neighbours.end(),
                                    [&](const Shape& other) { return other.reach(p) >= reach; });
}

bool Cell::hasChromatinAt(Point p) const {
    return std::any_of(chromatin.begin(), chromatin.end(),
                       [&](const Shape& part) { return part.reach(p) < 1.1; });
}

namespace {

Shape randomShape(Point centre, double angle, double length, double width, double waviness,
                  Random& random) {
    Shape shape{centre, angle, length, width, {}, {}};
    for (size_t i = 0; i < shape.waves.size(); ++i) {
        shape.waves[i] = waviness * random.uniform(0.2, 1) / double(i + 1);
        shape.phases[i] = random.uniform(0, 2 * pi);
    }
    return shape;
}

Cell restingCell(Point centre, Random& random) {
    const double angle = random.uniform(0, pi), size = random.uniform(50, 64);
    const double stretch = random.uniform(1, 1.35);
    const Point nucleus = centre + random.away(0, 7);
    const double nucleusSize = random.uniform(15, 19), oval = random.uniform(1.05, 1.25);
    return {randomShape(centre, angle, size * stretch, size / stretch, 0.13, random),
            {randomShape(nucleus, angle + random.uniform(-0.4, 0.4), nucleusSize * oval,
                         nucleusSize / oval, 0.05, random)},
            random.uniform(0.65, 1.15),
            false,
            {}};
}

/// A cell that has rounded up and pulls its chromosomes apart.
Cell dividingCell(Point centre, Random& random) {
    const double angle = random.uniform(0, pi), apart = random.uniform(0, 7);
    Cell cell{randomShape(centre, angle, 34, 31, 0.02, random), {}, 1.2, true, {}};
    for (const double side : {-apart, apart})
        cell.chromatin.push_back(
            randomShape(centre + side * towards(angle), angle + pi / 2, 12, 3.6, 0.08, random));
    return cell;
}

} // namespace

std::vector<Cell> culture(int size, Random& random) {
    constexpr double spacing = 76, beyond = 30, farthestNeighbour = 140;
    std::vector<Cell> cells;
    const auto hasCellNear = [&](Point p) {
        return std::any_of(cells.begin(), cells.end(), [&](const Cell& cell) {
            return cv::norm(cell.body.centre - p) < spacing;
        });
    };
    const int attempts = 40 + size * size / 100;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const Point centre{random.uniform(-beyond, size + beyond),
                           random.uniform(-beyond, size + beyond)};
        if (!hasCellNear(centre))
            cells.push_back(cells.size() % 12 == 5 ? dividingCell(centre, random)
                                                   : restingCell(centre, random));
    }
    for (Cell& cell : cells)
        for (const Cell& other : cells)
            if (&other != &cell &&
                cv::norm(other.body.centre - cell.body.centre) < farthestNeighbour)
                cell.neighbours.push_back(other.body);
    return cells;
}
