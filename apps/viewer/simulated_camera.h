// A camera that nobody had to buy.
#pragma once

#include "apps/viewer/frame_source.h"

#include <opencv2/core.hpp>

#include <vector>

namespace apps {

/// What the simulated camera is like.
struct SimulatedCameraOptions {
    int channels = 3;              ///< 2 to 4; the number of pictures, if there are any.
    int side = 2048;               ///< Pixels a side.
    std::vector<cv::Mat> pictures; ///< What it looks at, gray; empty for cells drawn for it.
};

/// Films a still specimen that drifts below the lens, with the noise and the hot pixels of a sensor
/// of 16 bits.
class SimulatedCamera : public FrameSource {
public:
    explicit SimulatedCamera(SimulatedCameraOptions options);
    void grab(Frame& frame) override;

private:
    cv::Rect driftingPart() const;

    SimulatedCameraOptions options_;
    std::vector<cv::Mat> scenes_; ///< A little larger than a frame; drawn at the first grab.
    cv::Mat noise_;
    std::vector<std::vector<cv::Point>> hotPixels_;
    cv::RNG random_{1};
    int exposures_ = 0;
};

} // namespace apps
