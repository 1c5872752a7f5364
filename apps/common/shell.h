// Words for the shell.
#pragma once

#include <QString>
#include <QStringList>

namespace lumetra {

/// A line of words, each as `quotedForShell` has it.
QString shellLine(const QStringList& words);

} // namespace lumetra
