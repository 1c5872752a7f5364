#include "apps/viewer/stack_source.h"

#include <algorithm>
#include <utility>

namespace apps {

StackSource::StackSource(std::vector<ChannelFile> files) : files_(std::move(files)) {
    for (const ChannelFile& file : files_) {
        stacks_.emplace_back(file.file);
        if (file.page == 0)
            pages_ = std::max(pages_, stacks_.back().pages());
    }
}

int StackSource::pageOf(std::size_t channel, int page) const {
    const int named = files_[channel].page;
    return named > 0 ? named : std::min(page, stacks_[channel].pages());
}

std::vector<ChannelFile> StackSource::filesAt(int page) const {
    std::vector<ChannelFile> files = files_;
    for (std::size_t i = 0; i < files.size(); ++i)
        if (stacks_[i].pages() > 1)
            files[i].page = pageOf(i, page);
    return files;
}

void StackSource::seek(int page) { wanted_ = std::clamp(page, 1, pages_); }

int StackSource::nextPage() {
    if (const int wanted = wanted_.exchange(0); wanted > 0)
        return wanted;
    if (pages_ == 1)
        return 1;
    if (page_ + direction_ < 1 || page_ + direction_ > pages_)
        direction_ = -direction_;
    return page_ + direction_;
}

void StackSource::grab(Frame& frame) {
    page_ = nextPage();
    frame.page = page_;
    frame.planes.resize(stacks_.size());
    for (std::size_t i = 0; i < stacks_.size(); ++i) {
        frame.planes[i] = stacks_[i].grayPage(pageOf(i, page_));
        requireEqualSizes(files_[0].file, frame.planes[0], files_[i].file, frame.planes[i]);
    }
}

} // namespace apps
