// How much of the machine the viewer takes.
#pragma once

#include "apps/viewer/window.h"

namespace apps {

/// Runs the simulated camera in a window for so many seconds, then tells frames, milliseconds and
/// memory on the standard output and ends the program.
/// @param framesPerSecond  0 for as many as there can be.
void measureAndQuit(Window& window, double seconds, double framesPerSecond);

} // namespace apps
