// What a gallery shows.
#pragma once

#include "apps/common/channel.h"
#include "apps/lumetra/batch_log.h"

#include <QString>
#include <QStringList>

#include <map>
#include <vector>

namespace apps {

/// One picture, or the place of one that is missing.
struct Tile {
    QString name;          ///< Of the picture below its folder, without extension.
    QString file;          ///< Empty if there is no picture.
    QString thumbnail;     ///< Its small picture; empty if there is none.
    QString problem;       ///< Why it is not what it should be; may be empty.
    bool isBroken = false; ///< Whether the file that is there cannot be read.
};

/// A channel of all pictures, in words.
struct LegendEntry {
    QString name; ///< Of the channel; may be empty.
    QString dye;  ///< Or its colour, where that is all that is known.
    QColor colour;
    QString levels;
};

/// All that a page shows.
struct Gallery {
    QString title;
    std::vector<Tile> tiles; ///< In the order of their names.
    std::vector<LegendEntry> legend;
    QString measured;    ///< How the levels were found, in words; may be empty.
    bool isList = false; ///< Whether pictures stand one after another though names hold wells.
};

/// The pictures in a folder and in those below it, but for hidden ones and for the folders of
/// thumbnails of galleries.
/// @throws Failure if it cannot be read.
std::vector<Tile> findPictures(const QString& folder);

/// The last word of logs on each picture below a folder, by its place (`placeOf`).
using LastWords = std::map<QString, LoggedPicture>;
LastWords lastWords(const std::vector<LoggedPicture>& log, const QString& folder);

/// Adds what logs say: reasons of failures, and pictures that are not there.
void addLogged(std::vector<Tile>& tiles, const QString& folder, const LastWords& log);

/// What channels stand for.
/// @param methods  How the levels were found of channels that have none; may be empty.
std::vector<LegendEntry> legendOf(const std::vector<Channel>& channels, const QStringList& methods);

/// What is common to all pictures that logs have as done; empty if they do not have the same
/// channels.
std::vector<LegendEntry> commonLegend(const LastWords& log);

/// The name of a file as seen from a folder.
QString nameBelow(const QString& folder, const QString& file);

/// The folder of a page's thumbnails, which lies beside it.
QString thumbnailFolder(const QString& page);

} // namespace apps
