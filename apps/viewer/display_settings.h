// How the planes of a frame are shown, and the images that are made of them.
#pragma once

#include "apps/common/annotation.h"
#include "apps/viewer/channel_statistics.h"
#include "render/renderer.h"

#include <optional>
#include <vector>

namespace lumetra {

/// One channel through a LUT, in place of the composite.
struct PseudoColour {
    std::size_t channel = 0;
    Colormap lut;
};

/// How frames are to be shown.
struct DisplaySettings {
    std::vector<Channel> channels; ///< Without levels where they are measured in each frame.
    std::optional<PseudoColour> pseudo;
    Annotation annotation;
    bool marksSaturated = false;
    bool isLive = false; ///< Frames come faster than all of their pixels can be counted.
    int revision = 0;    ///< Comes back with the image.
};

/// Whether both make the same image of the same frame; revisions may differ.
bool operator==(const DisplaySettings& a, const DisplaySettings& b);

/// The part of a channel's plane that the image shows; none if the planes do not overlap.
/// @param plane  The size of the planes.
std::optional<cv::Rect> shownPart(const DisplaySettings& settings, cv::Size plane,
                                  std::size_t channel);

/// Makes the image that is saved; all channels have levels.
/// @throws Error as `Renderer::render` and `annotate` do.
void renderForFile(Renderer& renderer, const std::vector<cv::Mat>& planes,
                   const DisplaySettings& settings, cv::Mat& image);

/// Makes the image for the screen, with saturated pixels marked if that is wanted, and without
/// annotation. Arguments as for `renderForFile`.
void renderForScreen(Renderer& renderer, const std::vector<cv::Mat>& planes,
                     const DisplaySettings& settings,
                     const std::vector<ChannelStatistics>& statistics, cv::Mat& image);

/// Draws legend and scale bar onto an image; a LUT needs no legend.
/// @throws Error as `annotate` does.
void annotateImage(const DisplaySettings& settings, cv::Mat& image);

} // namespace lumetra
