// Contrast limits that all images of a data set share.
#pragma once

#include "apps/cli/channel_levels.h"
#include "apps/cli/field.h"
#include "apps/cli/progress.h"

#include <vector>

namespace lumetra {

/// What was measured over a data set.
struct DataSetLevels {
    std::vector<ChannelValues> channels;
    int files = 0; ///< How many were measured.
};

/// Counts the pixel values of all fields that have no problem, `jobs` fields at once; where they
/// are neither 8- nor 16-bit unsigned, in a second pass within the range that the first one found.
/// A field that cannot be read gets a problem, and does not count.
/// @throws Error if the files of a channel have values of unlike types; Interrupted.
DataSetLevels measureLevels(const FieldSet& fields, FieldProblems& problems,
                            const PageSelection& pages, int jobs, Progress& progress);

} // namespace lumetra
