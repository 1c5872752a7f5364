#include "render/image_colouring.h"

#include "lumetra/colourise/dye.h"
#include "lumetra/colourise/pseudo.h"
#include "render/colormap_slots.h"
#include "render/intensity_lut.h"

#include <opencv2/core.hpp>

#include <vector>

namespace lumetra {

cv::Mat stretched(const cv::Mat& image, const LevelPolicy& policy, double gamma) {
    if (policy.method == LevelPolicy::Method::none)
        return image;
    std::vector<cv::Mat> planes;
    cv::split(image, planes);
    for (cv::Mat& plane : planes) {
        Histogram histogram;
        histogram.add(plane);
        IntensityLut lut;
        lut.set(histogram.bitDepth(), *levelsOf(histogram, policy), gamma);
        cv::Mat display8;
        lut.apply(plane, display8);
        plane = display8;
    }
    cv::Mat result;
    cv::merge(planes, result);
    return result;
}

void tintImage(const cv::Mat& image, Colour colour, bool dominant, cv::Mat& result) {
    const DyeSettings settings{{colour.blue, colour.green, colour.red}, false, dominant};
    const bool isTinted = dye(image, result, settings);
    CV_Assert(isTinted);
}

void colourImage(const cv::Mat& image, const Colormap& colormap, cv::Mat& result) {
    LevelColours colours{};
    for (std::size_t slot = 0; slot < slotCount; ++slot) {
        const auto [red, green, blue] = colourOfSlot(colormap, slot);
        colours[slot] = packedColour(blue, green, red);
    }
    const bool isColoured = pseudo(image, result, colours);
    CV_Assert(isColoured);
}

} // namespace lumetra
