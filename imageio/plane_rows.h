// A plane, read from top to bottom.
#pragma once

#include <opencv2/core/mat.hpp>

namespace lumetra {

/// The rows of a gray plane one after another, so that a large one is never in memory as a whole.
class PlaneRows {
public:
    /// @param type  CV_8UC1 or CV_16UC1.
    PlaneRows(cv::Size size, int type) : size_(size), type_(type) {}
    virtual ~PlaneRows() = default;
    PlaneRows(const PlaneRows&) = delete;
    PlaneRows& operator=(const PlaneRows&) = delete;

    cv::Size size() const { return size_; }
    int type() const { return type_; }

    /// Reads the next rows.
    /// @param rows  Of the type, as wide as the plane, and no higher than what is left of it.
    virtual void read(cv::Mat& rows) = 0;

private:
    cv::Size size_;
    int type_;
};

} // namespace lumetra
