// LUTs by name and from files.
#pragma once

#include "render/colour.h"

#include <QString>
#include <QStringList>

namespace lumetra {

/// The names of the LUTs that need no file.
QStringList lutNames();

/// The 256 colours of a LUT by its name, or from an ImageJ `.lut` file: 768 bytes (red, green,
/// blue), the same behind a header of 32, or lines of text with three or four numbers.
/// @throws Error, with all names, for what is neither; for a file that is not a LUT.
Colormap namedLut(const QString& nameOrFile);

} // namespace lumetra
