// Words for the shell.
#pragma once

#include <QString>
#include <QStringList>

namespace lumetra {

/// A word as a POSIX shell takes it for exactly this text, whatever is in it.
QString quotedForShell(const QString& word);

/// A line of words.
QString shellLine(const QStringList& words);

} // namespace lumetra
