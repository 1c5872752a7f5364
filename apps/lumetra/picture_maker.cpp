#include "apps/lumetra/picture_maker.h"

#include "apps/common/failure.h"
#include "apps/common/writing.h"
#include "apps/lumetra/signals.h"

#include <opencv2/core.hpp>

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <memory>
#include <new>

namespace apps {

ChannelStacks::ChannelStacks(const std::vector<ChannelFile>& inputs, const Pages& pages) {
    for (const ChannelFile& input : inputs) {
        stacks_.emplace_back(input.file);
        const Stack& stack = stacks_.back();
        const int wanted = input.page > 0 ? input.page : pages.number;
        if (pages.all && wanted > 0)
            throw BadUsage(QStringLiteral("%1: a page is named beside --all-pages")
                               .arg(shown(fileWords(input))));
        if (!pages.all && wanted == 0 && stack.pages() > 1)
            throw Failure(QStringLiteral("%1: has %2 pages; choose one with --page, or --all-pages")
                              .arg(shown(input.file))
                              .arg(stack.pages()));
        if (pages.all && stack.pages() != stacks_.front().pages())
            throw Failure(QStringLiteral("the stacks have different numbers of pages: %1 has %2, "
                                         "%3 has %4")
                              .arg(shown(stacks_.front().file()))
                              .arg(stacks_.front().pages())
                              .arg(shown(input.file))
                              .arg(stack.pages()));
        firstPages_.push_back(std::max(wanted, 1));
    }
    if (pages.all)
        pictures_ = stacks_.front().pages();
}

cv::Mat ChannelStacks::gray(std::size_t channel, int i) const {
    return stacks_[channel].grayPage(pageOf(channel, i));
}

cv::Mat ChannelStacks::any(std::size_t channel, int i) const {
    return stacks_[channel].page(pageOf(channel, i));
}

void ChannelStacks::planes(int i, std::vector<cv::Mat>& planes) const {
    planes.resize(stacks_.size());
    for (cv::Mat& plane : planes)
        plane.release(); // before others are read
    for (std::size_t channel = 0; channel < stacks_.size(); ++channel) {
        throwIfInterrupted();
        planes[channel] = gray(channel, i);
        requireEqualSizes(stacks_[0].file(), planes[0], stacks_[channel].file(), planes[channel]);
    }
}

std::vector<Channel> PictureMaker::channelsWithLevels(const PictureFiles& files,
                                                      const ChannelStacks& stacks) {
    std::vector<Channel> channels;
    for (std::size_t channel = 0; channel < files.inputs.size(); ++channel) {
        const LevelPolicy& policy = recipe_.levels[channel];
        Histogram histogram;
        // One picture's planes are there already.
        for (int i = 0; policy.isMeasured() && i < stacks.pictures(); ++i) {
            throwIfInterrupted();
            histogram.add(stacks.pictures() == 1 ? planes_[channel] : stacks.gray(channel, i));
        }
        channels.push_back(files.inputs[channel].channel);
        channels.back().levels = levelsOf(histogram, policy);
    }
    return channels;
}

QString PictureMaker::make(const PictureFiles& files) {
    QStringList inputs;
    for (const ChannelFile& input : files.inputs)
        inputs << input.file;
    checkOutput(files.output, inputs, recipe_.overwrite);
    const ChannelStacks stacks(files.inputs, recipe_.pages);
    if (stacks.pictures() == 1)
        stacks.planes(0, planes_);
    const std::vector<Channel> channels = channelsWithLevels(files, stacks);
    try {
        writePictures(files.output, stacks.pictures(), [&](int i) -> const cv::Mat& {
            if (stacks.pictures() > 1)
                stacks.planes(i, planes_);
            renderer_.render(planes_, channels, picture_);
            annotate(picture_, channels, recipe_.annotation);
            return picture_;
        });
    } catch (...) {
        planes_.clear();
        throw;
    }
    planes_.clear();
    return sizeText(picture_);
}

void writePictures(const QString& output, int count,
                   const std::function<const cv::Mat&(int)>& draw) {
    QDir().mkpath(QFileInfo(output).path()); // what goes wrong, writing tells
    const auto drawn = [&](int i) -> const cv::Mat& {
        try {
            return draw(i);
        } catch (const cv::Exception&) {
            throw Failure(
                QStringLiteral("%1: cannot be made: %2").arg(shown(output), currentReason()));
        } catch (const std::bad_alloc&) {
            throw Failure(
                QStringLiteral("%1: cannot be made: %2").arg(shown(output), currentReason()));
        }
    };
    if (count == 1) {
        const cv::Mat& picture = drawn(0);
        throwIfInterrupted();
        return writePicture(output, picture);
    }
    if (formatOf(output) != Format::tiff)
        throw Failure(QStringLiteral("%1: a stack of %2 pages is written as .tif or .tiff")
                          .arg(shown(output))
                          .arg(count));
    std::unique_ptr<StackWriter> writer;
    for (int i = 0; i < count; ++i) {
        const cv::Mat& page = drawn(i);
        if (!writer)
            writer = std::make_unique<StackWriter>(output, page.total() * page.elemSize() *
                                                               static_cast<std::size_t>(count));
        throwIfInterrupted();
        writer->add(page);
    }
    throwIfInterrupted();
    writer->commit();
}

} // namespace apps
