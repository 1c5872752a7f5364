#include "render/image_composite.h"

#include "lumetra/composite/compositing.h"
#include "render/overlap.h"
#include "render/render_error.h"

#include <opencv2/core.hpp>

#include <algorithm>

namespace lumetra {
namespace {

void requireAlike(const std::vector<cv::Mat>& images, std::size_t channels) {
    if (images.empty() || images.size() != channels)
        throw RenderError("there are no images to show");
    for (const cv::Mat& image : images) {
        CV_Assert(image.dims <= 2 && (image.type() == CV_8UC3 || image.type() == CV_16UC3));
        if (image.size() != images.front().size())
            throw RenderError("the images have different sizes");
        if (image.type() != images.front().type())
            throw RenderError("the images have different bit depths");
    }
}

void layOver(Blend blend, const cv::Mat& over, cv::Mat& under) {
    const auto components = static_cast<std::size_t>(under.cols) * 3;
    for (int y = 0; y < under.rows; ++y) {
        if (under.depth() == CV_8U)
            blendOver(blend, over.ptr(y), under.ptr(y), components);
        else
            blendOver(blend, over.ptr<std::uint16_t>(y), under.ptr<std::uint16_t>(y), components);
    }
}

} // namespace

void compositeImages(const std::vector<cv::Mat>& images, const std::vector<Channel>& channels,
                     cv::Mat& result) {
    requireAlike(images, channels.size());
    const Overlap overlap(images.front().size(), channels);
    std::vector<cv::Mat> parts;
    std::vector<Blend> blends;
    for (std::size_t i = 0; i < images.size(); ++i) {
        if (!channels[i].visible)
            continue;
        parts.push_back(images[i](overlap.partOf(i)));
        blends.push_back(channels[i].blend);
    }
    result.create(overlap.imageSize(), images.front().type());
    if (parts.empty()) {
        result.setTo(cv::Scalar::all(0));
        return;
    }
    const auto isAdded = [](Blend blend) { return blend == Blend::add; };
    if (parts.size() > 1 && std::all_of(blends.begin() + 1, blends.end(), isAdded))
        return composite(parts, result);
    parts.front().copyTo(result);
    for (std::size_t i = 1; i < parts.size(); ++i)
        layOver(blends[i], parts[i], result);
}

} // namespace lumetra
