// STK files: many planes behind one directory.
#pragma once

#include "imageio/file_description.h"
#include "imageio/tiff_directory.h"

#include <optional>

namespace lumetra {

/// What the private tag 33629 of an STK file says.
struct StkPlanes {
    int count = 1;
    /// They are z-slices; else they are time points.
    bool areSlices = true;
};

/// Nothing if the directory has no such tag.
/// @throws Reason if the file does not hold what the tag claims.
std::optional<StkPlanes> stkPlanes(TiffDirectory& directory);

FileDescription describeStk(const StkPlanes& planes);

} // namespace lumetra
