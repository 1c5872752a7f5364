// A camera that needs no hardware.
#pragma once

#include "apps/viewer/frame_source.h"

#include <opencv2/core.hpp>

#include <atomic>
#include <vector>

namespace lumetra {

/// What the simulated camera is like.
struct SimulatedCameraOptions {
    int channels = 3;            ///< 1 to 4; the number of images, if there are any.
    int side = 2048;             ///< Pixels a side.
    std::vector<cv::Mat> images; ///< What it sees, gray; empty for cells drawn for it.
};

/// Sees a fixed specimen that drifts below the lens, with the noise and the hot pixels of a sensor
/// of 16 bits.
class SimulatedCamera : public FrameSource {
public:
    explicit SimulatedCamera(SimulatedCameraOptions options);
    void grab(Frame& frame) override;
    int bitDepth() const override { return 16; }
    void cancel() override { isCancelled_ = true; }

private:
    void throwIfCancelled() const;
    std::vector<cv::Mat> drawnScenes(int side) const;
    void prepare();
    cv::Rect driftingPart() const;

    SimulatedCameraOptions options_;
    std::vector<cv::Mat> scenes_; ///< A little larger than a frame; drawn at the first grab.
    cv::Mat noise_;
    std::vector<std::vector<cv::Point>> hotPixels_;
    cv::RNG random_{1};
    int exposures_ = 0;
    std::atomic<bool> isCancelled_{false};
};

} // namespace lumetra
