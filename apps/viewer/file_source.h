// Image files that are shown like a camera.
#pragma once

#include "apps/common/channel_spec.h"
#include "apps/viewer/frame_source.h"
#include "imageio/image_file.h"

#include <atomic>

namespace lumetra {

/// Gives the pages of image files, one file for each channel.
///
/// Files of several pages are paged together. Those with one page, or for which a page was named,
/// stay as they are.
class FileSource : public FrameSource {
public:
    /// @throws Error if a file cannot be read, or if files of several pages have different
    ///         numbers of them.
    explicit FileSource(std::vector<ChannelFile> files);

    /// How many pages there are to choose from; 1 where all files stay as they are.
    int pages() const { return pages_; }

    /// What was opened.
    const std::vector<ChannelFile>& files() const { return files_; }

    /// The files with the page that each of them shows, named where there are several.
    std::vector<ChannelFile> filesAt(int page) const;

    /// Chooses the page that comes next, counted from 1. From any thread.
    void setPage(int page);

    /// Gives the page that was chosen, or the one after that of the last time; at either end the
    /// direction turns.
    /// @throws Error with the file's name, or both names for different sizes.
    void grab(Frame& frame) override;

private:
    bool isPaged(std::size_t channel) const;
    int pageOf(std::size_t channel, int page) const;
    int nextPage();

    std::vector<ChannelFile> files_;
    std::vector<ImageFile> stacks_;
    int pages_ = 1;
    int page_ = 0, direction_ = 1;
    std::atomic<int> wanted_{1}; ///< 0 if none was chosen.
};

} // namespace lumetra
