// Many planes seen as one.
#pragma once

#include "render/export.h"

#include <opencv2/core/mat.hpp>

#include <string>
#include <string_view>

namespace lumetra {

/// What a pixel of a projection is, of the pixel values at its place in all planes.
enum class ProjectionMethod {
    max,  ///< The largest, in the type of the planes.
    mean, ///< The mean, halves rounded up, in the bit depth of the planes.
    sum,  ///< The sum in 16 bits, whatever the bit depth of the planes; clamped to 65535.
};        // Of floating-point planes, mean and sum are in 64 bits and not rounded.

/// `max`, `mean` or `sum`.
LUMETRA_RENDER_EXPORT std::string projectionText(ProjectionMethod method);

/// Understands what `projectionText` gives.
/// @throws RenderError for anything else.
LUMETRA_RENDER_EXPORT ProjectionMethod parseProjection(std::string_view text);

/// Projects planes, such as z-slices, plane by plane: it holds one plane however many are added, of
/// the type of the result, or of 32 bits for a mean. An object belongs to one thread at a time.
class LUMETRA_RENDER_EXPORT Projection {
public:
    explicit Projection(ProjectionMethod method) : method_(method) {}

    /// Adds a plane, which is only read.
    ///
    /// @param plane  CV_8UC1, CV_16UC1, CV_32FC1 or CV_64FC1, rows × columns, of any row step.
    /// Where
    ///               values are not a number, a maximum is that of the others.
    /// @throws RenderError if its size or type is not that of the planes before it, or for more
    ///         planes than a mean can hold: 65,536 of 16 bits, 16,777,216 of 8; cv::Exception for
    ///         another type. The projection is then as it was.
    void add(const cv::Mat& plane);

    /// How many planes were added.
    int planes() const { return planes_; }

    /// The projection of the planes so far, in memory of its own: CV_8UC1, CV_16UC1, CV_32FC1 or
    /// CV_64FC1.
    /// @throws RenderError if there are none.
    cv::Mat result() const;

private:
    ProjectionMethod method_;
    int planes_ = 0;
    int type_ = 0;        ///< Of the planes.
    cv::Mat accumulator_; ///< The result so far; for a mean the sum, of 32 bits unsigned or double.
};

} // namespace lumetra
