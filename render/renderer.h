// From planes and display settings to one image.
#pragma once

#include "render/channel.h"
#include "render/intensity_lut.h"

#include <opencv2/core/mat.hpp>

#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

namespace lumetra {

/// The order of an image's components.
enum class PixelFormat {
    bgr,  ///< CV_8UC3, or CV_16UC3 where pixel values keep their 16 bits.
    rgb,  ///< The same with red first.
    bgra, ///< CV_8UC4 for the screen, alpha 255: QImage::Format_RGB32.
};

/// Renders images, and keeps the memory that it needs from one to the next.
///
/// Planes are gray: CV_8UC1 or CV_16UC1, rows × columns, of any row step. They are worked on in
/// strips of rows that stay in the processor's cache. An object belongs to one thread at a time;
/// it starts none.
class LUMETRA_RENDER_EXPORT Renderer {
public:
    /// All visible channels in one image.
    ///
    /// A plane with contrast limits is brought to 8 bits through them and its gamma
    /// (`IntensityLut`); one without keeps its values and its bit depth. Then it is multiplied by
    /// its channel's colour and added to the others, clamped, or laid over those before it as its
    /// `Blend` says, all in the depth of the deepest. Of the first, the blend does not count.
    /// Hidden channels count for the part of the planes that the image shows (`Overlap`). If none
    /// is visible, it is black.
    ///
    /// @param planes    One for each channel, all of one size; only read.
    /// @param channels  Their display settings.
    /// @param image     Receives the pixels. Its storage is used again if it has the size and type.
    /// @throws RenderError if there is no plane, sizes or counts differ, the offsets leave no
    ///         common pixel, or a visible plane of 16 bits has no limits for the screen;
    ///         cv::Exception for planes of another type. `image` may then hold anything.
    void render(const std::vector<cv::Mat>& planes, const std::vector<Channel>& channels,
                cv::Mat& image, PixelFormat format = PixelFormat::bgr);

    /// One plane through a colormap.
    ///
    /// @param limits    What the first and the last colour stand for, low <= high; without them,
    ///                  the smallest and the largest pixel value.
    /// @param gamma     As for channels.
    /// @param image     Receives 8 bits. Its storage is used again if it has the size and type.
    void applyColormap(const cv::Mat& plane, std::optional<ContrastLimits> limits, double gamma,
                       const Colormap& colormap, cv::Mat& image,
                       PixelFormat format = PixelFormat::bgr);

private:
    /// The memory of one channel. Strips have one height, and the last of them another.
    struct ChannelBuffers {
        IntensityLut lut;
        cv::Mat display8, tinted, lastTinted;
    };
    /// What the colours of pixel values depend on.
    struct ColourMapping {
        ContrastLimits limits;
        double gamma = 0;
        Colormap colormap{};
        PixelFormat format = PixelFormat::bgr;

        bool operator==(const ColourMapping& other) const {
            return limits == other.limits && gamma == other.gamma && colormap == other.colormap &&
                   format == other.format;
        }
    };
    struct Canvas;

    void prepare(const std::vector<cv::Mat>& planes, const std::vector<Channel>& channels);
    static const cv::Mat& tint(const cv::Mat& part, const Channel& channel, ChannelBuffers& buffers,
                               bool isLast);
    void combine(const std::vector<Channel>& channels, cv::Mat& strip);
    void renderStrip(const Canvas& canvas, int firstRow, cv::Mat part, bool isLast);
    void setColourTable(int bitDepth, const ColourMapping& mapping);

    std::vector<std::size_t> visible_;
    std::deque<ChannelBuffers> buffers_;
    std::vector<cv::Mat> tinted_;
    bool isSum_ = true; ///< Whether all channels are added.
    cv::Mat sum_;
    ColourMapping mapping_;
    std::vector<std::uint32_t> colours_; ///< Of every pixel value; the first component is lowest.
};

} // namespace lumetra
