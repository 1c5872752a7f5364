#include "apps/lumetra/gallery.h"

#include "apps/common/failure.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <map>

namespace apps {
namespace {

const QString thumbnailSuffix = QStringLiteral("_thumbnails");

bool isPicture(const QString& file) {
    static const QSet<QString> extensions{"png", "tif", "tiff", "jpg", "jpeg"};
    return extensions.contains(QFileInfo(file).suffix().toLower());
}

QString absolute(const QString& file) {
    return QDir::cleanPath(QFileInfo(file).absoluteFilePath());
}

QString tileName(const QString& folder, const QString& file) {
    const QFileInfo info(nameBelow(folder, file));
    const QString name = info.completeBaseName();
    return info.path() == QLatin1String(".") ? name : info.path() + QLatin1Char('/') + name;
}

void collect(const QString& root, const QString& folder, std::vector<Tile>& tiles) {
    const QDir directory(folder);
    if (!directory.isReadable())
        throw Failure(QStringLiteral("%1: cannot be read").arg(shown(folder)));
    const auto entries = directory.entryInfoList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QFileInfo& entry : entries) {
        const QString path = directory.filePath(entry.fileName());
        if (entry.isDir() && !entry.isSymLink() && !entry.fileName().endsWith(thumbnailSuffix))
            collect(root, path, tiles); // a link could lead back up
        else if (entry.isFile() && isPicture(path))
            tiles.push_back({tileName(root, path), path, {}, {}, false});
    }
}

void sortByName(std::vector<Tile>& tiles) {
    std::stable_sort(tiles.begin(), tiles.end(), [](const Tile& a, const Tile& b) {
        return a.name.split(QLatin1Char('/')) < b.name.split(QLatin1Char('/'));
    });
}

QString levelsText(const Channel& channel, const QString& method) {
    QString text = QStringLiteral("samples as they are");
    if (channel.levels)
        text = QStringLiteral("levels %1 to %2").arg(channel.levels->low).arg(channel.levels->high);
    else if (!method.isEmpty() && method != QLatin1String("none"))
        text = QStringLiteral("levels of each picture (%1)").arg(method);
    if (channel.gamma != 1)
        text += QStringLiteral(", gamma %1").arg(channel.gamma);
    return channel.visible ? text : text + QStringLiteral(", hidden");
}

bool haveEqualChannels(const std::vector<LegendEntry>& a, const std::vector<LegendEntry>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const LegendEntry& one, const LegendEntry& other) {
                          return one.name == other.name && one.colour == other.colour;
                      });
}

} // namespace

std::vector<Tile> findPictures(const QString& folder) {
    if (!QFileInfo(folder).isDir())
        throw Failure(QStringLiteral("%1: is no folder").arg(shown(folder)));
    std::vector<Tile> tiles;
    collect(folder, folder, tiles);
    sortByName(tiles);
    return tiles;
}

void addLogged(std::vector<Tile>& tiles, const QString& folder,
               const std::vector<LoggedPicture>& log) {
    std::map<QString, std::size_t> tileOfFile;
    for (std::size_t i = 0; i < tiles.size(); ++i)
        tileOfFile[absolute(tiles[i].file)] = i;
    std::map<QString, QString> reasonOfFile; // the last word on each
    for (const LoggedPicture& picture : log)
        reasonOfFile[absolute(picture.output)] = picture.reason;

    const QString above = absolute(folder) + QLatin1Char('/');
    for (const auto& [file, reason] : reasonOfFile) {
        const auto there = tileOfFile.find(file);
        if (there != tileOfFile.end())
            tiles[there->second].problem = reason;
        else if (file.startsWith(above))
            tiles.push_back(
                {tileName(folder, file),
                 {},
                 {},
                 reason.isEmpty() ? QStringLiteral("was made, and is not there any more") : reason,
                 false});
    }
    sortByName(tiles);
}

std::vector<LegendEntry> legendOf(const std::vector<Channel>& channels,
                                  const QStringList& methods) {
    std::vector<LegendEntry> legend;
    for (const Channel& channel : channels) {
        const QString dye = channel.dye.isEmpty() ? channel.colour.name() : channel.dye;
        const QString name =
            channel.name.isEmpty() ? dye : QStringLiteral("%1: %2").arg(channel.name, dye);
        legend.push_back({name, channel.colour,
                          levelsText(channel, methods.value(static_cast<int>(legend.size())))});
    }
    return legend;
}

std::vector<LegendEntry> commonLegend(const std::vector<LoggedPicture>& log) {
    std::vector<LegendEntry> common;
    for (const LoggedPicture& picture : log) {
        if (!picture.reason.isEmpty() || picture.channels.empty())
            continue;
        const std::vector<LegendEntry> legend = legendOf(picture.channels, picture.methods);
        if (common.empty())
            common = legend;
        if (!haveEqualChannels(common, legend))
            return {};
        for (std::size_t i = 0; i < legend.size(); ++i)
            if (common[i].levels != legend[i].levels)
                common[i].levels = QStringLiteral("levels differ");
    }
    return common;
}

QString nameBelow(const QString& folder, const QString& file) {
    return QDir(absolute(folder)).relativeFilePath(absolute(file));
}

QString thumbnailFolder(const QString& page) {
    const QFileInfo info(page);
    return info.dir().filePath(info.completeBaseName() + thumbnailSuffix);
}

} // namespace apps
