// Renders two gray channels to one image with the render library, without Qt: each with automatic
// contrast and in the colour of its dye.

#include <string>
#include <vector>

#include <opencv2/imgcodecs.hpp>

#include <lumetra_render.hpp>

#include "program.h"

namespace {

constexpr auto usage = R"(usage: render_channels OUTPUT NUCLEI ACTIN

Renders the gray images NUCLEI as DAPI and ACTIN as FITC, 8 or 16 bits each, to OUTPUT.
)";

cv::Mat rendered(const std::vector<cv::Mat>& planes) {
    //! [render]
    const lumetra::DyeList dyes;
    std::vector<lumetra::Channel> channels(2);
    channels[0].colour = dyes.at("DAPI").colour;
    channels[1].colour = dyes.at("FITC").colour;
    channels[1].offset = {3, -2}; // pixels left and up
    for (std::size_t i = 0; i < channels.size(); ++i) {
        lumetra::Histogram histogram;
        histogram.add(planes[i]);
        channels[i].levels = levelsOf(histogram, lumetra::parseLevelPolicy("clip:0.1"));
    }
    cv::Mat image;
    lumetra::Renderer().render(planes, channels, image);
    //! [render]
    return image;
}

cv::Mat readGray(const std::string& file) {
    cv::Mat gray = cv::imread(file, cv::IMREAD_GRAYSCALE | cv::IMREAD_ANYDEPTH);
    if (gray.empty())
        throw Error("cannot read an image from " + file);
    return gray;
}

} // namespace

int main(int argc, char** argv) {
    return runProgram(usage, [&] {
        if (argc != 4)
            throw UsageError{};
        writeImage(argv[1], rendered({readGray(argv[2]), readGray(argv[3])}));
    });
}
