#include "apps/viewer/statistics.h"

#include <algorithm>
#include <numeric>

namespace apps {

const std::array<const char*, Pace::stages> Pace::names = {"levels", "to 8 bits", "dye",
                                                           "composite", "paint"};

double Pace::sum() const { return std::accumulate(milliseconds.begin(), milliseconds.end(), 0.0); }

void Statistics::add(const Shown& shown, std::int64_t painting) {
    constexpr double million = 1e6;
    const std::int64_t taken[] = {shown.measuring, shown.stages.eightBits, shown.stages.dye,
                                  shown.stages.composite, shown.stages.screen + painting};
    for (std::size_t stage = 0; stage < sums_.size(); ++stage)
        sums_[stage] += static_cast<double>(taken[stage]) / million;
    ++pictures_;
    newFrames_ += shown.frame != lastShown_ ? 1 : 0;
    lastShown_ = shown.frame;
}

void Statistics::tick(double seconds, std::uint64_t cameraFrames, std::uint64_t dropped) {
    Pace pace;
    const auto fromCamera = cameraFrames - std::min(lastFromCamera_, cameraFrames);
    pace.fromCamera = static_cast<double>(fromCamera) / seconds;
    pace.onScreen = newFrames_ / seconds;
    pace.dropped = dropped;
    for (std::size_t stage = 0; stage < sums_.size(); ++stage)
        pace.milliseconds[stage] = sums_[stage] / std::max(pictures_, 1);
    course_.push_back(pace);
    if (course_.size() > kept)
        course_.pop_front();
    sums_ = {};
    pictures_ = newFrames_ = 0;
    lastFromCamera_ = cameraFrames;
}

void Statistics::clear() { *this = {}; }

} // namespace apps
