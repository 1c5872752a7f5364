// How often each sample occurs.
#pragma once

#include "apps/common/channel.h"

#include <opencv2/core/mat.hpp>

#include <cstdint>
#include <vector>

namespace apps {

/// Counts of the samples of gray planes, one for each value. Counts add exactly, so what follows
/// from them does not depend on how a data set is cut into parts.
class Histogram {
public:
    /// Adds the samples of a plane.
    /// @throws Failure if the planes before were of another depth; cv::Exception unless the plane
    /// is
    ///         CV_8UC1 or CV_16UC1.
    void add(const cv::Mat& plane);

    /// Adds what another histogram has counted.
    /// @throws Failure if that was of another depth.
    void add(const Histogram& other);

    /// Forgets everything and keeps the memory.
    void clear();

    bool isEmpty() const { return total_ == 0; }
    int bits() const { return counts_.size() == 256 ? 8 : 16; }
    std::uint64_t total() const { return total_; }

    /// 256 or 65,536 counts; none before the first plane.
    const std::vector<std::uint64_t>& counts() const { return counts_; }

    /// The smallest and the largest sample, both 0 if there are none.
    LevelRange range() const { return rangeWithout(0); }

    /// The range that is left when ⌊percent/100 · samples⌋ samples are cut off at each end.
    /// @param percent  From 0 to below 50.
    LevelRange clipped(double percent) const;

    /// The smallest sample that at least this share of all samples does not exceed.
    /// @param percent  From 0 to 100.
    int percentile(double percent) const;

private:
    void setDepth(std::size_t values);
    LevelRange rangeWithout(std::uint64_t samplesAtEachEnd) const;

    std::vector<std::uint64_t> counts_;
    std::uint64_t total_ = 0;
};

} // namespace apps
