// Images too large to be held in memory as a whole.
#pragma once

#include "apps/cli/channel_files.h"
#include "apps/cli/render_spec.h"
#include "render/histogram.h"

#include <QString>

#include <optional>
#include <vector>

namespace lumetra {

/// The planes of one large image, whose files can be read from top to bottom.
class LargeImage {
public:
    /// None if the image is not large, or not all of its files can be read so.
    static std::optional<LargeImage> of(const ChannelFiles& files);

    /// Bits of the pixel values of a channel: 8 or 16.
    int bitDepth(std::size_t channel) const { return types_[channel] == CV_8UC1 ? 8 : 16; }

    /// The counts of each channel's pixel values.
    /// @throws FileError, Interrupted.
    std::vector<Histogram> histograms(int jobs) const;

    /// Renders it to a file, with nothing drawn onto it, as a Renderer would render it at once.
    /// @param channels  With their contrast limits.
    /// @return The size of the image.
    /// @throws FileError, RenderError, Interrupted; cv::Exception, std::bad_alloc.
    cv::Size render(const std::vector<Channel>& channels, const RenderSpec& rendering,
                    const QString& output) const;

private:
    explicit LargeImage(const ChannelFiles& files) : files_(&files) {}

    const ChannelFiles* files_;
    cv::Size size_;
    std::vector<int> types_;
};

} // namespace lumetra
