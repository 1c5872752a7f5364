#include "stains.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <opencv2/core.hpp>

namespace {

/// Lets `draw(point)` add to every pixel of a square around a shape.
template<typename Draw>
void aroundShape(Light& light, const Shape& shape, const Draw& draw) {
    const int far = cvCeil(1.4 * std::max(shape.length, shape.width));
    cv::Rect const box(cvRound(shape.centre.x) - far, cvRound(shape.centre.y) - far, 2 * far,
                       2 * far);
    cv::Rect const seen = box & cv::Rect({}, light.size());
    for (int y = seen.y; y < seen.br().y; ++y)
        for (int x = seen.x; x < seen.br().x; ++x)
            light(y, x) += float(draw(Point(x, y)));
}

/// A cloudy texture of mean 0 and deviation 1.
Light clouds(int size, double sigma, Random& random) {
    Light noise(size, size);
    for (float& value : noise)
        value = float(random.normal());
    Light texture = blurred(noise, sigma);
    cv::Scalar mean, deviation;
    cv::meanStdDev(texture, mean, deviation);
    texture = (texture - mean[0]) / deviation[0];
    return texture;
}

/// Follows a growing fibre through its cell and calls `draw(point)` at each step of one pixel. At
/// the edge of the cell the fibre stops or turns along it.
template<typename Draw>
void grow(Point p, double heading, double length, double bending, const Cell& cell, Random& random,
          const Draw& draw) {
    const double turn = random.uniform(0, 1) < 0.5 ? -0.3 : 0.3;
    double curvature = 0;
    for (int grown = 0; grown < length; ++grown) {
        curvature = 0.92 * curvature + bending * random.normal();
        heading += curvature;
        for (int turns = 0; !cell.holds(p + 2 * towards(heading)); ++turns) {
            if (turns == 8 || (turns == 0 && random.uniform(0, 1) < 0.12))
                return;
            heading += turn;
        }
        p += towards(heading);
        draw(p);
    }
}

/// The fibres between the two poles of a dividing cell.
void drawSpindle(Light& light, const Cell& cell, Random& random) {
    const Point axis = towards(cell.body.angle), across(-axis.y, axis.x);
    for (int fibre = 0; fibre < 40; ++fibre) {
        const double bulge = random.uniform(-14, 14), amount = random.uniform(0.25, 0.5);
        for (int along = -21; along <= 21; ++along) {
            const double apart = bulge * (1 - along * along / 441.0);
            shine(light, cell.body.centre + along * axis + apart * across, amount);
        }
    }
}

/// The fibres that run from around the nucleus of a resting cell to its edge.
void drawFibres(Light& light, const Cell& cell, Random& random) {
    const Shape& nucleus = cell.chromatin.front();
    for (int fibre = 0; fibre < 95; ++fibre) {
        const double around = random.uniform(0, 2 * pi);
        const Point start =
            nucleus.centre + nucleus.width * random.uniform(0.3, 1.3) * towards(around);
        const double length = random.uniform(25, 130), amount = random.uniform(0.35, 0.9);
        grow(start, around + 0.5 * random.normal(), length, 0.022, cell, random, [&](Point p) {
            shine(light, p, cell.stain * amount * (cell.hasChromatinAt(p) ? 0.25 : 1));
        });
    }
}

} // namespace

Light drawNuclei(const std::vector<Cell>& cells, int size, Random& random) {
    Light light(size, size, 0.0F);
    const Light coarse = clouds(size, 2.6, random), fine = clouds(size, 1.0, random);
    for (const Cell& cell : cells)
        for (const Shape& part : cell.chromatin) {
            std::array<Point, 3> nucleoli;
            for (Point& nucleolus : nucleoli)
                nucleolus = part.centre + random.away(2, 0.6 * part.width);
            aroundShape(light, part, [&](Point p) {
                double const reach = part.reach(p);
                double const inside = 1 / (1 + std::exp((reach - 1) * part.width * 1.6));
                if (cell.dividing)
                    return 1.5 * inside;
                double texture = 1 + 0.22 * double(coarse(p)) + 0.14 * double(fine(p));
                for (Point const nucleolus : nucleoli) {
                    Point const d = p - nucleolus;
                    texture *= 1 - 0.5 * std::exp(-d.dot(d) / 8);
                }
                double const dome = 0.75 + 0.25 * std::sqrt(std::max(0.0, 1 - reach * reach));
                return 0.75 * cell.stain * inside * dome * std::max(0.15, texture);
            });
        }
    return light;
}

Light drawFilaments(const std::vector<Cell>& cells, int size, Random& random) {
    Light light(size, size, 0.0F);
    for (const Cell& cell : cells) {
        const double haze = (cell.dividing ? 0.3 : 0.1) * cell.stain;
        aroundShape(light, cell.body, [&](Point p) {
            double const reach = cell.body.reach(p);
            return cell.holds(p) ? haze * (1 - reach * reach) : 0;
        });
        (cell.dividing ? drawSpindle : drawFibres)(light, cell, random);
    }
    return light;
}

Light drawMitochondria(const std::vector<Cell>& cells, int size, Random& random) {
    Light light(size, size, 0.0F);
    for (const Cell& cell : cells)
        for (int i = 0; i < (cell.dividing ? 50 : 120); ++i) {
            const double around = random.uniform(0, 2 * pi);
            const double away = cell.chromatin.front().width + 4 + 17 * std::abs(random.normal());
            const Point start = cell.body.centre + away * towards(around);
            const double amount = cell.stain * random.uniform(0.9, 2.2);
            const double heading = around + random.normal(), length = random.uniform(3, 15);
            grow(start, heading, length, 0.09, cell, random, [&](Point p) {
                if (!cell.hasChromatinAt(p))
                    shine(light, p, amount);
            });
        }
    return light;
}

Light drawCytoplasm(const std::vector<Cell>& cells, int size, Random& random) {
    Light light(size, size, 0.0F);
    const Light coarse = clouds(size, 4, random);
    for (const Cell& cell : cells)
        aroundShape(light, cell.body, [&](Point p) {
            const double thickness = 1 - std::pow(cell.body.reach(p), 2);
            const double share = cell.hasChromatinAt(p) ? 0.3 : 1;
            return cell.holds(p) ? share * cell.stain * thickness * (1 + 0.15 * double(coarse(p)))
                                 : 0;
        });
    return light;
}
