// Z-slices that have files of their own.
#pragma once

#include "apps/common/channel_spec.h"

namespace lumetra {

/// The placeholder of z-slices in patterns.
inline QString slicePlaceholder() { return QStringLiteral("z"); }

/// Where a file is named with the placeholder {z}, `cells_z{z}.tif`, and there is no file of that
/// very name: finds the files that it stands for, in the natural order of their z.
/// @throws UsageError for another placeholder that has a name; Error if there is no such file.
void findSliceFiles(InputFile& input);

} // namespace lumetra
