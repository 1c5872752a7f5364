// A plane that is read from top to bottom.
#pragma once

#include "imageio/plane_rows.h"

#include <opencv2/core.hpp>

#include <algorithm>

namespace lumetra {

/// The whole of it, read one row at first and then more at a time.
inline cv::Mat planeInRows(PlaneRows& rows) {
    cv::Mat plane(rows.size(), rows.type());
    for (int y = 0, count = 1; y < plane.rows;
         y += count, count = std::min(count + 2, plane.rows - y)) {
        cv::Mat part = plane.rowRange(y, y + count);
        rows.read(part);
    }
    return plane;
}

} // namespace lumetra
