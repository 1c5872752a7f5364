// Images side by side, as figures show channels.
#pragma once

#include "render/channel.h"
#include "render/export.h"

#include <opencv2/core/mat.hpp>

#include <string_view>
#include <vector>

namespace lumetra {

/// What the channels beside a merged image are shown in.
enum class PanelColours {
    gray,  ///< White on black, which the eye reads best.
    colour ///< The colour that the channel has in the merged image.
};

/// Understands `gray` and `colour`.
/// @throws RenderError for anything else.
LUMETRA_RENDER_EXPORT PanelColours parsePanelColours(std::string_view text);

/// The settings that show one of several channels alone, where it lies in the merged image: the
/// others are hidden.
/// @param number  Of the channel, from 0 to below their number.
LUMETRA_RENDER_EXPORT std::vector<Channel> channelAlone(std::vector<Channel> channels,
                                                        std::size_t number, PanelColours colours);

/// The pixels between panels that suit their width: one for 64, at least 2.
LUMETRA_RENDER_EXPORT int panelGap(int panelWidth);

/// Sets images of one size in a row, with white gaps between them.
///
/// @param panels  One or more, CV_8UC3 or CV_16UC3; if one of them has 16 bits, the row has, and
///                pixel values of 8 bits keep their share of full scale.
/// @param gap     Columns between them, 0 or more.
/// @param row     Receives the image, in memory of its own; may be none of the panels.
/// @throws RenderError if there are none, sizes differ, or the row would be wider than an image can
///         be; cv::Exception for images of another type or a negative gap.
LUMETRA_RENDER_EXPORT void setInRow(const std::vector<cv::Mat>& panels, int gap, cv::Mat& row);

} // namespace lumetra
