// Colouring on an in-memory bitmap: the way of colour images that are not of 8 bits yet.
#pragma once

#include "lumetra/colourise/pixel_area.h"

#include <opencv2/core/mat.hpp>

#include <functional>

namespace lumetra {

/// What an operation does to the pixels of the bitmap. Rows come bottom-up, so no stage may depend
/// on their order; the areas of one call have equal width and height.
struct RoundTripStages {
    /// Works on the encoded pixels in place, or only looks at them. May be empty.
    std::function<void(PixelArea encoded)> inPlace;

    /// Brings the encoded pixels into the working area.
    std::function<void(PixelArea encoded, PixelArea working)> fill = copyPixels;

    /// Makes each output pixel from the working area's pixel at the same place.
    std::function<void(PixelArea working, PixelArea output)> transform;
};

/// Encodes an image as a 24-bit bitmap in memory, runs the stages on its pixels, and decodes the
/// outcome into `dst`, a `CV_8UC3` image of the same rows and columns.
///
/// @param prepared  Three channels of any bit depth, which are reduced to 8 bits first; an image
/// that
///                  the encoder refuses may come here to be refused.
/// @param dst       Set to a copy of `prepared` first, and left so if the working area cannot be
///                  allocated or the encoder's bytes hold no whole bitmap.
///
/// @throws cv::Exception from the encoder, for an empty image or a channel count that it refuses;
///         `dst` then holds the copy.
void bitmapRoundTrip(const cv::Mat& prepared, cv::Mat& dst, const RoundTripStages& stages);

} // namespace lumetra
