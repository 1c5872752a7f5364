// Folders of images as instruments leave them.
#pragma once

#include "apps/cli/options.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <cstddef>

namespace lumetra {

/// What the names of the images in a folder tell.
struct InstrumentFolder {
    QString folder;
    QString instrument;
    QString pattern;            ///< Of all images, the folder included.
    std::size_t images = 0;     ///< Those that match.
    std::size_t others = 0;     ///< Those that do not.
    std::size_t fields = 0;     ///< Z-slices and points in time of one place counted once.
    QStringList channels, z, t; ///< What stands for them in names, in their order; may be empty.
};

/// Knows the instrument by the names of the images in a folder and below it; small images for
/// browsing (`_thumb`) are left out.
/// @throws Error if there are no images, or the names are of no instrument that is known, or of
///         several; it says what a pattern looks like.
InstrumentFolder recognisedFolder(const QString& folder);

/// What it is, in one line.
QString text(const InstrumentFolder& folder);

QJsonObject toJson(const InstrumentFolder& folder);

/// Where a folder stands in the place of a pattern, puts the pattern there, and prints what the
/// folder holds, unless the user wants quiet.
/// @throws Error as `recognisedFolder`; UsageError if files are listed as well.
void usePatternOfFolder(DataSetOptions& options, bool isQuiet);

} // namespace lumetra
