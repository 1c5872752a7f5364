// How the planes of a frame are shown, and the images that are made of them.
#pragma once

#include "apps/common/annotation.h"
#include "apps/common/error.h"
#include "apps/viewer/channel_statistics.h"
#include "render/panels.h"
#include "render/renderer.h"

#include <QCoreApplication>

#include <optional>
#include <vector>

namespace lumetra {

/// One channel through a LUT, in place of the composite.
struct PseudoColour {
    std::size_t channel = 0;
    Colormap lut;
};

inline bool operator==(const PseudoColour& a, const PseudoColour& b) {
    return a.channel == b.channel && a.lut == b.lut;
}

/// How frames are to be shown.
struct DisplaySettings {
    std::vector<Channel> channels; ///< Without levels where they are measured in each frame.
    /// Which plane of the frame each channel is, counted from 0; none if all are, in their order.
    std::vector<std::size_t> planes;
    std::optional<PseudoColour> pseudo;
    Annotation annotation;
    bool marksSaturated = false;
    std::optional<PanelColours> panels; ///< Each visible channel is shown beside all of them.
    MeasureOptions measuring;
    int revision = 0; ///< Comes back with the image.
};

/// Whether both make the same image of the same frame; revisions may differ.
bool operator==(const DisplaySettings& a, const DisplaySettings& b);

/// What the channels have among that which there is for each plane of a frame.
/// @throws Error if there are fewer planes than channels.
template<class Item>
std::vector<Item> ofChannels(const DisplaySettings& settings, const std::vector<Item>& ofPlanes) {
    if (settings.planes.empty() && ofPlanes.size() == settings.channels.size())
        return ofPlanes;
    std::vector<Item> items;
    for (const std::size_t plane : settings.planes)
        if (plane < ofPlanes.size())
            items.push_back(ofPlanes[plane]);
    if (items.size() != settings.channels.size())
        throw Error(QCoreApplication::translate("DisplaySettings",
                                                "channels expected: %1; in the camera's frame: %2")
                        .arg(settings.channels.size())
                        .arg(ofPlanes.size()));
    return items;
}

/// The part of a channel's plane that the image shows; none if the planes do not overlap.
/// @param plane  The size of the planes.
std::optional<cv::Rect> shownPart(const DisplaySettings& settings, cv::Size plane,
                                  std::size_t channel);

/// Makes the image that is saved; all channels have levels.
/// @param planes  One for each channel.
/// @throws Error as `Renderer::render` and `annotate` do.
void renderForFile(Renderer& renderer, const std::vector<cv::Mat>& planes,
                   const DisplaySettings& settings, cv::Mat& image);

/// Makes the images for the screen, one or a row of panels, with saturated pixels marked if that is
/// wanted. Arguments as for `renderForFile`.
/// @param images   Each CV_8UC4; the last one shows all channels.
/// @param problem  Receives why legend or scale bar cannot be drawn.
void renderForScreen(Renderer& renderer, const std::vector<cv::Mat>& planes,
                     const DisplaySettings& settings,
                     const std::vector<ChannelStatistics>& statistics, std::vector<cv::Mat>& images,
                     QString& problem);

} // namespace lumetra
