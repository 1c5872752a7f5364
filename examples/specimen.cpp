// Draws a specimen that nobody had to stain: cultured cells under a three-channel fluorescence
// microscope. The same seed and size give the same pictures everywhere.

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

#include <QString>

#include "program.h"

namespace {

constexpr auto usage = R"(usage: specimen OUTDIR [--seed N] [--size N]

Draws a field of N x N pixels (64 to 2048, by default 512) of cultured cells and writes its three
channels, nuclei, filaments and mitochondria, to OUTDIR: as 8-bit .png and as 16-bit .tif.
)";

using Light = cv::Mat_<float>;
using Point = cv::Point2d;

constexpr double pi = 3.14159265358979323846;

Point towards(double angle) { return {std::cos(angle), std::sin(angle)}; }

/// Random numbers that come out equal with every standard library; the distributions of <random>
/// may differ.
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
    double reach(Point p) const {
        const Point axis = towards(angle), d = p - centre;
        const double u = d.dot(axis) / length, v = d.cross(axis) / width;
        const double around = std::atan2(v, u);
        double outline = 1;
        for (size_t i = 0; i < waves.size(); ++i)
            outline += waves[i] * std::cos(double(i + 2) * around + phases[i]);
        return std::hypot(u, v) / outline;
    }
};

Shape randomShape(Point centre, double angle, double length, double width, double waviness,
                  Random& random) {
    Shape shape{centre, angle, length, width, {}, {}};
    for (size_t i = 0; i < shape.waves.size(); ++i) {
        shape.waves[i] = waviness * random.uniform(0.2, 1) / double(i + 1);
        shape.phases[i] = random.uniform(0, 2 * pi);
    }
    return shape;
}

struct Cell {
    Shape body;
    std::vector<Shape> chromatin; ///< One nucleus, or the two plates of a dividing cell.
    double stain;                 ///< How much of the dyes it took up, about 1.
    bool dividing;
    std::vector<Shape> neighbours; ///< The bodies of the cells around it.

    /// Whether a point lies in this cell and not rather in a neighbour.
    bool holds(Point p) const {
        const double reach = body.reach(p);
        return reach < 1 &&
               std::all_of(neighbours.begin(), neighbours.end(),
                           [&](const Shape& other) { return other.reach(p) >= reach; });
    }

    bool hasChromatinAt(Point p) const {
        return std::any_of(chromatin.begin(), chromatin.end(),
                           [&](const Shape& part) { return part.reach(p) < 1.1; });
    }
};

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

/// Cells side by side over the field and a little beyond, about one in twelve dividing.
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

/// Adds light at a point between pixels.
void shine(Light& light, Point p, double amount) {
    const int x = cvFloor(p.x), y = cvFloor(p.y);
    if (x < 0 || y < 0 || x + 1 >= light.cols || y + 1 >= light.rows)
        return;
    const double right = p.x - x, down = p.y - y;
    light(y, x) += float(amount * (1 - right) * (1 - down));
    light(y, x + 1) += float(amount * right * (1 - down));
    light(y + 1, x) += float(amount * (1 - right) * down);
    light(y + 1, x + 1) += float(amount * right * down);
}

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

void blurRows(const Light& from, Light& to, double sigma) {
    const int radius = cvCeil(3 * sigma);
    std::vector<float> weights;
    for (int i = -radius; i <= radius; ++i)
        weights.push_back(
            float(std::exp(-i * i / (2 * sigma * sigma)) / (sigma * std::sqrt(2 * pi))));
    to.create(from.size());
    for (int y = 0; y < from.rows; ++y)
        for (int x = 0; x < from.cols; ++x) {
            float sum = 0;
            int near = x - radius;
            for (const float weight : weights)
                sum += weight * from(y, std::clamp(near++, 0, from.cols - 1));
            to(y, x) = sum;
        }
}

/// Convolves with a Gaussian, rows first and then columns.
Light blurred(const Light& light, double sigma) {
    Light rows, columns;
    blurRows(light, rows, sigma);
    cv::transpose(rows, columns);
    blurRows(columns, rows, sigma);
    cv::transpose(rows, columns);
    return columns;
}

/// A cloudy texture of mean 0 and deviation 1.
Light clouds(int size, double sigma, Random& random) {
    Light noise(size, size);
    for (float& sample : noise)
        sample = float(random.normal());
    Light texture = blurred(noise, sigma);
    cv::Scalar mean, deviation;
    cv::meanStdDev(texture, mean, deviation);
    texture = (texture - mean[0]) / deviation[0];
    return texture;
}

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

/// Follows a growing fibre through its cell and calls `draw(point)` at each step of one pixel. At
/// the edge of the cell it stops or turns along.
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

/// What the lens makes of the light: the point-spread function is sharp, with a wide faint skirt
/// from the planes out of focus.
Light throughLens(const Light& light, double sigma) {
    Light image;
    cv::addWeighted(blurred(light, sigma), 0.78, blurred(light, 7 * sigma), 0.22, 0, image);
    return image;
}

/// What the camera counts: photons of background and specimen, whose dye cannot glow brighter than
/// it saturates, with their shot noise.
cv::Mat_<ushort> exposed(const Light& image, double exposure, Random& random) {
    constexpr double background = 5, brightest = 520, offset = 100, countsPerPhoton = 8;
    cv::Mat_<ushort> counts(image.size());
    std::transform(image.begin(), image.end(), counts.begin(), [&](float light) {
        double const expected = background + brightest * (1 - std::exp(-exposure * double(light)));
        double const seen = expected + std::sqrt(expected) * random.normal();
        return cv::saturate_cast<ushort>(offset + countsPerPhoton * std::max(0.0, seen));
    });
    return counts;
}

/// The same picture as a camera of 8 bits would have taken it.
cv::Mat eightBits(const cv::Mat& counts) {
    constexpr double black = 120, white = 4400;
    cv::Mat picture;
    counts.convertTo(picture, CV_8U, 255 / (white - black), -black * 255 / (white - black));
    return picture;
}

int numberAfter(const std::string& option, const char* text, int low, int high) {
    bool isNumber = false;
    const int value = QString(text).toInt(&isNumber);
    if (!isNumber || value < low || value > high)
        throw Failure(option + " takes a number from " + std::to_string(low) + " to " +
                      std::to_string(high));
    return value;
}

void drawSpecimen(const std::filesystem::path& directory, int seed, int size) {
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (error)
        throw Failure("cannot make the directory " + directory.string());
    Random random(static_cast<unsigned>(seed));
    const auto cells = culture(size, random);
    const auto photograph = [&](const std::string& name, const Light& light, double sigma,
                                double exposure) {
        cv::Mat const counts = exposed(throughLens(light, sigma), exposure, random);
        for (const auto& [file, picture] :
             {std::pair{name + ".png", eightBits(counts)}, std::pair{name + ".tif", counts}}) {
            writePicture((directory / file).string(), picture);
            std::cout << (directory / file).string() << '\n';
        }
    };
    photograph("nuclei", drawNuclei(cells, size, random), 1.0, 1.9);
    photograph("filaments", drawFilaments(cells, size, random), 1.0, 1.05);
    photograph("mitochondria", drawMitochondria(cells, size, random), 1.2, 1.5);
}

} // namespace

int main(int argc, char** argv) {
    return runProgram(usage, [&] {
        if (argc % 2 != 0 || argc > 6)
            throw BadUsage{};
        int seed = 1, size = 512;
        for (int i = 2; i < argc; i += 2) {
            std::string const option = argv[i];
            if (option == "--seed")
                seed = numberAfter(option, argv[i + 1], 0, 1 << 30);
            else if (option == "--size")
                size = numberAfter(option, argv[i + 1], 64, 2048);
            else
                throw BadUsage{};
        }
        drawSpecimen(argv[1], seed, size);
    });
}
