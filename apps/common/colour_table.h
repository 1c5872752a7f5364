// Tables of colours for pictures in pseudo-colour.
#pragma once

#include <QColor>
#include <QString>
#include <QStringList>
#include <QVector>

namespace apps {

/// Colours in a table.
constexpr int tableColours = 256;

/// 256 colours from black over violet, red and orange to a pale yellow.
///
/// Their perceived lightness (L of the OKLab colour space) rises in equal steps, so equal steps of
/// brightness in the picture stay equally visible and no edge appears where the specimen has none.
QVector<QColor> evenColours();

/// The tables that have a name: "even", "gray", and those of OpenCV ("viridis", "magma", ...).
QStringList colourTableNames();

/// The 256 colours of a table by its name, or from an ImageJ `.lut` file: 768 bytes (red, green,
/// blue), the same behind a header of 32, or lines of text with three or four numbers.
/// @throws Failure, with all names, for what is neither; for a file that is no table.
QVector<QColor> colourTable(const QString& nameOrFile);

/// The table from its end.
QVector<QColor> reversedTable(const QVector<QColor>& table);

/// The 255 colours for `Lumetra::Pseudo`, which reaches so many slots, from first to last of a
/// table.
QVector<QColor> pseudoSlots(const QVector<QColor>& table);

} // namespace apps
