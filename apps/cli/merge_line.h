// A field of a batch as a command line of its own.
#pragma once

#include "apps/cli/field.h"

namespace lumetra {

/// The `lumetra merge` line that does for a field what the batch does, quoted for a shell.
/// @param builtInDyes  What a command line can name without a file.
QString mergeLine(const Field& field, const RenderSpec& rendering, const BatchOptions& options,
                  const DyeList& builtInDyes);

} // namespace lumetra
