// One picture file from the files of its channels.
#pragma once

#include "apps/common/annotation.h"
#include "apps/common/channel.h"
#include "apps/common/histogram.h"
#include "apps/common/level_policy.h"
#include "apps/common/render.h"
#include "apps/common/stack.h"
#include "apps/lumetra/options.h"

#include <QString>

#include <functional>
#include <vector>

namespace apps {

/// How pictures are to be made, the same for all of a data set.
struct Recipe {
    std::vector<LevelPolicy> levels; ///< One for each channel.
    Pages pages;
    Annotation annotation;
    bool overwrite = false;
};

/// The files of one picture.
struct PictureFiles {
    std::vector<ChannelFile> inputs;
    QString output;
};

/// The files of channels, opened, and which of their pages are meant.
class ChannelStacks {
public:
    /// @throws Failure if a file cannot be read, has many pages and none is named, or the numbers
    /// of
    ///         pages of a stack differ.
    ChannelStacks(const std::vector<ChannelFile>& inputs, const Pages& pages);

    /// How many pictures they give.
    int pictures() const { return pictures_; }
    std::size_t channels() const { return stacks_.size(); }

    /// The page of a channel for picture `i`, counted from 0.
    cv::Mat gray(std::size_t channel, int i) const;
    cv::Mat any(std::size_t channel, int i) const;

    /// The pages of all channels for picture `i`.
    /// @throws Failure with both names if their sizes differ.
    void planes(int i, std::vector<cv::Mat>& planes) const;

private:
    int pageOf(std::size_t channel, int i) const { return firstPages_[channel] + i; }

    std::vector<Stack> stacks_;
    std::vector<int> firstPages_;
    int pictures_ = 1;
};

/// Makes pictures one after another, and keeps the memory that it needs.
class PictureMaker {
public:
    explicit PictureMaker(const Recipe& recipe) : recipe_(recipe) {}

    /// Reads, renders and writes one picture, or a stack. Levels that are to be measured are
    /// measured over all of its pages.
    /// @return The size of the picture in words.
    /// @throws Failure, Interrupted.
    QString make(const PictureFiles& files);

private:
    std::vector<Channel> channelsWithLevels(const PictureFiles& files, const ChannelStacks& stacks);

    const Recipe& recipe_;
    Renderer renderer_;
    std::vector<cv::Mat> planes_;
    cv::Mat picture_;
    Histogram histogram_;
};

/// Writes the pictures that `draw` makes for 0 to `count` − 1 into a file: one, or a stack. Makes
/// its folder.
void writePictures(const QString& output, int count,
                   const std::function<const cv::Mat&(int)>& draw);

} // namespace apps
