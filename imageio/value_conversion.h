// Pixel values of any type, brought to 16 bits under contrast limits.
#pragma once

#include <opencv2/core/mat.hpp>

#include <cstdint>

namespace lumetra {

/// The finite values of planes: how far they reach, and how many are none.
struct FiniteRange {
    double low = 0, high = 0;    ///< Both 0 if no value is finite.
    std::uint64_t finite = 0;    ///< How many values are numbers.
    std::uint64_t notFinite = 0; ///< How many are infinite or not a number.

    /// Takes in what another plane holds.
    void add(const FiniteRange& other);
};

/// Whether a plane has to go through `toDisplay16` before it is shown: it is neither CV_8U nor
/// CV_16U.
bool needsConversion(const cv::Mat& plane);

/// @param plane  CV_8UC1, CV_16UC1, CV_32FC1 or CV_64FC1.
FiniteRange finiteRange(const cv::Mat& plane);

/// The plane on a scale of 65,536 steps, CV_16UC1: low and what is below becomes 0, high and what
/// is above 65535, and between them (value - low) / (high - low) · 65535 rounded to the nearest.
/// What is infinite or not a number becomes 0.
///
/// A histogram of the result is therefore one of 65,536 bins between low and high, of equal width
/// but for the first and the last, which are half as wide; over finiteRange it leaves nothing out.
/// @param plane  CV_8UC1, CV_16UC1, CV_32FC1 or CV_64FC1.
/// @param low,high  Finite. If high is not larger than low, values above low become 65535.
cv::Mat toDisplay16(const cv::Mat& plane, double low, double high);

/// The value in the middle of a step of `toDisplay16`.
double fromDisplay16(double step, double low, double high);

} // namespace lumetra
