// One field of a data set: rendered, and logged.
#pragma once

#include "apps/cli/batch_log.h"
#include "apps/cli/file_renderer.h"

namespace lumetra {

/// Renders a field and logs what became of it.
/// @param work  The field's `workOf`.
/// @throws Error, if only because the field has a problem, once that is logged; Interrupted and
///         FileExistsError, which are not: nothing was tried.
RenderedFile renderField(const Field& field, const QJsonObject& work, FileRenderer& renderer,
                         BatchLog& log);

} // namespace lumetra
