// Levels that all pictures of a data set share.
#pragma once

#include "apps/lumetra/data_set.h"
#include "apps/lumetra/picture_maker.h"
#include "apps/lumetra/progress.h"

#include <vector>

namespace apps {

/// What was measured over a data set.
struct DataSetLevels {
    std::vector<Histogram> histograms; ///< One for each channel.
    int files = 0;                     ///< How many were measured.
};

/// Counts the samples of all fields that have no problem, `jobs` fields at once. A field that
/// cannot be read gets a problem, and does not count.
/// @throws Failure if the files of a channel have unlike depths; Interrupted.
DataSetLevels measureLevels(std::vector<Field>& fields, const Pages& pages, int jobs,
                            Progress& progress);

} // namespace apps
