// The lines that a program without a window says to its user.
#pragma once

#include <QString>

namespace apps {

/// Leaves the standard error output to the program. OpenCV, the libraries below it and Qt would
/// write to it at will, partly past every handler that they offer; from now on what they write
/// goes nowhere. To be called first of all, while there is one thread.
void silenceLibraries();

/// Whether what is told appears on a terminal.
bool isToldToTerminal();

/// Writes text to the user's standard error output, at once and whole, from any thread.
void tell(const QString& text);

} // namespace apps
