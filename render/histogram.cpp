#include "render/histogram.h"

#include "render/render_error.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

namespace lumetra {
namespace {

template<class Value> // NOLINTNEXTLINE(readability-non-const-parameter): it is written to
void count(const cv::Mat& plane, std::uint64_t* counts) {
    const int columns = plane.cols;
    for (int y = 0; y < plane.rows; ++y) {
        const auto* row = plane.ptr<Value>(y);
        for (int x = 0; x < columns; ++x)
            counts[row[x]] += 1;
    }
}

} // namespace

void countValues(const cv::Mat& plane, std::uint64_t* counts) {
    CV_Assert(plane.type() == CV_8UC1 || plane.type() == CV_16UC1);
    if (plane.depth() == CV_16U)
        count<std::uint16_t>(plane, counts);
    else
        count<unsigned char>(plane, counts);
}

Histogram::Histogram(const std::uint64_t* counts, std::size_t values)
    : counts_(counts, counts + values),
      total_(std::accumulate(counts_.begin(), counts_.end(), std::uint64_t{0})) {}

void Histogram::setValues(std::size_t values) {
    if (counts_.empty())
        counts_.resize(values);
    if (counts_.size() != values)
        throw RenderError("has another bit depth than the files before it");
}

void Histogram::add(const cv::Mat& plane) {
    CV_Assert(plane.type() == CV_8UC1 || plane.type() == CV_16UC1);
    setValues(plane.depth() == CV_16U ? 65536 : 256);
    countValues(plane, counts_.data());
    total_ += plane.total();
}

void Histogram::add(const Histogram& other) {
    if (other.counts_.empty())
        return;
    setValues(other.counts_.size());
    std::transform(counts_.begin(), counts_.end(), other.counts_.begin(), counts_.begin(),
                   std::plus<>());
    total_ += other.total_;
}

void Histogram::clear() {
    std::fill(counts_.begin(), counts_.end(), 0);
    total_ = 0;
}

ContrastLimits Histogram::rangeWithout(std::uint64_t pixelsAtEachEnd) const {
    if (isEmpty())
        return {0, 0};
    const auto firstBeyond = [&](auto first, auto last) {
        std::uint64_t seen = 0;
        return std::find_if(first, last,
                            [&](std::uint64_t n) {
                                seen += n;
                                return seen > pixelsAtEachEnd;
                            }) -
               first;
    };
    const auto low = firstBeyond(counts_.begin(), counts_.end());
    const auto above = firstBeyond(counts_.rbegin(), counts_.rend());
    return {static_cast<int>(low), static_cast<int>(counts_.size()) - 1 - static_cast<int>(above)};
}

ContrastLimits Histogram::clipped(double percent) const {
    // A share below a half leaves at least one pixel, rounding included.
    if (isEmpty())
        return {0, 0};
    const double share = std::floor(percent / 100 * static_cast<double>(total_));
    return rangeWithout(std::min(static_cast<std::uint64_t>(share), (total_ - 1) / 2));
}

int Histogram::percentile(double percent) const {
    if (isEmpty())
        return 0;
    const double share = std::ceil(percent / 100 * static_cast<double>(total_));
    const auto wanted = std::clamp<std::uint64_t>(static_cast<std::uint64_t>(share), 1, total_);
    std::uint64_t seen = 0;
    for (std::size_t value = 0; value < counts_.size(); ++value) {
        seen += counts_[value];
        if (seen >= wanted)
            return static_cast<int>(value);
    }
    return 0;
}

} // namespace lumetra
