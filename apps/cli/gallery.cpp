#include "apps/cli/gallery.h"

#include "apps/cli/channel_levels.h"

#include "apps/common/annotation.h"
#include "apps/common/error.h"
#include "apps/common/text.h"
#include "imageio/output_conflicts.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <utility>

namespace lumetra {
namespace {

const QString thumbnailSuffix = QStringLiteral("_thumbnails");

bool isImage(const QString& file) {
    static const QSet<QString> extensions{"png", "tif", "tiff", "jpg", "jpeg"};
    return extensions.contains(QFileInfo(file).suffix().toLower());
}

/// As `resolvedPath`, which leaves the last name as it is.
QString placeOfFolder(const QString& folder) {
    const QString real = QFileInfo(folder).canonicalFilePath();
    return real.isEmpty() ? resolvedPath(folder) : real;
}

QString tileName(const QString& folder, const QString& file) {
    const QFileInfo info(nameBelow(folder, file));
    const QString name = info.completeBaseName();
    return info.path() == QLatin1String(".") ? name : info.path() + QLatin1Char('/') + name;
}

void collect(const QString& root, const QString& folder, std::vector<Tile>& tiles) {
    const QDir directory(folder);
    if (!directory.isReadable())
        throw Error(QStringLiteral("%1: cannot be read").arg(folder));
    // What is neither file nor folder has a name that is no text in this encoding, or leads
    // nowhere.
    const auto entries = directory.entryInfoList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QFileInfo& entry : entries) {
        const QString path = directory.filePath(entry.fileName());
        if (entry.isDir() && !entry.isSymLink() && !entry.fileName().endsWith(thumbnailSuffix))
            collect(root, path, tiles); // a link could lead back up
        else if (entry.isFile() && isImage(path))
            tiles.push_back({tileName(root, path), path, {}, {}, false});
    }
}

void sortByName(std::vector<Tile>& tiles) {
    std::sort(tiles.begin(), tiles.end(), [](const Tile& a, const Tile& b) {
        return std::pair(a.name.split(QLatin1Char('/')), a.file) <
               std::pair(b.name.split(QLatin1Char('/')), b.file);
    });
}

QString limitsText(const Channel& channel, const QString& method) {
    QString text = QStringLiteral("pixel values as they are");
    if (const QString limits = levelsText(channel); !limits.isEmpty())
        text =
            QStringLiteral("contrast limits %1 to %2")
                .arg(limits.section(QLatin1Char(':'), 0, 0), limits.section(QLatin1Char(':'), 1));
    else if (isMeasuredMethod(method))
        text = QStringLiteral("contrast limits of each image (%1)").arg(method);
    if (channel.gamma != 1)
        text += QStringLiteral(", gamma %1").arg(channel.gamma);
    return channel.visible ? text : text + QStringLiteral(", hidden");
}

/// The channels of an image without the limits that are its own.
std::vector<Channel> withoutMeasuredLevels(const LoggedChannels& logged) {
    std::vector<Channel> channels = logged.channels;
    for (std::size_t i = 0; i < channels.size(); ++i)
        if (isMeasuredMethod(logged.methods.value(static_cast<int>(i))))
            channels[i].levels.reset(), channels[i].valueLimits.reset();
    return channels;
}

bool haveEqualDyes(const std::vector<LegendEntry>& a, const std::vector<LegendEntry>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const LegendEntry& one, const LegendEntry& other) {
                          return one.dye == other.dye && one.colour == other.colour;
                      });
}

} // namespace

std::vector<Tile> findImages(const QString& folder) {
    if (!QFileInfo(folder).isDir())
        throw Error(QStringLiteral("%1: is not a folder").arg(folder));
    std::vector<Tile> tiles;
    collect(folder, folder, tiles);
    sortByName(tiles);
    return tiles;
}

std::vector<Tile> tilesOf(const QString& folder, const QStringList& images) {
    std::vector<Tile> tiles;
    for (const QString& image : images)
        if (QFileInfo(image).isFile())
            tiles.push_back({tileName(folder, image), image, {}, {}, false});
    sortByName(tiles);
    return tiles;
}

QString folderTitle(const QString& folder) {
    return QDir(folder).absolutePath().section(QLatin1Char('/'), -1);
}

bool addLatestEntries(LatestEntries& latest, const QString& log, const QString& folder) {
    const QString above = QDir(placeOfFolder(folder)).filePath(QString());
    bool hasLines = false;
    readLog(log, [&](LoggedImage image) {
        hasLines = true;
        const QString place = resolvedPath(image.output);
        if (place.startsWith(above))
            latest[place] = std::move(image);
    });
    return hasLines;
}

void addLogged(std::vector<Tile>& tiles, const QString& folder, const LatestEntries& log) {
    std::map<QString, std::size_t> tileOfPlace;
    for (std::size_t i = 0; i < tiles.size(); ++i)
        tileOfPlace[resolvedPath(tiles[i].file)] = i;
    for (const auto& [place, image] : log) {
        const auto known = tileOfPlace.find(place);
        if (known != tileOfPlace.end()) {
            tiles[known->second].problem = image.reason;
            continue;
        }
        const bool isThere = QFileInfo(place).isFile(); // in a folder that was not searched
        const QString gone =
            isThere ? QString() : QStringLiteral("was rendered, but the file is missing");
        tiles.push_back({tileName(folder, place),
                         isThere ? place : QString(),
                         {},
                         image.reason.isEmpty() ? gone : image.reason,
                         false});
    }
    sortByName(tiles);
}

std::vector<LegendEntry> legendOf(const std::vector<Channel>& channels,
                                  const QStringList& methods) {
    std::vector<LegendEntry> legend;
    legend.reserve(channels.size());
    for (const Channel& channel : channels) {
        legend.push_back({toQt(channel.name), channelLabel(channel), channel.colour,
                          limitsText(channel, methods.value(static_cast<int>(legend.size())))});
    }
    return legend;
}

std::vector<LegendEntry> commonLegend(const LatestEntries& log) {
    std::vector<LegendEntry> common, commonMethods; // with the limits, and with how they were found
    const LoggedChannels* last = nullptr;
    for (const auto& [place, image] : log) {
        const LoggedChannels& logged = *image.channels;
        if (!image.reason.isEmpty() || logged.channels.empty() || &logged == last)
            continue;
        last = &logged;
        const std::vector<LegendEntry> legend = legendOf(logged.channels, logged.methods);
        const std::vector<LegendEntry> methods =
            legendOf(withoutMeasuredLevels(logged), logged.methods);
        if (common.empty()) {
            common = legend;
            commonMethods = methods;
        }
        if (!haveEqualDyes(common, legend))
            return {};
        for (std::size_t i = 0; i < legend.size(); ++i) {
            if (commonMethods[i].levels != methods[i].levels)
                commonMethods[i].levels = QStringLiteral("contrast limits differ");
            if (common[i].levels != legend[i].levels)
                common[i].levels = commonMethods[i].levels;
            if (common[i].name != legend[i].name)
                common[i].name.clear();
        }
    }
    return common;
}

QString nameBelow(const QString& folder, const QString& file) {
    return QDir(placeOfFolder(folder)).relativeFilePath(resolvedPath(file));
}

QString thumbnailFolder(const QString& page) {
    const QFileInfo info(page);
    return info.dir().filePath(info.completeBaseName() + thumbnailSuffix);
}

} // namespace lumetra
