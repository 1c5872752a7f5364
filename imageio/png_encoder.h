// PNG, written.
#pragma once

#include <opencv2/core/mat.hpp>

#include <QByteArray>
#include <QIODevice>

#include <cstdint>
#include <optional>

namespace lumetra {

/// Writes an image as PNG, block by block: filter Sub, and prefix codes for what is left (see
/// DeflateEncoder). It is made for the noise of cameras and dark backgrounds.
/// @param image  CV_8U or CV_16U with one channel, or three (blue, green, red).
/// @param pixelSize  The side of a pixel in µm, if it is to be told.
/// @throws Reason if the device does not take it, or a side has more than a million pixels.
///
/// A large image is encoded in strips, which `PngStrips` can do in any number of threads; its bytes
/// are the same whoever does it.
void encodePng(const cv::Mat& image, QIODevice& device, std::optional<double> pixelSize = {});

/// Whether an image of this size is encoded in strips: it has more than 32 million pixels.
bool isLarge(cv::Size size);

/// A PNG file of a large image, from strips that are encoded apart.
class PngStrips {
public:
    struct Strip {
        QByteArray chunks;
        std::uint32_t adler = 1; ///< Of what it stands for,
        std::uint64_t bytes = 0; ///< and how much that is.
    };

    /// Writes what comes before the pixels.
    /// @param type  Of the image, as for `encodePng`.
    /// @throws Reason as `encodePng`.
    PngStrips(cv::Size size, int type, QIODevice& device, std::optional<double> pixelSize);

    /// How many rows each strip has; the last one may have fewer.
    static int rowsOf(cv::Size size, int type);

    /// @param rows  Of strip `number`, counted from 0. Can be called from any thread.
    static Strip encode(const cv::Mat& rows, int number);

    /// Appends a strip. They are to come in their order.
    void add(const Strip& strip);

    /// Writes what comes after the pixels.
    void finish();

private:
    QIODevice& device_;
    std::uint32_t adler_ = 1;
};

} // namespace lumetra
