// What a gallery shows.
#pragma once

#include "apps/cli/batch_log.h"
#include "apps/common/channel_spec.h"

#include <QString>
#include <QStringList>

#include <map>
#include <vector>

namespace lumetra {

/// One image, or the place of one that is missing.
struct Tile {
    QString name;          ///< Of the image below its folder, without extension.
    QString file;          ///< Empty if there is no image.
    QString thumbnail;     ///< A small image of it; empty if there is none.
    QString problem;       ///< Why it is not what it should be; may be empty.
    bool isBroken = false; ///< Whether the file that is there cannot be read.
};

/// A channel of all images, in words.
struct LegendEntry {
    QString name; ///< Of the channel; may be empty.
    QString dye;  ///< Or its colour, where that is all that is known.
    Colour colour;
    QString levels;
};

/// All that a page shows.
struct Gallery {
    QString title;
    std::vector<Tile> tiles; ///< In the order of their names.
    std::vector<LegendEntry> legend;
    QString measured;    ///< How the contrast limits were found, in words; may be empty.
    bool isList = false; ///< Whether images stand in a plain list though names hold wells.
};

/// The images in a folder and in those below it, but for hidden ones and for the folders of
/// thumbnails of galleries.
/// @throws Error if it cannot be read.
std::vector<Tile> findImages(const QString& folder);

/// The tiles of those images that are there.
std::vector<Tile> tilesOf(const QString& folder, const QStringList& images);

/// What a page of a folder is called.
QString folderTitle(const QString& folder);

/// The latest entry of logs for each image below a folder, by its place (`resolvedPath`).
using LatestEntries = std::map<QString, LoggedImage>;

/// Adds the lines of a log to them.
/// @return Whether there were any, though of images elsewhere.
bool addLatestEntries(LatestEntries& latest, const QString& log, const QString& folder);

/// Adds what logs say: reasons of failures, and images that are missing.
void addLogged(std::vector<Tile>& tiles, const QString& folder, const LatestEntries& log);

/// What channels stand for.
/// @param methods  How the contrast limits were found of channels that have none; may be empty.
std::vector<LegendEntry> legendOf(const std::vector<Channel>& channels, const QStringList& methods);

/// What is common to all images that logs have as done; empty if they do not have the same
/// channels.
std::vector<LegendEntry> commonLegend(const LatestEntries& log);

/// The name of a file as seen from a folder.
QString nameBelow(const QString& folder, const QString& file);

/// The folder of a page's thumbnails, which lies beside it.
QString thumbnailFolder(const QString& page);

} // namespace lumetra
