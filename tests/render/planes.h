// Planes for the tests of rendering and of the programs.
#pragma once

#include <opencv2/core.hpp>

namespace lumetra {

/// A plane whose pixel values cover the whole range of its bit depth without a pattern.
inline cv::Mat noisePlane(cv::Size size, int type, int seed) {
    cv::Mat plane(size, type);
    cv::RNG random(static_cast<uint64>(seed) + 1);
    random.fill(plane, cv::RNG::UNIFORM, 0, type == CV_8UC1 ? 256 : 65536);
    return plane;
}

inline bool areEqual(const cv::Mat& a, const cv::Mat& b) {
    return a.size() == b.size() && a.type() == b.type() &&
           (a.empty() || cv::norm(a, b, cv::NORM_INF) == 0);
}

} // namespace lumetra
