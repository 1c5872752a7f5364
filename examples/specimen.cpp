// Draws a simulated specimen: cultured cells under a three-channel fluorescence microscope. The
// same seed and size give the same images everywhere.

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

#include <QString>

#include "culture.h"
#include "light.h"
#include "program.h"
#include "stains.h"

namespace {

constexpr auto usage = R"(usage: specimen OUTDIR [--seed N] [--size N] [--plate N]

Draws a field of N x N pixels (64 to 2048, by default 512) of cultured cells and writes its three
channels, nuclei, filaments and mitochondria, to OUTDIR: as 8-bit .png and as 16-bit .tif.

With --plate it draws N fields (1 to 1000) of each of the 20 wells B02 to E06 instead, by default of
256 x 256 pixels, and writes them as 16-bit .tif only: B02_s1_nuclei.tif. From the first field to the
last the dyes bleach, and the channels drift apart by one or two pixels.
)";

/// A dye under the microscope, and how it has changed by the last field of a plate.
struct Channel {
    const char* name;
    Light (*draw)(const std::vector<Cell>&, int, Random&);
    double sigma, exposure;
    double bleached; ///< The share of the dye that has bleached.
    cv::Point drift; ///< How far the stage has moved, in pixels.
};

const std::array<Channel, 3> channels{{
    {"nuclei", drawNuclei, 1.0, 1.9, 0.15, {0, 0}},
    {"filaments", drawFilaments, 1.0, 1.05, 0.3, {2, -1}},
    {"mitochondria", drawMitochondria, 1.2, 1.5, 0.45, {-1, 2}},
}};

struct Field {
    unsigned seed;
    int size;
    int margin;  ///< Pixels drawn around the field, for channels that drift.
    double time; ///< From 0, the first field of a plate, to 1, its last one.
};

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

/// The same image as an 8-bit camera would have recorded it.
cv::Mat display8(const cv::Mat& counts) {
    constexpr double black = 120, white = 4400;
    cv::Mat image;
    counts.convertTo(image, CV_8U, 255 / (white - black), -black * 255 / (white - black));
    return image;
}

int numberAfter(const std::string& option, const char* text, int low, int high) {
    bool isNumber = false;
    const int value = QString(text).toInt(&isNumber);
    if (!isNumber || value < low || value > high)
        throw Error(option + " takes a number from " + std::to_string(low) + " to " +
                    std::to_string(high));
    return value;
}

/// Calls `take(name, counts)` for each channel.
template<typename Take>
void photograph(const Field& field, const Take& take) {
    Random random(field.seed);
    const int side = field.size + 2 * field.margin;
    const auto cells = culture(side, random);
    for (const Channel& channel : channels) {
        const Light image = throughLens(channel.draw(cells, side, random), channel.sigma);
        const cv::Point corner(field.margin + cvRound(field.time * channel.drift.x),
                               field.margin + cvRound(field.time * channel.drift.y));
        const Light seen = image(cv::Rect(corner, cv::Size(field.size, field.size)));
        const double exposure = channel.exposure * (1 - field.time * channel.bleached);
        take(std::string(channel.name), exposed(seen, exposure, random));
    }
}

void save(const std::filesystem::path& file, const cv::Mat& image) {
    writeImage(file.string(), image);
    std::cout << file.string() << '\n';
}

void drawSpecimen(const std::filesystem::path& directory, unsigned seed, int size) {
    photograph({seed, size, 0, 0}, [&](const std::string& name, const cv::Mat& counts) {
        save(directory / (name + ".png"), display8(counts));
        save(directory / (name + ".tif"), counts);
    });
}

/// The names of the fields of 20 wells, well by well.
std::vector<std::string> plateOf(int sites) {
    std::vector<std::string> names;
    for (const char row : {'B', 'C', 'D', 'E'})
        for (const char column : {'2', '3', '4', '5', '6'})
            for (int site = 1; site <= sites; ++site)
                names.push_back(std::string{row, '0', column} + "_s" + std::to_string(site));
    return names;
}

void drawPlate(const std::filesystem::path& directory, unsigned seed, int size, int sites) {
    constexpr unsigned seedsApart = 100003; // so that plates of consecutive seeds share no field
    constexpr int margin = 2;
    const auto names = plateOf(sites);
    for (size_t i = 0; i < names.size(); ++i) {
        const Field field{seed + seedsApart * unsigned(i), size, margin,
                          double(i) / double(names.size() - 1)};
        photograph(field, [&](const std::string& channel, const cv::Mat& counts) {
            save(directory / (names[i] + '_' + channel + ".tif"), counts);
        });
    }
}

void makeDirectory(const std::filesystem::path& directory) {
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (error)
        throw Error("cannot make the directory " + directory.string());
}

} // namespace

int main(int argc, char** argv) {
    return runProgram(usage, [&] {
        if (argc < 2 || argc % 2 != 0 || argc > 8 || argv[1][0] == '-')
            throw UsageError{};
        int seed = 1, size = 0, sites = 0;
        for (int i = 2; i < argc; i += 2) {
            std::string const option = argv[i];
            if (option == "--seed")
                seed = numberAfter(option, argv[i + 1], 0, 1 << 30);
            else if (option == "--size")
                size = numberAfter(option, argv[i + 1], 64, 2048);
            else if (option == "--plate")
                sites = numberAfter(option, argv[i + 1], 1, 1000);
            else
                throw UsageError{};
        }
        makeDirectory(argv[1]);
        if (sites > 0)
            drawPlate(argv[1], unsigned(seed), size > 0 ? size : 256, sites);
        else
            drawSpecimen(argv[1], unsigned(seed), size > 0 ? size : 512);
    });
}
