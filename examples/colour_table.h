/// @file
/// A colour table for `Lumetra::Pseudo`.

#ifndef LUMETRA_EXAMPLES_COLOUR_TABLE_H
#define LUMETRA_EXAMPLES_COLOUR_TABLE_H

#include <QColor>
#include <QVector>

/// 256 colours from black over violet, red and orange to a pale yellow.
///
/// Their perceived lightness (L of the OKLab colour space) rises in equal steps, so equal steps of
/// brightness in the picture stay equally visible and no edge appears where the specimen has none.
QVector<QColor> evenColours();

#endif
