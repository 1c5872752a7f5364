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
void lookUp(const Sample* samples, const unsigned char* table, unsigned char* shown,
            std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        shown[i] = table[samples[i]];
}

} // namespace

LevelLine::LevelLine(LevelRange levels)
    : low_(static_cast<std::uint16_t>(levels.low)), high_(static_cast<std::uint16_t>(levels.high)),
      slope_(255.0F / static_cast<float>(levels.high - levels.low)),
      // One half, to round, and half of the way from there to the next value that can occur, so
      // that errors to either side do no harm.
      start_(0.5F + 0.25F / static_cast<float>(levels.high - levels.low)) {}

int LevelLine::shownAbove(int samplesAboveBlack) const {
    return static_cast<int>(static_cast<float>(samplesAboveBlack) * slope_ + start_);
}

/// The line and the formula both rise, so they are equal everywhere if they are equal on both sides
/// of every step of the formula.
bool LevelLine::isExact() const {
    const int span = high_ - low_;
    for (int shown = 1; shown <= 255; ++shown) {
        const int first = ((2 * shown - 1) * span + 509) / 510; // 255 · first / span >= shown − 1/2
        if (shownAbove(first) < shown || shownAbove(first - 1) >= shown)
            return false;
    }
    return shownAbove(span) == 255;
}

void LevelLine::apply(const std::uint16_t* samples, unsigned char* shown, std::size_t count) const {
    const std::uint16_t low = low_, high = high_; // bytes that are written could be anybody's
    const float slope = slope_, start = start_;
    for (std::size_t i = 0; i < count; ++i) {
        // Minimum, maximum and difference in 16 bits, since twice as many fit into a register.
        const std::uint16_t upToWhite = samples[i] < high ? samples[i] : high;
        const std::uint16_t between = upToWhite > low ? upToWhite : low;
        const auto aboveBlack = static_cast<std::uint16_t>(between - low);
        const auto rise = static_cast<float>(int{aboveBlack}) * slope + start;
        shown[i] = static_cast<unsigned char>(static_cast<int>(rise));
    }
}

void DisplayTable::set(int bits, LevelRange levels, double gamma) {
    if (bits_ == bits && levels_ == levels && gamma_ == gamma)
        return;
    bits_ = bits;
    levels_ = levels;
    gamma_ = gamma;
    line_.reset();
    if (bits == 16 && gamma == 1 && LevelLine(levels).isExact())
        line_.emplace(levels);
    else
        fill();
}

void DisplayTable::fill() {
    entries_.resize(bits_ == 8 ? 256 : 65536);
    if (bits_ == 8 && gamma_ == 1 && levels_.high < 256 && isStretchable(levels_)) {
        std::iota(entries_.begin(), entries_.end(), static_cast<unsigned char>(0));
        Lumetra::StretchLevelsGray(static_cast<unsigned short>(levels_.low),
                                   static_cast<unsigned short>(levels_.high), entries_.data(), 256,
                                   1);
        return;
    }
    for (std::size_t sample = 0; sample < entries_.size(); ++sample)
        entries_[sample] = shownSample(static_cast<int>(sample), levels_, gamma_);
}

void DisplayTable::apply(const cv::Mat& plane, cv::Mat& result) const {
    CV_Assert(plane.type() == (bits_ == 16 ? CV_16UC1 : CV_8UC1));
    result.create(plane.rows, plane.cols, CV_8UC1);
    const auto columns = static_cast<std::size_t>(plane.cols);
    for (int y = 0; y < plane.rows; ++y) {
        auto* const shown = result.ptr<unsigned char>(y);
        if (line_)
            line_->apply(plane.ptr<std::uint16_t>(y), shown, columns);
        else if (bits_ == 16)
            lookUp(plane.ptr<std::uint16_t>(y), entries_.data(), shown, columns);
        else
            lookUp(plane.ptr<unsigned char>(y), entries_.data(), shown, columns);
    }
}

} // namespace apps
