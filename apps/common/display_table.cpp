#include "apps/common/display_table.h"

#include <opencv2/core.hpp>

#include <lumetra>

#include <cmath>
#include <cstdint>
#include <numeric>

namespace apps {
namespace {

/// Within these levels `StretchLevelsGray` takes them as they are; beyond, it would move them.
bool isStretchable(LevelRange levels) { return levels.low <= 253 && levels.high >= 2; }

unsigned char shownSample(int sample, LevelRange levels, double gamma) {
    if (sample >= levels.high)
        return 255;
    if (sample <= levels.low)
        return 0;
    const std::int64_t above = sample - levels.low;
    const std::int64_t span = levels.high - levels.low;
    if (gamma == 1)
        return static_cast<unsigned char>((2 * 255 * above + span) / (2 * span));
    const double share = static_cast<double>(above) / static_cast<double>(span);
    return static_cast<unsigned char>(std::floor(255 * std::pow(share, gamma) + 0.5));
}

template<class Sample>
void lookUp(const cv::Mat& plane, const unsigned char* table, cv::Mat& result) {
    const int columns = plane.cols; // bytes that are written could be anybody's
    for (int y = 0; y < plane.rows; ++y) {
        const auto* in = plane.ptr<Sample>(y);
        auto* out = result.ptr<unsigned char>(y);
        for (int x = 0; x < columns; ++x)
            out[x] = table[in[x]];
    }
}

} // namespace

void DisplayTable::set(int bits, LevelRange levels, double gamma) {
    const std::size_t size = bits == 8 ? 256 : 65536;
    if (entries_.size() == size && levels_ == levels && gamma_ == gamma)
        return;
    entries_.resize(size);
    levels_ = levels;
    gamma_ = gamma;
    if (size == 256 && gamma == 1 && levels.high < 256 && isStretchable(levels)) {
        std::iota(entries_.begin(), entries_.end(), static_cast<unsigned char>(0));
        Lumetra::StretchLevelsGray(static_cast<unsigned short>(levels.low),
                                   static_cast<unsigned short>(levels.high), entries_.data(), 256,
                                   1);
        return;
    }
    for (std::size_t sample = 0; sample < size; ++sample)
        entries_[sample] = shownSample(static_cast<int>(sample), levels, gamma);
}

void DisplayTable::apply(const cv::Mat& plane, cv::Mat& result) const {
    const bool deep = entries_.size() > 256;
    CV_Assert(plane.type() == (deep ? CV_16UC1 : CV_8UC1));
    result.create(plane.rows, plane.cols, CV_8UC1);
    if (deep)
        lookUp<std::uint16_t>(plane, entries_.data(), result);
    else
        lookUp<unsigned char>(plane, entries_.data(), result);
}

} // namespace apps
