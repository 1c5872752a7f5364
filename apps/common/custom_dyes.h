// Files of a user's own dyes.
#pragma once

#include "render/dyes.h"

#include <QColor>
#include <QMap>
#include <QString>

#include <vector>

namespace lumetra {

/// Colours by the names of dyes, as the library has them.
using CustomDyes = QMap<QString, QColor>;

/// Reads an INI file of custom dyes, as the library writes it.
/// @throws Error if it cannot be read, holds no dyes, or a colour that cannot be understood.
CustomDyes readCustomDyes(const QString& file);

/// Writes custom dyes as the library does. The file is replaced whole or not at all.
/// @throws Error, FileError with the file's name.
void writeCustomDyes(const CustomDyes& dyes, const QString& file);

/// The dyes as a list has them; nothing is known of their wavelengths.
std::vector<Dye> asDyes(const CustomDyes& custom);

} // namespace lumetra
