// The language of the command line: every command with its arguments and options.
#pragma once

#include <functional>

namespace lumetra {

/// Understands a command line.
/// @return What it asks for, help and version included: call it for the work and the exit status.
/// @throws UsageError for what is not understood.
std::function<int()> parseCommandLine(int argc, const char* const* argv);

} // namespace lumetra
