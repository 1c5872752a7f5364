// TIFF files, written.
#pragma once

#include "imageio/atomic_file.h"
#include "imageio/output_format.h"

#include <opencv2/core/mat.hpp>

#include <QString>

#include <cstdint>
#include <memory>
#include <optional>

namespace lumetra {

/// Writes a TIFF file page by page, in strips of about 256 KiB; compressed ones hold the horizontal
/// differences of pixels.
/// It is seen under its name only after `commit`; without it nothing is left.
///
/// All members throw FileError with the file's name.
class TiffWriter {
public:
    /// @param existing       As AtomicFile has it.
    /// @param expectedBytes  About how many bytes the pixels of all pages have; beyond four
    ///                       gigabytes the file is a BigTIFF.
    /// @param pixelSize      The side of a pixel in µm, if it is to be told.
    /// @param compression    LZW is what nearly all programs read.
    TiffWriter(const QString& file, Existing existing, std::uint64_t expectedBytes,
               std::optional<double> pixelSize = {},
               TiffCompression compression = TiffCompression::lzw);
    ~TiffWriter();
    TiffWriter(const TiffWriter&) = delete;
    TiffWriter& operator=(const TiffWriter&) = delete;

    /// Appends a page: CV_8U or CV_16U with one channel, or three (blue, green, red).
    void add(const cv::Mat& page);

    /// The same, of a page whose rows come one after another: `begin`, then all rows in parts of
    /// `rowsOfStrip` or a multiple of it; the last part may have fewer.
    void begin(cv::Size size, int type);
    void addRows(const cv::Mat& rows);
    static int rowsOfStrip(cv::Size size, int type);

    /// Gives the file its name; nothing can be added any more.
    void commit();

private:
    struct Output;
    std::unique_ptr<Output> output_;
};

} // namespace lumetra
