// The formats that images are written in.
#pragma once

#include <QString>

#include <optional>

namespace lumetra {

enum class OutputFormat { png, tiff, jpeg };

/// The format that a file's extension asks for, in any case: .png, .tif, .tiff, .jpg, .jpeg; PNG
/// for `-`, the standard output.
/// @throws FileError for any other extension.
OutputFormat outputFormat(const QString& file);

/// How the pixels of TIFF files are compressed: not at all, or as differences by one of these.
enum class TiffCompression { none, lzw, deflate, zstd };

/// `none`, `lzw`, `deflate`, `zstd`.
QString tiffCompressionName(TiffCompression compression);

/// The compression of this name, if there is one.
std::optional<TiffCompression> tiffCompressionNamed(const QString& name);

/// Whether the name stands for the standard output: `-`.
bool isStandardOutput(const QString& file);

} // namespace lumetra
