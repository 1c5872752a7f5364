// Bringing a source image into one of the forms that can be coloured.
#pragma once

#include <opencv2/core/mat.hpp>

namespace lumetra {

/// The forms of images, each of which is coloured in its own way.
enum class SourceForm {
    gray8,    ///< `CV_8UC1`: at most 256 outcomes.
    colour8,  ///< `CV_8UC3`: encoding and decoding would not change it.
    gray16,   ///< `CV_16UC1`
    colour16, ///< `CV_16UC3`
    other,    ///< An empty image, too: for the bitmap's encoder to take or to refuse.
};

SourceForm formOf(const cv::Mat& image);

/// The image that is coloured in place of a source: without a fourth channel, and a single channel
/// of another bit depth reduced to 8 bits; otherwise a header on the source's own pixels. An empty
/// source gives an empty matrix.
///
/// @throws cv::Exception for more than two dimensions.
cv::Mat colourable(const cv::Mat& src);

} // namespace lumetra
