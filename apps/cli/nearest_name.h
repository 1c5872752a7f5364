// Names that a user may have meant.
#pragma once

#include <QString>
#include <QStringList>

namespace lumetra {

/// The name that is nearest to what was written, whatever its case; empty if none is near, that is
/// if more than a third of its letters would have to change.
QString nearestName(const QString& written, const QStringList& names);

} // namespace lumetra
