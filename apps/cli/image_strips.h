// Large images, written strip by strip.
#pragma once

#include "apps/cli/render_spec.h"

#include <opencv2/core/mat.hpp>

#include <QString>

#include <functional>
#include <optional>

namespace lumetra {

/// Gives rows of an image. They need not be there any longer when it is called again.
using StripPainter = std::function<cv::Mat(std::size_t number, cv::Range rows)>;

/// Whether a file of this name can be written in strips by several threads.
bool canBeWrittenInStrips(const QString& output);

/// Writes an image, `rendering.jobs` strips at once. Its bytes are those of `writeImage`.
/// @param makePainter  Called once for each thread. Strips are asked for once each, in order of
///                     their start.
/// @throws FileError, Interrupted, and what painters throw.
void writeStrips(const QString& output, cv::Size size, int type, std::optional<double> pixelSize,
                 const RenderSpec& rendering, const std::function<StripPainter()>& makePainter);

} // namespace lumetra
