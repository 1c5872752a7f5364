// libtiff on a file that Qt has opened.
#pragma once

#include <QFile>

#include <cstdint>
#include <memory>

#include <tiffio.h>

namespace lumetra {

struct TiffCloser {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffHandle = std::unique_ptr<TIFF, TiffCloser>;

/// Opens a TIFF file that keeps quiet: libtiff tells of failures by its results alone.
/// @param file        Open; it has to outlive the handle, which leaves it open.
/// @param mode        As libtiff's: "r", "w", "w8".
/// @param mostMemory  The most bytes that libtiff may take at once; 0 for any number.
/// @return Null if it cannot be opened.
TiffHandle openTiff(QFile& file, const char* mode, std::uint64_t mostMemory = 0);

} // namespace lumetra
