#include "apps/viewer/display_settings.h"

#include "render/overlap.h"
#include "render/render_error.h"

#include <algorithm>

namespace lumetra {
namespace {

bool areEqual(const std::optional<ScaleBar>& a, const std::optional<ScaleBar>& b) {
    return a && b ? a->micrometres == b->micrometres && a->pixelSize == b->pixelSize
                  : a.has_value() == b.has_value();
}

void renderPixels(Renderer& renderer, const std::vector<cv::Mat>& planes,
                  const DisplaySettings& settings, cv::Mat& image, PixelFormat format) {
    if (!settings.pseudo)
        return renderer.render(planes, settings.channels, image, format);
    const Channel& channel = settings.channels.at(settings.pseudo->channel);
    renderer.applyColormap(planes.at(settings.pseudo->channel), channel.levels, channel.gamma,
                           settings.pseudo->lut, image, format);
}

bool hasPanels(const DisplaySettings& settings) { return settings.panels && !settings.pseudo; }

/// The settings of the panels in their order; the last one is that of all channels.
std::vector<DisplaySettings> panelSettings(const DisplaySettings& settings) {
    std::vector<DisplaySettings> panels;
    for (std::size_t i = 0; hasPanels(settings) && i < settings.channels.size(); ++i) {
        if (!settings.channels[i].visible)
            continue;
        panels.push_back(settings);
        panels.back().channels = channelAlone(settings.channels, i, *settings.panels);
    }
    panels.push_back(settings);
    return panels;
}

/// Draws legend and scale bar; on panels, their names in place of a legend. A LUT needs none.
void draw(const DisplaySettings& panel, bool isLast, cv::Mat& image) {
    if (isLast)
        annotate(image, panel.pseudo ? std::vector<Channel>{} : panel.channels, panel.annotation);
    if (!hasPanels(panel) || (isLast && panel.annotation.legend))
        return;
    const auto alone = std::find_if(panel.channels.begin(), panel.channels.end(),
                                    [](const Channel& channel) { return channel.visible; });
    isLast ? drawName(image, QStringLiteral("Merge"), {255, 255, 255})
           : drawName(image, panelName(*alone), alone->colour);
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
        if (part.depth() == CV_8U)
            markFrom<unsigned char>(statistics[i].largest, part, image);
        else
            markFrom<std::uint16_t>(statistics[i].largest, part, image);
    }
}

} // namespace

bool operator==(const DisplaySettings& a, const DisplaySettings& b) {
    return a.channels == b.channels && a.planes == b.planes && a.pseudo == b.pseudo &&
           a.annotation.legend == b.annotation.legend &&
           areEqual(a.annotation.scaleBar, b.annotation.scaleBar) &&
           a.marksSaturated == b.marksSaturated && a.panels == b.panels &&
           a.measuring == b.measuring;
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
    const auto panels = panelSettings(settings);
    std::vector<cv::Mat> images(panels.size());
    for (std::size_t i = 0; i < panels.size(); ++i) {
        renderPixels(renderer, planes, panels[i], images[i], PixelFormat::bgr);
        draw(panels[i], i + 1 == panels.size(), images[i]);
    }
    if (images.size() > 1)
        setInRow(images, panelGap(images.front().cols), image);
    else
        image = images.front();
}

void renderForScreen(Renderer& renderer, const std::vector<cv::Mat>& planes,
                     const DisplaySettings& settings,
                     const std::vector<ChannelStatistics>& statistics, std::vector<cv::Mat>& images,
                     QString& problem) {
    const auto panels = panelSettings(settings);
    images.resize(panels.size());
    for (std::size_t i = 0; i < panels.size(); ++i) {
        renderPixels(renderer, planes, panels[i], images[i], PixelFormat::bgra);
        if (settings.marksSaturated)
            markSaturated(planes, panels[i], statistics, images[i]);
        try {
            draw(panels[i], i + 1 == panels.size(), images[i]);
        } catch (...) {
            problem = currentExceptionText();
        }
    }
}

} // namespace lumetra
