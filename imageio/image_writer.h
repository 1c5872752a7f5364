// Image files of one page, written.
#pragma once

#include "imageio/atomic_file.h"
#include "imageio/output_format.h"

#include <opencv2/core/mat.hpp>

#include <QString>

#include <optional>

namespace lumetra {

/// Writes an image to a file in the format of its extension (see outputFormat), or as PNG to the
/// standard output for `-`. The file is seen only when it is complete.
/// @param image     CV_8U, or but for JPEG CV_16U, with one channel, or three (blue, green, red).
/// @param existing  Whether a file of that name is kept, or replaced.
/// @param pixelSize  The side of a pixel in µm, above 0, which PNG and TIFF tell their readers.
/// @param compression  Of a TIFF file.
/// @throws FileExistsError if it is there and is kept; FileError for whatever else goes wrong.
void writeImage(const QString& file, const cv::Mat& image, Existing existing,
                std::optional<double> pixelSize = {},
                TiffCompression compression = TiffCompression::lzw);

} // namespace lumetra
