// From planes to the image that is written.
#pragma once

#include "apps/cli/render_spec.h"
#include "render/renderer.h"

#include <opencv2/core/mat.hpp>

#include <vector>

namespace lumetra {

/// An image as it is written.
struct Figure {
    cv::Mat image;
    std::optional<double> pixelSize{}; ///< In µm; empty if it is not known, or no single one.
};

/// Cuts and shrinks an image, then draws onto it what is to be seen: a scale bar has its length in
/// the pixels that are left. Sets the figure's pixel size.
/// @param channels  Of the image, for a legend.
/// @throws RenderError if it cannot be cut or shrunk so; Error as `annotate`.
void finish(Figure& figure, const std::vector<Channel>& channels, const RenderSpec& rendering);

/// Renders channels to one finished image; with panels, each visible channel and then all of them,
/// side by side. Panels have the names of their channels in place of a legend; a legend that is
/// asked for, and the scale bar, are drawn on the last.
/// @param channels  With their contrast limits.
/// @throws RenderError as `Renderer::render`, and as `finish`.
void renderFigure(Renderer& renderer, const std::vector<cv::Mat>& planes,
                  const std::vector<Channel>& channels, const RenderSpec& rendering,
                  Figure& figure);

} // namespace lumetra
