// STK files: many planes behind one directory.
#pragma once

#include "imageio/file_description.h"
#include "imageio/tiff_directory.h"

#include <optional>

namespace lumetra {

/// What the private tags of an STK file say: 33629, and 33628 of the pixel size.
struct StkPlanes {
    int count = 1;
    /// They are z-slices; else they are time points.
    bool areSlices = true;
    /// The sides of a pixel in µm, where tag 33628 tells them.
    std::optional<double> pixelSizeX{}, pixelSizeY{};
};

/// Nothing if the directory has no such tag.
/// @throws Reason if the file does not hold what the tag claims.
std::optional<StkPlanes> stkPlanes(TiffDirectory& directory);

FileDescription describeStk(const StkPlanes& planes);

} // namespace lumetra
