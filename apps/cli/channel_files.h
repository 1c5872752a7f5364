// The image files of channels, and which of their pages make an image.
#pragma once

#include "apps/cli/page_selection.h"
#include "apps/common/channel_spec.h"
#include "imageio/image_file.h"

#include <QString>

#include <opencv2/core/mat.hpp>

#include <vector>

namespace lumetra {

/// The files of channels, opened.
class ChannelFiles {
public:
    /// @throws Error if a file cannot be read, has many pages and none is named, or if the files
    ///         have different numbers of pages where all are meant; UsageError if a page is named
    ///         beside all of them.
    ChannelFiles(const std::vector<InputFile>& inputs, const PageSelection& pages);

    /// How many images they give.
    int images() const { return images_; }
    std::size_t channels() const { return files_.size(); }

    /// The plane of a channel for image `i`, counted from 0: CV_8UC1 or CV_16UC1.
    /// @throws Error with the file's name if it cannot be read, or has colours.
    cv::Mat gray(std::size_t channel, int i) const;

    /// As `gray`, but of one channel or three.
    cv::Mat any(std::size_t channel, int i) const;

    /// The planes of all channels for image `i`.
    /// @throws Error as `gray`, and with both names if their sizes differ; Interrupted.
    void planes(int i, std::vector<cv::Mat>& planes) const;

private:
    int pageOf(std::size_t channel, int i) const { return firstPages_[channel] + i; }

    std::vector<ImageFile> files_;
    std::vector<int> firstPages_;
    int images_ = 1;
};

} // namespace lumetra
