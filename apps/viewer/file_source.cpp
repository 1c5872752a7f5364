#include "apps/viewer/file_source.h"

#include "apps/common/error.h"
#include "apps/common/image_size.h"

#include <QCoreApplication>

#include <algorithm>
#include <utility>

namespace lumetra {

FileSource::FileSource(std::vector<ChannelFile> files) : files_(std::move(files)) {
    const ImageFile* first = nullptr;
    stacks_.reserve(files_.size());
    for (std::size_t i = 0; i < files_.size(); ++i) {
        const ImageFile& stack = stacks_.emplace_back(files_[i].file);
        if (!isPaged(i))
            continue;
        if (first && stack.pages() != pages_)
            throw Error(QCoreApplication::translate("FileSource",
                                                    "the stacks have different numbers of "
                                                    "pages: %1 has %2, %3 has %4")
                            .arg(first->file())
                            .arg(pages_)
                            .arg(stack.file())
                            .arg(stack.pages()));
        first = &stack;
        pages_ = stack.pages();
    }
}

bool FileSource::isPaged(std::size_t channel) const {
    return files_[channel].page == 0 && stacks_[channel].pages() > 1;
}

int FileSource::pageOf(std::size_t channel, int page) const {
    return isPaged(channel) ? page : std::max(files_[channel].page, 1);
}

std::vector<ChannelFile> FileSource::filesAt(int page) const {
    std::vector<ChannelFile> files = files_;
    for (std::size_t i = 0; i < files.size(); ++i)
        if (stacks_[i].pages() > 1)
            files[i].page = pageOf(i, page);
    return files;
}

void FileSource::setPage(int page) { wanted_ = std::clamp(page, 1, pages_); }

int FileSource::nextPage() {
    if (const int wanted = wanted_.exchange(0); wanted > 0)
        return wanted;
    if (pages_ == 1)
        return 1;
    if (page_ + direction_ < 1 || page_ + direction_ > pages_)
        direction_ = -direction_;
    return page_ + direction_;
}

void FileSource::grab(Frame& frame) {
    page_ = nextPage();
    frame.page = page_;
    frame.planes.resize(stacks_.size());
    for (std::size_t i = 0; i < stacks_.size(); ++i) {
        frame.planes[i] = stacks_[i].grayPage(pageOf(i, page_));
        requireEqualSizes(files_[0].file, frame.planes[0], files_[i].file, frame.planes[i]);
    }
}

} // namespace lumetra
