#include "apps/common/colour_table.h"

#include "apps/common/failure.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace apps {
namespace {

struct NamedMap {
    const char* name;
    cv::ColormapTypes map;
};

constexpr NamedMap namedMaps[] = {
    {"autumn", cv::COLORMAP_AUTUMN},
    {"bone", cv::COLORMAP_BONE},
    {"cividis", cv::COLORMAP_CIVIDIS},
    {"cool", cv::COLORMAP_COOL},
    {"deepgreen", cv::COLORMAP_DEEPGREEN},
    {"hot", cv::COLORMAP_HOT},
    {"hsv", cv::COLORMAP_HSV},
    {"inferno", cv::COLORMAP_INFERNO},
    {"jet", cv::COLORMAP_JET},
    {"magma", cv::COLORMAP_MAGMA},
    {"ocean", cv::COLORMAP_OCEAN},
    {"parula", cv::COLORMAP_PARULA},
    {"pink", cv::COLORMAP_PINK},
    {"plasma", cv::COLORMAP_PLASMA},
    {"rainbow", cv::COLORMAP_RAINBOW},
    {"spring", cv::COLORMAP_SPRING},
    {"summer", cv::COLORMAP_SUMMER},
    {"turbo", cv::COLORMAP_TURBO},
    {"twilight", cv::COLORMAP_TWILIGHT},
    {"twilight-shifted", cv::COLORMAP_TWILIGHT_SHIFTED},
    {"viridis", cv::COLORMAP_VIRIDIS},
    {"winter", cv::COLORMAP_WINTER},
};

QVector<QColor> grayColours() {
    QVector<QColor> table;
    for (int level = 0; level < tableColours; ++level)
        table << QColor(level, level, level);
    return table;
}

QVector<QColor> mapColours(cv::ColormapTypes map) {
    std::array<unsigned char, tableColours> ramp{};
    std::iota(ramp.begin(), ramp.end(), static_cast<unsigned char>(0));
    cv::Mat shown;
    cv::applyColorMap(cv::Mat(1, tableColours, CV_8UC1, ramp.data()), shown, map);
    QVector<QColor> table;
    for (int i = 0; i < tableColours; ++i) {
        const auto bgr = shown.at<cv::Vec3b>(0, i);
        table << QColor(bgr[2], bgr[1], bgr[0]);
    }
    return table;
}

QVector<QColor> binaryTable(const QByteArray& bytes) {
    const auto at = [&](int i) { return static_cast<unsigned char>(bytes.at(i)); };
    QVector<QColor> table;
    for (int i = 0; i < tableColours; ++i)
        table << QColor(at(i), at(tableColours + i), at(2 * tableColours + i));
    return table;
}

/// Lines of red, green and blue, with or without the number of the line before them; the first line
/// may be a heading. Empty if the text is anything else.
QVector<QColor> textTable(const QByteArray& bytes) {
    static const QRegularExpression line(
        QStringLiteral("^(?:\\d+[\\s,]+)?(\\d{1,3})[\\s,]+(\\d{1,3})[\\s,]+(\\d{1,3})$"));
    const QStringList lines = QString::fromLatin1(bytes).split(QLatin1Char('\n'));
    QVector<QColor> table;
    for (int i = 0; i < static_cast<int>(lines.size()); ++i) {
        const QString text = lines[i].trimmed();
        const auto match = line.match(text);
        const QColor colour(match.captured(1).toInt(), match.captured(2).toInt(),
                            match.captured(3).toInt());
        if (match.hasMatch() && colour.isValid())
            table << colour;
        else if (i > 0 && !text.isEmpty())
            return {};
    }
    return table;
}

QVector<QColor> fileTable(const QString& file) {
    constexpr qint64 longest = 65536; // far more than any table has
    constexpr int header = 32, binary = 3 * tableColours;
    QFile device(file);
    if (!QFileInfo(file).isFile() || !device.open(QIODevice::ReadOnly))
        throw Failure(QStringLiteral("%1: cannot be read as a colour table").arg(shown(file)));
    const QByteArray bytes = device.read(longest);
    if (bytes.size() == binary)
        return binaryTable(bytes);
    if (bytes.size() == header + binary && bytes.startsWith("ICOL"))
        return binaryTable(bytes.mid(header));
    const QVector<QColor> table = textTable(bytes);
    if (table.size() != tableColours)
        throw Failure(QStringLiteral("%1: is no colour table: neither 768 bytes nor 256 lines of "
                                     "red, green and blue")
                          .arg(shown(file)));
    return table;
}

} // namespace

QStringList colourTableNames() {
    QStringList names{QStringLiteral("even"), QStringLiteral("gray")};
    for (const NamedMap& map : namedMaps)
        names << QString::fromLatin1(map.name);
    return names;
}

QVector<QColor> colourTable(const QString& nameOrFile) {
    if (nameOrFile == QLatin1String("even"))
        return evenColours();
    if (nameOrFile == QLatin1String("gray"))
        return grayColours();
    for (const NamedMap& map : namedMaps)
        if (nameOrFile == QLatin1String(map.name))
            return mapColours(map.map);
    if (QFileInfo::exists(nameOrFile))
        return fileTable(nameOrFile);
    throw Failure(QStringLiteral("there is no colour table \"%1\", by name or as a file; the names "
                                 "are %2")
                      .arg(shown(nameOrFile), colourTableNames().join(QStringLiteral(", "))));
}

QVector<QColor> reversedTable(const QVector<QColor>& table) {
    QVector<QColor> reversed = table;
    std::reverse(reversed.begin(), reversed.end());
    return reversed;
}

QVector<QColor> pseudoSlots(const QVector<QColor>& table) {
    constexpr int reached = 255;
    const auto last = static_cast<double>(table.size() - 1);
    QVector<QColor> colourOfSlot;
    for (int i = 0; i < reached; ++i)
        colourOfSlot << table[static_cast<int>(std::lround(i * last / (reached - 1)))];
    return colourOfSlot;
}

} // namespace apps
