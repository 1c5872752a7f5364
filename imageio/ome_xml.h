// What OME-XML in a TIFF file says of its planes.
#pragma once

#include "imageio/file_description.h"

#include <QByteArray>
#include <QString>

namespace lumetra {

/// What a TIFF file itself has.
struct FileForm {
    QString name; ///< Without its folder.
    int pages = 1;
    int components = 1; ///< Values of a pixel of the first page; of colours red, green and blue.
    bool isRgb = false; ///< The first page has colours.
};

/// Whether a description of a first page is OME-XML.
bool isOmeXml(const QByteArray& text);

/// Reads the first image of OME-XML: DimensionOrder, SizeC, SizeZ, SizeT, the channels' names,
/// colours and wavelengths, the sides of a pixel, and where the planes are (TiffData). Files named
/// beside this one are taken by their name alone, without a folder.
/// @throws Reason if it is not well-formed, or contradicts itself or the file.
FileDescription describeOme(const QByteArray& xml, const FileForm& file);

} // namespace lumetra
