#include "apps/viewer/display_settings.h"

#include "apps/common/error.h"
#include "render/overlap.h"
#include "render/render_error.h"

#include <QCoreApplication>

namespace lumetra {
namespace {

bool areEqual(const std::optional<ScaleBar>& a, const std::optional<ScaleBar>& b) {
    return a && b ? a->micrometres == b->micrometres && a->pixelSize == b->pixelSize
                  : a.has_value() == b.has_value();
}

bool areEqual(const std::optional<PseudoColour>& a, const std::optional<PseudoColour>& b) {
    return a && b ? a->channel == b->channel && a->lut == b->lut : a.has_value() == b.has_value();
}

void render(Renderer& renderer, const std::vector<cv::Mat>& planes, const DisplaySettings& settings,
            cv::Mat& image, PixelFormat form) {
    if (planes.size() != settings.channels.size())
        throw Error(QCoreApplication::translate("DisplaySettings",
                                                "channels expected: %1; in the camera's frame: %2")
                        .arg(settings.channels.size())
                        .arg(planes.size()));
    if (!settings.pseudo)
        return renderer.render(planes, settings.channels, image, form);
    const Channel& channel = settings.channels.at(settings.pseudo->channel);
    renderer.applyColormap(planes.at(settings.pseudo->channel), channel.levels, channel.gamma,
                           settings.pseudo->lut, image, form);
}

template<class Value>
void markFrom(int limit, const cv::Mat& plane, cv::Mat& image) {
    const cv::Vec4b mark(0, 0, 255, 255);
    const int columns = image.cols;
    for (int y = 0; y < image.rows; ++y) {
        const auto* in = plane.ptr<Value>(y);
        auto* out = image.ptr<cv::Vec4b>(y);
        for (int x = 0; x < columns; ++x)
            if (in[x] >= limit)
                out[x] = mark;
    }
}

/// Marks what lies at the end of the bit depth's range, where it may have been brighter still.
void markSaturated(const std::vector<cv::Mat>& planes, const DisplaySettings& settings,
                   const std::vector<ChannelStatistics>& statistics, cv::Mat& image) {
    for (std::size_t i = 0; i < planes.size(); ++i) {
        if (!(settings.pseudo ? settings.pseudo->channel == i : settings.channels[i].visible))
            continue;
        const cv::Mat part = planes[i](*shownPart(settings, planes[i].size(), i));
        const int limit = largestOf(significantBits(statistics[i].range.high));
        if (part.depth() == CV_8U)
            markFrom<unsigned char>(limit, part, image);
        else
            markFrom<std::uint16_t>(limit, part, image);
    }
}

} // namespace

bool operator==(const DisplaySettings& a, const DisplaySettings& b) {
    return a.channels == b.channels && areEqual(a.pseudo, b.pseudo) &&
           a.annotation.legend == b.annotation.legend &&
           areEqual(a.annotation.scaleBar, b.annotation.scaleBar) &&
           a.marksSaturated == b.marksSaturated && a.isLive == b.isLive;
}

std::optional<cv::Rect> shownPart(const DisplaySettings& settings, cv::Size plane,
                                  std::size_t channel) {
    if (settings.pseudo)
        return cv::Rect({0, 0}, plane);
    try {
        return Overlap(plane, settings.channels).partOf(channel);
    } catch (const RenderError&) {
        return std::nullopt;
    }
}

void renderForFile(Renderer& renderer, const std::vector<cv::Mat>& planes,
                   const DisplaySettings& settings, cv::Mat& image) {
    render(renderer, planes, settings, image, PixelFormat::bgr);
    annotateImage(settings, image);
}

void renderForScreen(Renderer& renderer, const std::vector<cv::Mat>& planes,
                     const DisplaySettings& settings,
                     const std::vector<ChannelStatistics>& statistics, cv::Mat& image) {
    render(renderer, planes, settings, image, PixelFormat::bgra);
    if (settings.marksSaturated)
        markSaturated(planes, settings, statistics, image);
}

void annotateImage(const DisplaySettings& settings, cv::Mat& image) {
    annotate(image, settings.pseudo ? std::vector<Channel>{} : settings.channels,
             settings.annotation);
}

} // namespace lumetra
