// Why an image cannot be rendered.
#pragma once

#include "render/export.h"

#include <stdexcept>

namespace lumetra {

/// What was asked for makes no sense or cannot be had: `what()` tells a user why, in UTF-8. Names
/// that the caller gave stand in it as they are, control characters included.
struct LUMETRA_RENDER_EXPORT RenderError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace lumetra
