// The commands, each in a file of its own.
#pragma once

#include <QGuiApplication>

#include <functional>
#include <memory>

namespace CLI {
class App;
}

namespace apps {

/// What the program can end with.
enum ExitStatus { done = 0, failed = 1, badUsage = 2, nothingMatched = 3 };

/// A command's work, once its arguments are there. Returns its exit status.
using Action = std::function<int()>;

/// Each adds its command with its options and keeps `action` for when it is called.
void addDyesCommand(CLI::App& program, Action& action);
void addInfoCommand(CLI::App& program, Action& action);
void addDyeCommand(CLI::App& program, Action& action);
void addPseudoCommand(CLI::App& program, Action& action);
void addMergeCommand(CLI::App& program, Action& action);
void addLevelsCommand(CLI::App& program, Action& action);
void addBatchCommand(CLI::App& program, Action& action);
void addGalleryCommand(CLI::App& program, Action& action);

/// Text on pictures needs Qt's fonts; null if there is none to draw.
std::unique_ptr<QGuiApplication> fontsFor(bool hasText);

/// Writes text to the standard output.
/// @throws Failure if nobody takes it.
void print(const QString& text);

} // namespace apps
