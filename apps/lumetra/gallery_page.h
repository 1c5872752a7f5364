// A gallery as a page that a browser shows.
#pragma once

#include "apps/lumetra/gallery.h"

#include <QByteArray>

namespace apps {

/// The HTML of a gallery. It needs no server and nothing from elsewhere; pictures and thumbnails
/// are named as they lie beside it, and loaded as they come into view.
/// @param page  Where it will be.
QByteArray galleryPage(const Gallery& gallery, const QString& page);

} // namespace apps
