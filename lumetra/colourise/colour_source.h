// Bringing a source image into one of the forms that can be coloured.
#pragma once

#include <opencv2/core/mat.hpp>

namespace lumetra {

/// What becomes of a source, by the form of the image that is to be coloured.
enum class ColourWay {
    gray8,    ///< `CV_8UC1`: at most 256 outcomes.
    colour8,  ///< `CV_8UC3`: encoding and decoding would not change it.
    gray16,   ///< `CV_16UC1`
    colour16, ///< `CV_16UC3`
    bitmap,   ///< Anything else, an empty image included: for the encoder to convert or refuse.
};

ColourWay colourWay(const cv::Mat& source);

/// The source without a fourth channel, and a single channel of other depths rounded and clamped to
/// 8 bits; otherwise a header on its own pixels. An empty source gives an empty matrix.
///
/// @throws cv::Exception for more than two dimensions.
cv::Mat colourSource(const cv::Mat& src);

} // namespace lumetra
