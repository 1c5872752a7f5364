// Time and size of image files: written by the programs' code, read by it, and beside them OpenCV's
// PNG. Processor time, the ways by turns, the shortest of some repetitions.

#include "bench/camera_plane.h"
#include "imageio/image_file.h"
#include "imageio/image_writer.h"

#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>

#include <QFileInfo>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace {

using lumetra::TiffCompression;

constexpr int side = 2048;

struct Image {
    std::string name;
    cv::Mat pixels;
};

std::vector<Image> images() {
    const cv::Mat dapi = cameraPlane(side, 1), actin = cameraPlane(side, 2);
    const cv::Scalar blue(255, 107, 0), green(0, 255, 29);
    cv::Mat deep;
    cv::merge(std::vector<cv::Mat>{dapi * 16, actin * 16, (dapi + actin) * 8}, deep);
    return {{"two channels", tinted(dapi, 150, 3000, blue) + tinted(actin, 150, 3000, green)},
            {"mostly dark", tinted(dapi, 215, 3000, blue) + tinted(actin, 215, 3000, green)},
            {"one dye", tinted(dapi, 150, 3000, green)},
            {"gray, 16 bits", dapi},
            {"RGB, 16 bits", deep}};
}

struct Way {
    std::string name;
    QString extension;
    TiffCompression compression;
    bool isOpenCv;
};

const std::vector<Way> ways{{"PNG by OpenCV", "png", TiffCompression::lzw, true},
                            {"PNG", "png", TiffCompression::lzw, false},
                            {"TIFF, none", "tif", TiffCompression::none, false},
                            {"TIFF, lzw", "tif", TiffCompression::lzw, false},
                            {"TIFF, deflate", "tif", TiffCompression::deflate, false},
                            {"TIFF, zstd", "tif", TiffCompression::zstd, false}};

double processorTime() { // in milliseconds
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return 1e3 * static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_nsec);
}

/// Shortens `least` to the time of the work, if that is shorter.
void measure(double& least, const std::function<void()>& work) {
    const double start = processorTime();
    work();
    least = std::min(least, processorTime() - start);
}

struct Result {
    double written = std::numeric_limits<double>::max(), read = written;
    qint64 bytes = 0;
};

/// What the first way gives is 1 in the columns of ratios.
std::vector<Result> measured(const Image& image, const QTemporaryDir& folder, int repetitions) {
    std::vector<Result> results(ways.size());
    for (int i = 0; i < repetitions; ++i)
        for (std::size_t k = 0; k < ways.size(); ++k) {
            const QString file = folder.filePath("image." + ways[k].extension);
            const std::string name = file.toStdString();
            measure(results[k].written, [&] {
                if (ways[k].isOpenCv)
                    cv::imwrite(name, image.pixels);
                else
                    lumetra::writeImage(file, image.pixels, lumetra::Existing::replace, {},
                                        ways[k].compression);
            });
            results[k].bytes = QFileInfo(file).size();
            measure(results[k].read, [&] {
                if (ways[k].isOpenCv)
                    cv::imread(name, cv::IMREAD_UNCHANGED);
                else
                    lumetra::ImageFile(file).page(1);
            });
        }
    return results;
}

} // namespace

int main(int argc, char** argv) {
    cv::setNumThreads(1);
    const int repetitions = argc > 1 ? std::max(1, std::atoi(argv[1])) : 15;
    const QTemporaryDir folder;
    std::puts(
        "| image | file | writing, ms | × OpenCV | reading, ms | × OpenCV | bytes, × OpenCV |\n"
        "|---|---|---|---|---|---|---|");
    for (const Image& image : images()) {
        const std::vector<Result> results = measured(image, folder, repetitions);
        for (std::size_t k = 0; k < ways.size(); ++k)
            std::printf(
                "| %s | %s | %.1f | %.2f | %.1f | %.2f | %.2f |\n", image.name.c_str(),
                ways[k].name.c_str(), results[k].written, results[k].written / results[0].written,
                results[k].read, results[k].read / results[0].read,
                static_cast<double>(results[k].bytes) / static_cast<double>(results[0].bytes));
    }
}
