// Files that are looked at like a camera.
#pragma once

#include "apps/common/channel.h"
#include "apps/common/stack.h"
#include "apps/viewer/frame_source.h"

#include <QSize>

#include <atomic>

namespace apps {

/// Gives the pages of files, one file for each channel.
///
/// The pages of files for which a page was named, and of those that have but one, stay; the others
/// are turned together.
class StackSource : public FrameSource {
public:
    /// @throws Failure if a file cannot be read.
    explicit StackSource(std::vector<ChannelFile> files);

    /// The pages that can be turned; 1 where all of them stay.
    int pages() const { return pages_; }

    /// What was opened.
    const std::vector<ChannelFile>& files() const { return files_; }

    /// The files with the page that each of them shows, named where there are several.
    std::vector<ChannelFile> filesAt(int page) const;

    /// Chooses the page that comes next, counted from 1. From any thread.
    void seek(int page);

    /// Gives the page that was chosen, or the one after that of the last time; at either end the
    /// direction turns.
    /// @throws Failure with the file's name, or both names for unlike sizes.
    void grab(Frame& frame) override;

private:
    int pageOf(std::size_t channel, int page) const;
    int nextPage();

    std::vector<ChannelFile> files_;
    std::vector<Stack> stacks_;
    int pages_ = 1;
    int page_ = 0, direction_ = 1;
    std::atomic<int> wanted_{1}; ///< 0 if none was chosen.
};

} // namespace apps
