// The lines that a program without a window prints for its user.
#pragma once

#include <QString>

namespace lumetra {

/// Lets the libraries below print nothing on the standard error output, which belongs to the
/// program, but for the reason why one of them ends it. To be called first of all.
void silenceLibraries();

/// Whether messages appear on a terminal.
bool printsToTerminal();

/// Whether the standard output is a terminal.
bool writesToTerminal();

/// Prints `lumetra: MESSAGE` as one line on the standard error output, at once and whole, from any
/// thread. Control characters in it, which names of files may hold, become escapes.
void printError(const QString& message);

/// Prints text as it is in the place of such a line.
void printStatus(const QString& text);

} // namespace lumetra
