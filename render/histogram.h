// How often each pixel value occurs.
#pragma once

#include "render/channel.h"

#include <opencv2/core/mat.hpp>

#include <cstdint>
#include <vector>

namespace lumetra {

/// Adds the pixel values of a plane to counts.
/// @param plane   CV_8UC1 or CV_16UC1; cv::Exception for another type.
/// @param counts  One for each value: 256 or 65,536 of them.
LUMETRA_RENDER_EXPORT void countValues(const cv::Mat& plane, std::uint64_t* counts);

/// Counts of the pixel values of gray planes, one for each value. Counts add exactly, so what
/// follows from them does not depend on how a data set is cut into parts.
class LUMETRA_RENDER_EXPORT Histogram {
public:
    Histogram() = default;

    /// @param counts  How often each value occurs: 256 or 65,536 of them.
    Histogram(const std::uint64_t* counts, std::size_t values);

    /// Adds the pixel values of a plane.
    /// @throws RenderError if the planes before had another bit depth; cv::Exception unless the
    ///         plane is CV_8UC1 or CV_16UC1.
    void add(const cv::Mat& plane);

    /// Adds what another histogram has counted.
    /// @throws RenderError if that was of another bit depth.
    void add(const Histogram& other);

    /// Forgets everything and keeps the memory.
    void clear();

    bool isEmpty() const { return total_ == 0; }

    /// 8 or 16.
    int bitDepth() const { return counts_.size() == 256 ? 8 : 16; }
    std::uint64_t total() const { return total_; }

    /// 256 or 65,536 counts; none before the first plane.
    const std::vector<std::uint64_t>& counts() const { return counts_; }

    /// The smallest and the largest pixel value, both 0 if there are none.
    ContrastLimits range() const { return rangeWithout(0); }

    /// The range that is left when ⌊percent/100 · pixels⌋ pixels are cut off at each end.
    /// @param percent  From 0 to below 50.
    ContrastLimits clipped(double percent) const;

    /// The smallest pixel value that at least this share of all pixels does not exceed.
    /// @param percent  From 0 to 100.
    int percentile(double percent) const;

private:
    void setValues(std::size_t values);
    ContrastLimits rangeWithout(std::uint64_t pixelsAtEachEnd) const;

    std::vector<std::uint64_t> counts_;
    std::uint64_t total_ = 0;
};

} // namespace lumetra
