// Words and measures drawn onto finished pictures.
#pragma once

#include "apps/common/channel.h"

#include <opencv2/core/mat.hpp>

#include <optional>
#include <vector>

namespace apps {

/// A bar of so many micrometres.
struct ScaleBar {
    double micrometres = 0; ///< Above 0.
    double pixelSize = 0;   ///< Micrometres a pixel, above 0.
};

/// What is drawn onto a picture.
struct Annotation {
    bool legend = false; ///< The names of the dyes of visible channels, in their colours.
    std::optional<ScaleBar> scaleBar;

    bool isEmpty() const { return !legend && !scaleBar; }
};

/// Makes it possible to draw text in a program without a window; the environment may choose another
/// of Qt's platforms. To be called before the QGuiApplication is made that text needs.
void drawWithoutDisplay();

/// Draws onto a picture of three channels of 8 or 16 bits, or of four for the screen. Needs a
/// QGuiApplication.
/// @throws Failure if the bar is wider than the picture or narrower than a pixel.
void annotate(cv::Mat& picture, const std::vector<Channel>& channels, const Annotation& annotation);

} // namespace apps
