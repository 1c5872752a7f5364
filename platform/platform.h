// What differs between operating systems.
#pragma once

#include <QString>
#include <QStringList>

#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace lumetra {

/// Prepares a program of the command line, first of all: names of files and messages are UTF-8
/// whatever the user's language, the standard output takes bytes as they are, and memory of images
/// is kept for the next ones.
void prepareCommand();

/// Prepares a program with windows: what it prints goes to the terminal that it was called from.
void prepareWindows();

/// The words of the command line in UTF-8, its name first. Where no shell has done it, `*` and `?`
/// in names stand for the files that are there, in the order of their names.
std::vector<std::string> commandLine(int argc, char** argv);

/// Calls a function with SIGINT or SIGTERM, once, when the user or the system asks the program to
/// end; the next time it ends. Beside that, a reader that goes away is an error of writing. The
/// function may be called in the midst of anything, or by another thread.
void onStopRequest(void (*remember)(int signal));

bool isTerminal(std::FILE* stream);

/// No byte of what is written becomes another one, and none is added.
void writeBinary(std::FILE* stream);

/// A name as the standard library takes it.
std::filesystem::path toPath(const QString& file);

/// Gives a file another name, in place of a file that has it; in one step.
std::error_code replaceFile(const std::filesystem::path& from, const std::filesystem::path& to);

/// The last part of a path; nothing if it is no text.
std::optional<QString> nameOf(const std::filesystem::path& path);

/// What all names of a file that is there have in common, hard links included; nothing if it is not
/// there.
std::optional<QString> identityOf(const QString& file);

/// Names that are equal by this are those of one file.
QString comparableName(const QString& file);

/// What the system says where there is no more room: of a disk first, then of a user's share of it.
QStringList fullDiskReasons();

/// A word as the user's shell takes it for exactly this text: any POSIX shell; on Windows cmd, and
/// PowerShell unless `$` or a backtick are in it.
QString quotedForShell(const QString& word);

} // namespace lumetra
