// What the commands print.
#pragma once

#include "render/channel.h"

#include <QString>

#include <vector>

namespace lumetra {

struct OutputOptions;

/// To be called before any work for an image.
/// @param compression  What `--compression` asks for; empty if it was not given.
/// @throws FileError if images are not written in the format of this name; UsageError if they are
///         not compressed as the user asks for, or would be written onto a terminal.
void checkImageOutput(const QString& output, const QString& compression);

/// Writes text to the standard output.
/// @throws Error if nobody takes it.
void print(const QString& text);
void print(const QByteArray& text);

/// Prints the name and the size of an image to the standard error output, unless the user wants
/// quiet or the image itself went to the standard output.
void reportImage(const OutputOptions& output, const QString& size);

/// Prints the contrast limits of channels to the standard error output, unless the user wants
/// quiet: `levels: 1 DAPI 415:4466, 2 FITC 532:1823`. Channels without limits are left out.
void reportLevels(const OutputOptions& output, const std::vector<Channel>& channels);

/// `currentExceptionText`, and how to go on where an output exists already.
QString currentErrorText();

} // namespace lumetra
