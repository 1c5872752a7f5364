// Being asked to stop.
#pragma once

#include <QString>

#include <exception>
#include <utility>

namespace lumetra {

/// Thrown where work is given up because the user wants it to end.
struct Interrupted : std::exception {
    explicit Interrupted(QString report = {}) : howFar(std::move(report)) {}

    QString howFar; ///< How far the work has come, for the user; may be empty.
};

/// From now on the first SIGINT or SIGTERM is remembered (Windows: Ctrl+C, or the console that is
/// closed) and a second one ends the program; a reader that goes away is an error of writing.
void catchSignals();

/// The signal that came; 0 if there was none.
int caughtSignal();

/// @throws Interrupted once a signal has come.
void throwIfInterrupted();

} // namespace lumetra
