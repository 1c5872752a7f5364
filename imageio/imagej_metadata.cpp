#include "imageio/imagej_metadata.h"

#include "imageio/length_unit.h"
#include "imageio/reason.h"

#include <QMap>

#include <algorithm>

namespace lumetra {
namespace {

QMap<QByteArray, QByteArray> fieldsOf(const QByteArray& description) {
    QMap<QByteArray, QByteArray> fields;
    for (const QByteArray& line : description.split('\n')) {
        const auto equals = line.indexOf('=');
        if (equals > 0)
            fields[line.left(equals).trimmed()] = line.mid(equals + 1).trimmed();
    }
    return fields;
}

int countOf(const QMap<QByteArray, QByteArray>& fields, const char* name) {
    if (!fields.contains(name))
        return 1;
    bool isNumber = false;
    const int count = fields[name].toInt(&isNumber);
    if (!isNumber || count < 1)
        throw Reason(QStringLiteral("%1=%2 is not understood")
                         .arg(QLatin1String(name), QString::fromUtf8(fields[name])));
    return count;
}

/// ImageJ escapes the micro sign; others write it as it is.
QString unitOf(const QByteArray& field) {
    QString unit = QString::fromUtf8(field);
    if (unit.contains(QChar::ReplacementCharacter))
        unit = QString::fromLatin1(field);
    return unit.replace(QLatin1String("\\u00B5"), QStringLiteral("\u00B5"), Qt::CaseInsensitive);
}

/// The blocks that ImageJ keeps of one kind.
/// @param kind  Four letters.
std::vector<QByteArray> blocksOf(const ImageJTags& tags, const char* kind) {
    if (tags.byteCounts.empty())
        return {};
    // The first block lists the kinds: a mark, then for each its letters and how many follow.
    const QByteArray head = tags.bytes.left(static_cast<int>(
        std::min<std::size_t>(tags.byteCounts[0], static_cast<std::size_t>(tags.bytes.size()))));
    const auto letters = [&](int at) {
        QByteArray word = head.mid(at, 4);
        if (!tags.isBigEndian)
            std::reverse(word.begin(), word.end());
        return word;
    };
    const auto count = [&](int at) {
        const QByteArray word = letters(at);
        std::uint32_t value = 0;
        for (const char byte : word)
            value = value << 8 | static_cast<std::uint8_t>(byte);
        return value;
    };
    if (letters(0) != "IJIJ")
        return {};
    std::vector<QByteArray> found;
    std::size_t block = 1;
    std::size_t offset = tags.byteCounts[0];
    const auto size = static_cast<std::size_t>(tags.bytes.size());
    for (int at = 4; at + 8 <= head.size(); at += 8) {
        const bool isWanted = letters(at) == kind;
        for (std::uint32_t left = count(at + 4); left > 0; --left, ++block) {
            if (block >= tags.byteCounts.size() || offset > size ||
                tags.byteCounts[block] > size - offset)
                return found;
            if (isWanted)
                found.push_back(tags.bytes.mid(static_cast<int>(offset),
                                               static_cast<int>(tags.byteCounts[block])));
            offset += tags.byteCounts[block];
        }
    }
    return found;
}

/// 256 reds, greens and blues.
std::vector<std::uint32_t> lutOf(const QByteArray& block) {
    constexpr int values = 256;
    std::vector<std::uint32_t> lut;
    if (block.size() < 3 * values)
        return lut;
    const auto byte = [&](int at) {
        return static_cast<std::uint32_t>(static_cast<std::uint8_t>(block[at]));
    };
    for (int i = 0; i < values; ++i)
        lut.push_back(byte(i) << 16 | byte(values + i) << 8 | byte(2 * values + i));
    return lut;
}

QString labelOf(const QByteArray& block, bool isBigEndian) {
    QString label;
    for (int at = 0; at + 2 <= block.size(); at += 2) {
        const auto first = static_cast<std::uint8_t>(block[at]);
        const auto second = static_cast<std::uint8_t>(block[at + 1]);
        label +=
            QChar(static_cast<char16_t>(isBigEndian ? first << 8 | second : second << 8 | first));
    }
    return label;
}

/// A label is the name of a channel where all planes of the channel, and no others, bear it.
void nameChannels(const ImageJTags& tags, FileDescription& description) {
    const std::vector<QByteArray> labels = blocksOf(tags, "labl");
    const auto channels = description.metadata.channels.size();
    if (channels < 2 || labels.size() != description.planes.size())
        return;
    for (std::size_t i = channels; i < labels.size(); ++i)
        if (labels[i] != labels[i % channels])
            return;
    for (std::size_t c = 0; c < channels; ++c)
        description.metadata.channels[c].name = labelOf(labels[c], tags.isBigEndian);
}

} // namespace

bool isImageJ(const QByteArray& description) { return description.startsWith("ImageJ="); }

int imagesOfImageJ(const QByteArray& description) {
    return isImageJ(description) ? fieldsOf(description).value("images").toInt() : 0;
}

FileDescription describeImageJ(const QByteArray& description, int pages, double xResolution,
                               double yResolution, const ImageJTags& tags) {
    const auto fields = fieldsOf(description);
    FileDescription result;
    Axes& axes = result.axes;
    axes = {countOf(fields, "channels"), countOf(fields, "slices"), countOf(fields, "frames")};
    const bool isCounted =
        fields.contains("channels") || fields.contains("slices") || fields.contains("frames");
    if (!isCounted)
        axes.slices = pages;
    if (axes.channels > pages || axes.slices > pages / axes.channels ||
        axes.channels * axes.slices * std::int64_t{axes.frames} != pages)
        throw Reason(QStringLiteral("it tells of %1 channels, %2 slices and %3 frames, and the "
                                    "file has %4 pages")
                         .arg(axes.channels)
                         .arg(axes.slices)
                         .arg(axes.frames)
                         .arg(pages));
    for (int page = 0; page < pages; ++page)
        result.planes.push_back({page, PlaneAddress::whole, 0});

    FileMetadata& metadata = result.metadata;
    metadata.axesKnown = isCounted;
    metadata.source = QStringLiteral("ImageJ");
    metadata.channels.resize(static_cast<std::size_t>(axes.channels));
    const QString unit = unitOf(fields.value("unit"));
    metadata.pixelSizeX = xResolution > 0 ? micrometres(1 / xResolution, unit) : std::nullopt;
    metadata.pixelSizeY = yResolution > 0 ? micrometres(1 / yResolution, unit) : std::nullopt;
    metadata.sliceDistance = micrometres(fields.value("spacing").toDouble(), unit);
    // Where ImageJ shows gray, its LUTs are not what anybody looks at.
    if (fields.value("mode") != "grayscale") {
        const std::vector<QByteArray> luts = blocksOf(tags, "luts");
        for (std::size_t c = 0; c < std::min(luts.size(), metadata.channels.size()); ++c) {
            metadata.channels[c].lut = lutOf(luts[c]);
            if (!metadata.channels[c].lut.empty())
                metadata.channels[c].colour = metadata.channels[c].lut.back();
        }
    }
    nameChannels(tags, result);
    return result;
}

} // namespace lumetra
