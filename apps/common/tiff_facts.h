// What OpenCV keeps silent about when it reads TIFF files.
#pragma once

#include <QString>

namespace apps {

/// Whether a file begins as TIFF files do.
bool isTiff(const QString& file);

/// The number of pages of a TIFF file of gray or colour samples of 8 or 16 bits.
///
/// OpenCV reads a file that was cut short as one of fewer pages, the planes of an ImageJ stack
/// behind one directory as one page, two samples a pixel as one, and takes white for black where
/// zero is white.
/// @throws Failure with the file's name for all of these, and for other samples.
int checkedTiffPages(const QString& file);

} // namespace apps
