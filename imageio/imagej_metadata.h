// What ImageJ says of the planes of a TIFF file.
#pragma once

#include "imageio/file_description.h"

#include <QByteArray>

#include <vector>

namespace lumetra {

/// Whether a description of a first page is ImageJ's.
bool isImageJ(const QByteArray& description);

/// How many images a description tells of; 0 if none.
int imagesOfImageJ(const QByteArray& description);

/// The two tags in which ImageJ keeps LUTs and labels; empty where the file has none.
struct ImageJTags {
    std::vector<std::uint32_t> byteCounts; ///< Tag 50838.
    QByteArray bytes;                      ///< Tag 50839.
    bool isBigEndian = false;
};

/// Reads `channels=`, `slices=`, `frames=` (channels follow one another fastest, then slices), the
/// unit of pixels, and the LUTs and names of channels.
/// @param pages         How many images the file really has.
/// @param xResolution,yResolution  Pixels per unit; 0 if not told.
/// @throws Reason if the numbers contradict each other or the file.
FileDescription describeImageJ(const QByteArray& description, int pages, double xResolution,
                               double yResolution, const ImageJTags& tags);

} // namespace lumetra
