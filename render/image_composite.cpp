#include "render/image_composite.h"

#include "lumetra/composite/compositing.h"
#include "render/overlap.h"
#include "render/render_error.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <cstdint>
#include <limits>

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

template<class Component>
constexpr std::uint32_t largest = std::numeric_limits<Component>::max();

template<class Component>
struct Added {
    std::uint32_t operator()(std::uint32_t a, std::uint32_t b) const {
        return std::min(a + b, largest<Component>);
    }
};

/// A product p of two components divided by the largest one, rounded, is (q + q / n) / n for
/// n = largest + 1 and q = p + n / 2; all of it fits 32 bits.
template<class Component>
struct Screened {
    std::uint32_t operator()(std::uint32_t a, std::uint32_t b) const {
        constexpr int bits = std::numeric_limits<Component>::digits;
        const std::uint32_t product =
            (largest<Component> - a) * (largest<Component> - b) + (1U << (bits - 1));
        return largest<Component> - ((product + (product >> bits)) >> bits);
    }
};

struct Darkest {
    std::uint32_t operator()(std::uint32_t a, std::uint32_t b) const { return std::min(a, b); }
};

template<class Component, class Blended>
void layRowsOver(const cv::Mat& over, cv::Mat& under, const Blended& blended) {
    const auto components = static_cast<std::size_t>(under.cols) * 3;
    for (int y = 0; y < under.rows; ++y) {
        const auto* const from = over.ptr<Component>(y);
        auto* const to = under.ptr<Component>(y);
        for (std::size_t i = 0; i < components; ++i)
            to[i] = static_cast<Component>(blended(to[i], from[i]));
    }
}

template<class Component>
void layOver(Blend blend, const cv::Mat& over, cv::Mat& under) {
    switch (blend) {
    case Blend::add:
        return layRowsOver<Component>(over, under, Added<Component>());
    case Blend::screen:
        return layRowsOver<Component>(over, under, Screened<Component>());
    case Blend::darkest:
        return layRowsOver<Component>(over, under, Darkest());
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
        result.depth() == CV_8U ? layOver<std::uint8_t>(blends[i], parts[i], result)
                                : layOver<std::uint16_t>(blends[i], parts[i], result);
}

} // namespace lumetra
