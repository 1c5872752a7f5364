// Image files that are shown like a camera.
#pragma once

#include "apps/common/channel_spec.h"
#include "apps/viewer/frame_source.h"
#include "imageio/image_file.h"

#include <QCoreApplication>

#include <mutex>

namespace lumetra {

/// Gives the planes of image files, each of which has one channel or several.
///
/// Files of several z-slices or time points are stepped through together. Those with one of them,
/// or for which one was named, stay where they are.
class FileSource : public FrameSource {
    Q_DECLARE_TR_FUNCTIONS(FileSource)
public:
    /// A channel of a file.
    struct FileChannel {
        ChannelFile input;    ///< With dye, colour and offset where the user named them.
        Channel described;    ///< What the file says, or is guessed from its name.
        bool isNamed = false; ///< Whether the user named them.
    };

    /// @param files  Each stands for all channels that it has and that were named.
    /// @throws Error if a file cannot be read, if a dye was named for several channels, or if files
    ///         have different numbers of z-slices or time points to step through.
    FileSource(const std::vector<ChannelFile>& files, const DyeList& dyes);

    const std::vector<FileChannel>& channels() const { return channels_; }

    /// How many z-slices and time points there are to choose from.
    const Axes& axes() const { return axes_; }

    /// Whether nothing but the order of its pages tells the z-slices of a file.
    bool hasPages() const { return hasPages_; }

    /// The side of a pixel in µm as the first file says.
    std::optional<double> pixelSize() const { return pixelSize_; }

    /// The files with the planes that each of them shows, named where there are several.
    std::vector<ChannelFile> filesAt(const StackPosition& position) const;

    /// Chooses what comes next, moved within the axes. From any thread.
    void setPosition(const StackPosition& position);

    /// Gives the planes that were chosen, or those after the last ones: the next time point, or the
    /// next z-slice where there is one time point. After the last comes the first.
    /// @throws Error with the file's name, or both names for different sizes.
    void grab(Frame& frame) override;

private:
    struct Planes {
        std::size_t file = 0;
        int channel = 1;
        AxisRange slices, frames; ///< What there is to choose from.
    };

    void addChannels(std::size_t number, const ChannelFile& named, const DyeList& dyes);
    void stepTogether(const AxisRange& range, int& count, const QString& file) const;
    StackPosition nextPosition();
    cv::Mat plane(std::size_t channel, int slice, int frame) const;
    cv::Mat shownPlane(std::size_t channel, const StackPosition& position) const;

    std::vector<ImageFile> files_; ///< Each once.
    std::vector<FileChannel> channels_;
    std::vector<Planes> planes_; ///< Of `channels_`.
    Axes axes_;
    bool hasPages_ = false;
    std::optional<double> pixelSize_;
    StackPosition position_; ///< Of the last frame.

    std::mutex mutex_;
    std::optional<StackPosition> wanted_ = StackPosition{};
};

/// Dye and colour for a channel whose file names none: a built-in dye that its name holds,
/// otherwise one that tells it from the others.
/// @param number  Counted from 0.
Channel guessedChannel(const QString& file, int number, const DyeList& dyes);

} // namespace lumetra
