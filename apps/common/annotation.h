// Text and scale bars drawn onto finished images.
#pragma once

#include "render/channel.h"

#include <opencv2/core/mat.hpp>

#include <QString>

#include <optional>
#include <vector>

namespace lumetra {

/// What a channel is called where there is little room: its dye, or its colour as `#rrggbb`.
QString channelLabel(const Channel& channel);

/// What a channel is called on a panel of its own: its name, or else as `channelLabel`.
QString panelName(const Channel& channel);

/// A bar of so many micrometres.
struct ScaleBar {
    double micrometres = 0; ///< Above 0.
    double pixelSize = 0;   ///< Micrometres a pixel, above 0.
};

/// What is drawn onto an image.
struct Annotation {
    /// The names of the dyes of visible channels, in their colours, or, where these are too dark
    /// to be read, in white beside them.
    bool legend = false;
    std::optional<ScaleBar> scaleBar;

    bool isEmpty() const { return !legend && !scaleBar; }
};

/// Makes it possible to draw text in a program without a window, whatever platform of Qt's the
/// environment names. To be called before the QGuiApplication is made that text needs.
void drawWithoutDisplay();

/// Draws onto an image of three channels of 8 or 16 bits, or of four for the screen. Needs a
/// QGuiApplication.
/// @throws Error if the bar is wider than the image or narrower than a pixel.
void annotate(cv::Mat& image, const std::vector<Channel>& channels, const Annotation& annotation);

/// Draws a name where a legend has its first line, with the same needs as `annotate`.
void drawName(cv::Mat& image, const QString& name, Colour colour);

} // namespace lumetra
