// What the commands print.
#pragma once

#include <QString>

namespace lumetra {

struct OutputOptions;

/// Writes text to the standard output.
/// @throws Error if nobody takes it.
void print(const QString& text);

/// Prints the name and the size of an image to the standard error output, unless the user wants
/// quiet or the image itself went to the standard output.
void reportImage(const OutputOptions& output, const QString& size);

/// `currentExceptionText`, and how to go on where an output exists already.
QString currentErrorText();

} // namespace lumetra
