// What goes wrong with image files.
#pragma once

#include <QString>

#include <stdexcept>

namespace lumetra {

/// Why a file cannot be read or written: what() is "FILE: reason" in UTF-8, with the file's name
/// as it was given, control characters included.
struct FileError : std::runtime_error {
    FileError(const QString& file, const QString& reason);
};

/// An output that must not be replaced is there already.
struct FileExistsError : FileError {
    explicit FileExistsError(const QString& file);
};

} // namespace lumetra
