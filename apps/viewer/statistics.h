// How fast everything goes.
#pragma once

#include "apps/viewer/render_loop.h"

#include <array>
#include <deque>

namespace apps {

/// What one second brought.
struct Pace {
    enum Stage { levels, eightBits, dye, composite, paint };
    static constexpr int stages = paint + 1;
    static const std::array<const char*, stages> names;

    double fromCamera = 0, onScreen = 0;       ///< Frames a second.
    std::uint64_t dropped = 0;                 ///< Since the source was opened.
    std::array<double, stages> milliseconds{}; ///< Of each stage, for one frame.

    double sum() const;
};

/// Adds up what pictures took, second by second, for one minute.
class Statistics {
public:
    static constexpr std::size_t kept = 60;

    /// @param painting  Nanoseconds that the window took for the picture.
    void add(const Shown& shown, std::int64_t painting);

    /// Ends a second.
    /// @param cameraFrames  Frames that have come since the source was opened.
    void tick(double seconds, std::uint64_t cameraFrames, std::uint64_t dropped);

    /// For another source.
    void clear();

    const std::deque<Pace>& course() const { return course_; }

private:
    std::deque<Pace> course_;
    std::array<double, Pace::stages> sums_{};
    int pictures_ = 0, newFrames_ = 0;
    std::uint64_t lastShown_ = 0, lastFromCamera_ = 0;
};

} // namespace apps
