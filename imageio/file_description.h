// Where in an image file the planes are.
#pragma once

#include "imageio/file_metadata.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumetra {

/// Where a plane is.
struct PlaneAddress {
    static constexpr int nowhere = -1; ///< A page: the file has no such plane.
    static constexpr int whole = -1;   ///< A component: all of a page, which has to be gray.
    std::int32_t page = nowhere;       ///< From 0.
    std::int16_t component = whole; ///< From 0: which of the values that a pixel of the page has.
    std::int16_t file = 0; ///< 0 is the file itself, 1 the first of FileDescription::others.
};

/// What a file says of its planes, and where they are.
struct FileDescription {
    Axes axes;
    FileMetadata metadata;
    std::vector<PlaneAddress> planes; ///< By time, within it by z, within it by channel.
    std::vector<QString> others;      ///< Names of other files, without a folder, that hold planes.

    /// @param channel,slice,frame  From 0.
    std::size_t indexOf(int channel, int slice, int frame) const {
        const auto at = [](int i) { return static_cast<std::size_t>(i); };
        return (at(frame) * at(axes.slices) + at(slice)) * at(axes.channels) + at(channel);
    }
};

/// The most planes that a file can have.
constexpr std::int64_t mostPlanes = 2'000'000;

} // namespace lumetra
