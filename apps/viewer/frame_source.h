// What a camera must be able to do to be shown.
#pragma once

#include "render/projection.h"

#include <opencv2/core/mat.hpp>

#include <cstdint>
#include <optional>
#include <vector>

namespace lumetra {

/// Which planes of files are shown; each axis is counted from 1. Cameras have one of each.
struct StackPosition {
    int slice = 1;
    int frame = 1;                              ///< The time point.
    std::optional<ProjectionMethod> projection; ///< Of all z-slices, in place of one.
};

/// What all channels saw at one moment.
struct Frame {
    std::vector<cv::Mat> planes; ///< CV_8UC1 or CV_16UC1, one for each channel.
    std::uint64_t number = 0;    ///< Counted from 1 since the source was opened.
    StackPosition position;
    int bits = 0; ///< As `FrameSource::bitDepth`.
};

/// A camera, or something that can be shown like one.
class FrameSource {
public:
    FrameSource() = default;
    FrameSource(const FrameSource&) = delete;
    FrameSource& operator=(const FrameSource&) = delete;
    virtual ~FrameSource() = default;

    /// Fills a frame, and takes as long as the exposure takes. Always called in one thread of the
    /// source's own. The frame holds the memory of an earlier one, which should be used again.
    /// @throws Error if no frame can be had; the source is then stopped.
    virtual void grab(Frame& frame) = 0;

    /// The bit depth of the pixel values, 8 to 16, as the camera's interface tells it; 0 if it does
    /// not.
    virtual int bitDepth() const { return 0; }

    /// Makes a `grab` that waits for something return or throw at once, now and from now on. Called
    /// from other threads, before the source is closed.
    virtual void cancel() {}
};

} // namespace lumetra
