#include "render/renderer.h"

#include "lumetra/colourise/dye.h"
#include "lumetra/colourise/image_range.h"
#include "lumetra/composite/compositing.h"
#include "render/image_colouring.h"
#include "render/overlap.h"
#include "render/render_error.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace lumetra {
namespace {

int bitDepthOf(const cv::Mat& plane) { return plane.depth() == CV_8U ? 8 : 16; }

void requireGray(const cv::Mat& plane) {
    CV_Assert(plane.dims <= 2 && (plane.type() == CV_8UC1 || plane.type() == CV_16UC1));
}

int imageType(PixelFormat format, bool is16Bit) {
    if (format == PixelFormat::bgra)
        return CV_8UC4;
    return is16Bit ? CV_16UC3 : CV_8UC3;
}

int stripRows(const cv::Mat& image, int pixels) {
    return std::clamp(pixels / std::max(image.cols, 1), 1, std::max(image.rows, 1));
}

void storeBgra(const unsigned char* bgr, unsigned char* out, std::size_t pixels) {
    for (std::size_t i = 0; i < pixels; ++i) {
        out[4 * i] = bgr[3 * i];
        out[4 * i + 1] = bgr[3 * i + 1];
        out[4 * i + 2] = bgr[3 * i + 2];
        out[4 * i + 3] = 255;
    }
}

template<class Component>
void storeRgb(const Component* bgr, Component* out, std::size_t pixels) {
    for (std::size_t i = 0; i < pixels; ++i) {
        out[3 * i] = bgr[3 * i + 2];
        out[3 * i + 1] = bgr[3 * i + 1];
        out[3 * i + 2] = bgr[3 * i];
    }
}

/// Brings a strip of blue, green and red into its part of the image while it is in the cache.
void store(const cv::Mat& strip, PixelFormat format, cv::Mat part) {
    const auto columns = static_cast<std::size_t>(part.cols);
    if (format == PixelFormat::bgr)
        return strip.copyTo(part);
    for (int y = 0; y < part.rows; ++y) {
        if (format == PixelFormat::bgra)
            storeBgra(strip.ptr(y), part.ptr(y), columns);
        else if (part.depth() == CV_8U)
            storeRgb(strip.ptr(y), part.ptr(y), columns);
        else
            storeRgb(strip.ptr<std::uint16_t>(y), part.ptr<std::uint16_t>(y), columns);
    }
}

/// Writes what a table has for each value of a row: the components from the lowest byte up.
template<std::size_t Components, class Value>
void lookUp(const Value* values, const std::uint32_t* table, unsigned char* out,
            std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t pixel = table[values[i]];
        for (std::size_t k = 0; k < Components; ++k)
            out[Components * i + k] = static_cast<unsigned char>(pixel >> 8 * k);
    }
}

template<class Value>
void lookUpRows(const cv::Mat& plane, const std::uint32_t* table, cv::Mat& image) {
    const auto columns = static_cast<std::size_t>(plane.cols);
    for (int y = 0; y < plane.rows; ++y) {
        if (image.channels() == 4)
            lookUp<4>(plane.ptr<Value>(y), table, image.ptr(y), columns);
        else
            lookUp<3>(plane.ptr<Value>(y), table, image.ptr(y), columns);
    }
}

template<class Component>
void blendRows(Blend blend, const cv::Mat& over, cv::Mat& under) {
    const auto components = static_cast<std::size_t>(under.cols) * 3;
    for (int y = 0; y < under.rows; ++y)
        blendOver(blend, over.ptr<Component>(y), under.ptr<Component>(y), components);
}

template<class Value>
ContrastLimits rangeOf(const cv::Mat& plane) {
    const auto range = valueRange<Value>(plane);
    return {range.smallest, range.largest};
}

} // namespace

/// What an image is made of, and where in each plane.
struct Renderer::Canvas {
    const std::vector<cv::Mat>& planes;
    const std::vector<Channel>& channels;
    Overlap overlap;
    PixelFormat format;
};

void Renderer::prepare(const std::vector<cv::Mat>& planes, const std::vector<Channel>& channels) {
    if (planes.empty() || planes.size() != channels.size())
        throw RenderError("there are no channels to show");
    visible_.clear();
    isSum_ = true;
    buffers_.resize(std::max(buffers_.size(), planes.size()));
    for (std::size_t i = 0; i < planes.size(); ++i) {
        requireGray(planes[i]);
        if (planes[i].size() != planes.front().size())
            throw RenderError("the images have different sizes");
        if (!channels[i].visible)
            continue;
        isSum_ &= visible_.empty() || channels[i].blend == Blend::add;
        visible_.push_back(i);
        if (channels[i].levels)
            buffers_[i].lut.set(bitDepthOf(planes[i]), *channels[i].levels, channels[i].gamma);
    }
}

const cv::Mat& Renderer::tint(const cv::Mat& part, const Channel& channel, ChannelBuffers& buffers,
                              bool isLast) {
    cv::Mat source = part;
    if (channel.levels) {
        if (buffers.display8.rows < part.rows || buffers.display8.cols != part.cols)
            buffers.display8.create(part.rows, part.cols, CV_8UC1);
        source = buffers.display8.rowRange(0, part.rows);
        buffers.lut.apply(part, source);
    }
    cv::Mat& tinted = isLast ? buffers.lastTinted : buffers.tinted;
    const auto [red, green, blue] = channel.colour;
    dye(source, tinted, {{blue, green, red}, false, false});
    return tinted;
}

/// Brings the tinted channels into one strip of their size and type.
void Renderer::combine(const std::vector<Channel>& channels, cv::Mat& strip) {
    if (isSum_)
        return composite(tinted_, strip);
    tinted_.front().copyTo(strip);
    for (std::size_t i = 1; i < tinted_.size(); ++i) {
        const Blend blend = channels[visible_[i]].blend;
        if (strip.depth() == CV_8U)
            blendRows<unsigned char>(blend, tinted_[i], strip);
        else
            blendRows<std::uint16_t>(blend, tinted_[i], strip);
    }
}

void Renderer::renderStrip(const Canvas& canvas, int firstRow, cv::Mat part, bool isLast) {
    tinted_.clear();
    const int depth = part.depth();
    for (const std::size_t i : visible_) {
        const cv::Rect shown = canvas.overlap.partOf(i);
        const cv::Rect rows(shown.x, shown.y + firstRow, part.cols, part.rows);
        tinted_.push_back(tint(canvas.planes[i](rows), canvas.channels[i], buffers_[i], isLast));
        if (tinted_.back().depth() != depth) {
            cv::Mat deeper;
            tinted_.back().convertTo(deeper, depth, 257); // equal shares of full scale
            tinted_.back() = deeper;
        }
    }
    if (tinted_.size() == 1) // the sum of one
        return store(tinted_.front(), canvas.format, part);
    if (canvas.format == PixelFormat::bgr)
        return combine(canvas.channels, part);
    sum_.create(part.rows, part.cols, CV_MAKETYPE(depth, 3));
    combine(canvas.channels, sum_);
    store(sum_, canvas.format, part);
}

void Renderer::render(const std::vector<cv::Mat>& planes, const std::vector<Channel>& channels,
                      cv::Mat& image, PixelFormat format) {
    constexpr int pixelsAtOnce = 1 << 16;
    prepare(planes, channels);
    const Canvas canvas{planes, channels, Overlap(planes.front().size(), channels), format};
    const bool is16Bit = std::any_of(visible_.begin(), visible_.end(), [&](std::size_t i) {
        return planes[i].depth() == CV_16U && !channels[i].levels;
    });
    if (is16Bit && format == PixelFormat::bgra)
        throw RenderError("16-bit channels need contrast limits for display");
    image.create(canvas.overlap.imageSize(), imageType(format, is16Bit));
    if (visible_.empty()) {
        image.setTo(cv::Scalar(0, 0, 0, 255));
        return;
    }
    const int rows = stripRows(image, pixelsAtOnce);
    for (int first = 0; first < image.rows; first += rows) {
        const int last = std::min(first + rows, image.rows);
        renderStrip(canvas, first, image.rowRange(first, last), last - first < rows);
    }
    tinted_.clear(); // headers on the buffers, which would be taken for shared
}

/// The colours are spread over the range of the values that are there, so behind all values stand
/// the ends of the range that is wanted. 16 bits, because all colours can be reached with them.
void Renderer::setColourTable(int bitDepth, const ColourMapping& mapping) {
    const std::size_t size = bitDepth == 8 ? 256 : 65536;
    if (colours_.size() == size && mapping_ == mapping)
        return;
    cv::Mat values(1, static_cast<int>(size) + 2, CV_16UC1);
    auto* const value = values.ptr<std::uint16_t>();
    const auto [low, high] = mapping.limits;
    const double span = std::max(high - low, 1);
    for (std::size_t i = 0; i < size; ++i) {
        const int inside = std::clamp(static_cast<int>(i), low, high);
        const double share = std::pow((inside - low) / span, mapping.gamma);
        value[i] = static_cast<std::uint16_t>(low + std::lround(span * share));
    }
    value[size] = static_cast<std::uint16_t>(low);
    value[size + 1] = static_cast<std::uint16_t>(high);

    cv::Mat coloured;
    colourImage(values, mapping.colormap, coloured);
    const bool redFirst = mapping.format == PixelFormat::rgb;
    colours_.resize(size);
    for (std::size_t i = 0; i < size; ++i) {
        const auto* const bgr = coloured.ptr<std::uint16_t>() + 3 * i;
        const auto component = [&](std::size_t k) { return std::uint32_t{bgr[k]} >> 8; };
        colours_[i] = component(redFirst ? 2 : 0) | component(1) << 8 |
                      component(redFirst ? 0 : 2) << 16 | 0xFF000000;
    }
    mapping_ = mapping;
}

void Renderer::applyColormap(const cv::Mat& plane, std::optional<ContrastLimits> limits,
                             double gamma, const Colormap& colormap, cv::Mat& image,
                             PixelFormat format) {
    requireGray(plane);
    const bool is8Bit = plane.depth() == CV_8U;
    if (!limits)
        limits = is8Bit ? rangeOf<unsigned char>(plane) : rangeOf<std::uint16_t>(plane);
    setColourTable(bitDepthOf(plane), {*limits, gamma, colormap, format});
    image.create(plane.size(), imageType(format, false));
    if (is8Bit)
        lookUpRows<unsigned char>(plane, colours_.data(), image);
    else
        lookUpRows<std::uint16_t>(plane, colours_.data(), image);
}

} // namespace lumetra
