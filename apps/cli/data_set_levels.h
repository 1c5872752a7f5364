// Contrast limits that all images of a data set share.
#pragma once

#include "apps/cli/data_set.h"
#include "apps/cli/progress.h"
#include "render/histogram.h"

#include <vector>

namespace lumetra {

/// What was measured over a data set.
struct DataSetLevels {
    std::vector<Histogram> histograms; ///< One for each channel.
    int files = 0;                     ///< How many were measured.
};

/// Counts the pixel values of all fields that have no problem, `jobs` fields at once. A field that
/// cannot be read gets a problem, and does not count.
/// @throws Error if the files of a channel have unlike bit depths; Interrupted.
DataSetLevels measureLevels(std::vector<Field>& fields, const PageSelection& pages, int jobs,
                            Progress& progress);

} // namespace lumetra
