// A gallery as a page that a browser shows.
#pragma once

#include "apps/cli/gallery.h"
#include "apps/cli/options.h"

#include <QByteArray>

namespace lumetra {

/// The HTML of a gallery. It needs no server and nothing from elsewhere; images and thumbnails
/// are named as they lie beside it, and loaded as they come into view.
/// @param page  Where it will be.
QByteArray galleryPage(const Gallery& gallery, const QString& page);

/// Tells which images are broken.
/// @return The program's exit status.
int printBroken(const Gallery& gallery);

/// Writes the page, and tells what it shows, images that are broken each.
/// @param output  The page.
/// @return The program's exit status.
int writePage(const Gallery& gallery, const OutputOptions& output);

} // namespace lumetra
