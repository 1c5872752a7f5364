// Which pages of multi-page files are meant.
#pragma once

namespace lumetra {

/// One page of a file, or all of them.
struct PageSelection {
    int number = 0;   ///< From 1; 0 if none was named, which asks for a file of one page.
    bool all = false; ///< Every page: a stack gives a stack.
};

} // namespace lumetra
