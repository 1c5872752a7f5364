// Which outputs would replace what.
#pragma once

#include "imageio/atomic_file.h"

#include <QString>
#include <QStringList>

namespace lumetra {

/// Where a file is: absolute, with the links of its folders followed, though it may not be there.
/// The last name stays as it is.
QString resolvedPath(const QString& file);

/// What all names of one file have in common, whether it is there or not.
QString fileId(const QString& file);

/// @throws FileError if a file that is to be written is also one of those that are read, or is to
///         be written twice. Names that are empty, `-`, a folder, a pipe or a device are passed
///         over.
void checkOutputConflicts(const QStringList& written, const QStringList& read);

/// @throws FileError if an output is also an input, or is there and not a regular file;
///         FileExistsError if it is there and existing files are kept. `-` is always well.
void checkOutput(const QString& output, const QStringList& inputs, Existing existing);

} // namespace lumetra
