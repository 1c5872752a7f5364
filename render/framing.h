// Which part of an image is shown, and in how many pixels.
#pragma once

#include "render/export.h"

#include <opencv2/core/mat.hpp>

#include <optional>
#include <string_view>

namespace lumetra {

/// The size that an image is brought to: so many pixels, or a share of those that it has.
struct TargetSize {
    int width = 0;      ///< Columns; 0 if `percent` says it.
    int height = 0;     ///< Rows; 0 keeps the shape of the image.
    double percent = 0; ///< Of both sides, above 0, at most 100; 0 if `width` says it.
};

/// How an image is cut and made smaller, in this order.
struct LUMETRA_RENDER_EXPORT Framing {
    std::optional<cv::Rect> crop; ///< In pixels from the left and the top.
    std::optional<TargetSize> size;

    bool isEmpty() const { return !crop && !size; }

    /// The columns and rows that are left of an image; a side is at least one pixel.
    /// @throws RenderError that names the sizes if the crop does not lie within the image, or if
    ///         the image would have to be enlarged, which makes pixels that nobody measured.
    cv::Size sizeOf(cv::Size image) const;

    /// How many columns of the image lie in one of the result: what a pixel's width is to be
    /// multiplied by, 1 or more.
    /// @throws RenderError as `sizeOf`.
    double columnsInPixel(cv::Size image) const;

    /// Whether pixels stay as wide as they are high, but for what rounding to whole rows does.
    /// @throws RenderError as `sizeOf`.
    bool keepsShape(cv::Size image) const;

    /// Brings an image to this: the crop's pixels as they are, or the means of the areas that they
    /// cover (`shrink`).
    /// @param image   CV_8U or CV_16U, of any channels.
    /// @param result  Receives the image in memory of its own; may not be the image itself.
    /// @throws RenderError as `sizeOf`.
    void apply(const cv::Mat& image, cv::Mat& result) const;
};

/// Understands `X,Y,W,H`: whole numbers, X and Y from 0, W and H from 1.
/// @throws RenderError for anything else.
LUMETRA_RENDER_EXPORT cv::Rect parseCrop(std::string_view text);

/// Understands `W`, `WxH` (whole numbers from 1) and `PERCENT%` (above 0, at most 100).
/// @throws RenderError for anything else.
LUMETRA_RENDER_EXPORT TargetSize parseTargetSize(std::string_view text);

} // namespace lumetra
