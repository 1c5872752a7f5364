// Which pages of multi-page files are meant.
#pragma once

#include "render/projection.h"

#include <optional>

namespace lumetra {

/// One page of a file, or all of them, one by one or as one plane.
struct PageSelection {
    int number = 0;   ///< From 1; 0 if none was named, which asks for a file of one page.
    bool all = false; ///< Every page: a stack gives a stack.
    /// All pages as one plane, unless the file names one; not beside the others.
    std::optional<ProjectionMethod> project;
};

} // namespace lumetra
