// The image files of channels, and which of their planes make an image.
#pragma once

#include "apps/cli/page_selection.h"
#include "apps/common/channel_spec.h"
#include "imageio/image_file.h"
#include "imageio/value_conversion.h"

#include <QString>

#include <opencv2/core/mat.hpp>

#include <memory>
#include <optional>
#include <vector>

namespace lumetra {

/// A plane that is read from top to bottom, of a file of its own.
struct OpenRows {
    std::unique_ptr<ImageFile> file;
    std::unique_ptr<PlaneRows> rows;
};

/// The files of channels, opened.
class ChannelFiles {
public:
    /// @param inputs  One for each channel; a file that stands for several channels names one of
    ///                them.
    /// @throws Error, FileError if a file cannot be read, has several z-slices, time points or
    /// pages
    ///         and none is named, or if files give different numbers of images where all are meant;
    ///         UsageError if a page is named beside all of them, or if z-slices have files of their
    ///         own and are not projected.
    ChannelFiles(const std::vector<InputFile>& inputs, const PageSelection& pages);

    /// How many images they give.
    int images() const { return images_; }
    std::size_t channels() const { return channels_.size(); }
    const ImageFile& file(std::size_t channel) const { return *channels_[channel].file; }

    /// The plane of a channel for image `i`, counted from 0, in the type of the file; of several
    /// planes, their projection, which is made each time.
    /// @throws Error with the file's name if it cannot be read, has colours, or planes do not fit
    ///         each other.
    cv::Mat raw(std::size_t channel, int i);

    /// The same as CV_8UC1 or CV_16UC1: floats, and integers of other than 8 and 16 bits, unsigned,
    /// are brought to 16 bits from the range that all of the channel's images have, or `setRange`
    /// says.
    /// @throws Error as `raw`, and if images of the channel have different bit depths, which no
    ///         contrast limits would fit.
    cv::Mat gray(std::size_t channel, int i);

    /// As `gray`, but of one channel or three where it is a page.
    cv::Mat any(std::size_t channel, int i);

    /// The planes of all channels for image `i`.
    /// @throws Error as `gray`, and with both names if their sizes differ; Interrupted.
    void planes(int i, std::vector<cv::Mat>& planes);

    /// The plane of the only image, to be read from top to bottom: `ImageFile::rows`. Null if there
    /// are several images or planes.
    std::unique_ptr<PlaneRows> rows(std::size_t channel) const;

    /// The same of the file opened once more, so that others can be read meanwhile.
    OpenRows openRows(std::size_t channel) const;

    /// The range that `gray` brought to 16 bits; none where it had nothing to bring.
    const std::optional<FiniteRange>& convertedRange(std::size_t channel) const {
        return channels_[channel].range;
    }

    /// Sets such a range, for values that need one.
    void setRange(std::size_t channel, ValueLimits limits);

private:
    struct Plane {
        int slice = 0, frame = 0;
        int page = 0; ///< Where the axes are not known, or the user names a page.
    };
    struct ChannelPlanes {
        std::shared_ptr<ImageFile> file; ///< The first one, where z-slices have files of their own.
        InputFile input;
        int channel = 1;
        std::vector<std::vector<Plane>> images{}; ///< Several planes are projected.
        std::optional<FiniteRange> range{};       ///< Of values that are brought to 16 bits.
        std::optional<int> type{};                ///< Of the planes.
    };

    ChannelPlanes planesOf(std::shared_ptr<ImageFile> file, const InputFile& input) const;
    static cv::Mat plane(const ChannelPlanes& channel, const Plane& plane);
    std::unique_ptr<PlaneRows> rowsOf(const ImageFile& file, std::size_t channel) const;
    static void addPlanes(const ChannelPlanes& channel, int i, Projection& projection);
    FiniteRange finiteRangeOf(std::size_t channel);

    std::vector<ChannelPlanes> channels_;
    PageSelection pages_;
    int images_ = 1;
};

} // namespace lumetra
