#include "render/image_colouring.h"

#include "lumetra/colourise/dye.h"
#include "lumetra/colourise/pseudo.h"
#include "render/colormap_slots.h"
#include "render/intensity_lut.h"

#include <opencv2/core.hpp>

#include <vector>

namespace lumetra {

std::vector<ContrastLimits> componentLimits(const cv::Mat& image, const LevelPolicy& policy) {
    if (policy.method == LevelPolicy::Method::none)
        return {};
    std::vector<ContrastLimits> limits;
    for (int i = 0; i < image.channels(); ++i) {
        cv::Mat plane;
        cv::extractChannel(image, plane, i);
        Histogram histogram;
        histogram.add(plane);
        limits.push_back(levelsOf(histogram, policy).value());
    }
    return limits;
}

cv::Mat stretched(const cv::Mat& image, const std::vector<ContrastLimits>& limits, double gamma) {
    if (limits.empty())
        return image;
    CV_Assert(limits.size() == static_cast<std::size_t>(image.channels()));
    std::vector<cv::Mat> planes;
    cv::split(image, planes);
    for (std::size_t i = 0; i < planes.size(); ++i) {
        IntensityLut lut;
        lut.set(image.depth() == CV_8U ? 8 : 16, limits[i], gamma);
        cv::Mat display8;
        lut.apply(planes[i], display8);
        planes[i] = display8;
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
