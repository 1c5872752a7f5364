// From planes and display settings to one image.
#pragma once

#include "render/channel.h"
#include "render/instruction_set.h"
#include "render/intensity_lut.h"
#include "render/pixel_format.h"

#include <opencv2/core/mat.hpp>

#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

namespace lumetra {

struct RowChannel;

/// Renders images, and keeps what it knows of contrast limits and colormaps from one to the next.
///
/// Planes are gray: CV_8UC1 or CV_16UC1, rows × columns, of any row step. An object belongs to one
/// thread at a time; it starts none.
class LUMETRA_RENDER_EXPORT Renderer {
public:
    /// For the fastest instructions that the processor has.
    Renderer();
    /// @param instructions  One of `instructionSets()`.
    explicit Renderer(InstructionSet instructions);

    /// All visible channels in one image.
    ///
    /// A plane with contrast limits is brought to 8 bits through them and its gamma
    /// (`IntensityLut`); one without keeps its values and its bit depth. Then it is multiplied by
    /// its channel's colour and added to the others, clamped, or laid over those before it as its
    /// `Blend` says, all in the depth of the deepest. Of the first, the blend does not count.
    ///
    /// In place of that, a channel with a colormap has the colours of it at 8 bits, spread over the
    /// contrast limits; without them, from the smallest to the largest value of the plane.
    ///
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

    /// One plane through a colormap, as `render` shows a channel that has it.
    ///
    /// @param limits    What the first and the last colour stand for, low <= high; without them,
    ///                  the smallest and the largest pixel value.
    /// @param gamma     As for channels.
    /// @param image     Receives 8 bits. Its storage is used again if it has the size and type.
    void applyColormap(const cv::Mat& plane, std::optional<ContrastLimits> limits, double gamma,
                       const Colormap& colormap, cv::Mat& image,
                       PixelFormat format = PixelFormat::bgr);

private:
    /// What the values of one channel become, kept while its settings stay.
    struct ChannelTables {
        IntensityLut lut;
        Colormap colormap{};
        PixelFormat format = PixelFormat::bgr;
        std::vector<std::uint32_t> colours; ///< Of the colormap, as `RowChannel` takes them.
    };

    static void setColours(const cv::Mat& plane, const Channel& channel, PixelFormat format,
                           ChannelTables& tables);
    static RowChannel rowChannel(const cv::Mat& plane, const Channel& channel, PixelFormat format,
                                 ChannelTables& tables);

    InstructionSet instructions_;
    std::deque<ChannelTables> tables_; ///< One for each channel.
};

} // namespace lumetra
