// The formats that images are written in.
#pragma once

#include <QString>

namespace lumetra {

enum class OutputFormat { png, tiff, jpeg };

/// The format that a file's extension asks for, in any case: .png, .tif, .tiff, .jpg, .jpeg; PNG
/// for `-`, the standard output.
/// @throws FileError for any other extension.
OutputFormat outputFormat(const QString& file);

/// Whether the name stands for the standard output: `-`.
bool isStandardOutput(const QString& file);

} // namespace lumetra
