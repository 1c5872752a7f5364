#include "apps/cli/channel_files.h"

#include "apps/cli/signals.h"
#include "apps/common/channel_spec.h"
#include "apps/common/error.h"
#include "apps/common/image_size.h"

#include <algorithm>

namespace lumetra {

ChannelFiles::ChannelFiles(const std::vector<InputFile>& inputs, const PageSelection& pages) {
    for (const InputFile& input : inputs) {
        files_.emplace_back(input.file);
        const ImageFile& file = files_.back();
        const int wanted = input.page > 0 ? input.page : pages.number;
        if (pages.all && wanted > 0)
            throw UsageError(QStringLiteral("%1: names a page, which --all-pages does not allow")
                                 .arg(fileSpec(input)));
        if (!pages.all && wanted == 0 && file.pages() > 1)
            throw Error(QStringLiteral("%1: has %2 pages; choose one with --page, or --all-pages")
                            .arg(input.file)
                            .arg(file.pages()));
        if (pages.all && file.pages() != files_.front().pages())
            throw Error(QStringLiteral("the files have different numbers of pages: %1 has %2, "
                                       "%3 has %4")
                            .arg(files_.front().file())
                            .arg(files_.front().pages())
                            .arg(input.file)
                            .arg(file.pages()));
        firstPages_.push_back(std::max(wanted, 1));
    }
    if (pages.all)
        images_ = files_.front().pages();
}

cv::Mat ChannelFiles::gray(std::size_t channel, int i) const {
    return files_[channel].grayPage(pageOf(channel, i));
}

cv::Mat ChannelFiles::any(std::size_t channel, int i) const {
    return files_[channel].page(pageOf(channel, i));
}

void ChannelFiles::planes(int i, std::vector<cv::Mat>& planes) const {
    planes.resize(files_.size());
    for (cv::Mat& plane : planes)
        plane.release(); // before others are read
    for (std::size_t channel = 0; channel < files_.size(); ++channel) {
        throwIfInterrupted();
        planes[channel] = gray(channel, i);
        requireEqualSizes(files_[0].file(), planes[0], files_[channel].file(), planes[channel]);
    }
}

} // namespace lumetra
