// lumetra info: what image files hold.

#include "apps/cli/commands.h"
#include "apps/cli/instrument_folder.h"
#include "apps/cli/options.h"
#include "apps/cli/print.h"
#include "apps/cli/signals.h"
#include "apps/common/channel_spec.h"
#include "apps/common/error.h"
#include "apps/common/messages.h"
#include "imageio/file_error.h"
#include "imageio/image_file.h"
#include "imageio/value_conversion.h"
#include "render/histogram.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <algorithm>
#include <optional>

namespace lumetra {
namespace {

constexpr double percents[] = {0.1, 1, 50, 99, 99.9};

/// What a file holds, over all its planes.
struct FileInfo {
    QString file;
    int pages = 0;
    Axes axes;
    FileMetadata metadata;
    cv::Size size; ///< Of the last.
    int type = 0;
    bool sizesDiffer = false;
    std::optional<ValueType> valueType;
    /// The limits of the histogram, where its values had to be brought onto its scale.
    std::optional<FiniteRange> range;
    Histogram histogram;
};

/// Calls `act` with each plane of a file, or with each page that has colours.
template<class Act>
void forEachPlane(const ImageFile& file, int first, int last, const Act& act) {
    for (int number = first; number <= last; ++number) {
        throwIfInterrupted();
        const int components = file.components(number);
        if (components > 1) {
            for (int component = 1; component <= components; ++component)
                act(file.planeOfPage(number, component), number);
            continue;
        }
        cv::Mat image;
        try {
            image = file.planeOfPage(number);
        } catch (const FileError&) { // it has colours, or is damaged
            image = file.page(number);
        }
        act(image, number);
    }
}

FileInfo measure(const QString& text) {
    const ChannelFile named = parseFile(text);
    const ImageFile file(named.file);
    FileInfo info;
    info.file = text;
    info.pages = file.pages();
    info.axes = file.axes();
    info.metadata = file.metadata();
    info.valueType = file.valueType(std::min(std::max(named.page, 1), info.pages));
    const int first = named.page > 0 ? named.page : 1;
    const int last = named.page > 0 ? named.page : file.pages();
    bool isFirst = true;
    const auto requireSameDepth = [&](bool isSame, int number) {
        if (!isSame)
            throw Error(
                QStringLiteral("%1: page %2 has a different bit depth than the pages before it")
                    .arg(text)
                    .arg(number));
    };
    forEachPlane(file, first, last, [&](const cv::Mat& plane, int number) {
        info.sizesDiffer |= !isFirst && plane.size() != info.size;
        requireSameDepth(isFirst || CV_MAT_DEPTH(info.type) == plane.depth(), number);
        isFirst = false;
        info.size = plane.size();
        info.type = plane.type();
        if (needsConversion(plane)) {
            if (!info.range)
                info.range.emplace();
            info.range->add(finiteRange(plane));
        } else {
            info.histogram.add(plane.reshape(1));
        }
    });
    if (info.range) // their histogram needs their range first
        forEachPlane(file, first, last, [&](const cv::Mat& plane, int) {
            info.histogram.add(toDisplay16(plane, info.range->low, info.range->high));
        });
    return info;
}

/// The value that a step of the histogram stands for.
double valueOf(const FileInfo& info, int step) {
    return info.range ? fromDisplay16(step, info.range->low, info.range->high) : step;
}

/// As many as the matrix has, but for types that it has to hold in wider ones.
int bitsOf(const FileInfo& info) {
    return info.range && info.valueType ? info.valueType->bits
                                        : static_cast<int>(CV_ELEM_SIZE1(info.type)) * 8;
}

QString kindOf(const FileInfo& info) {
    if (CV_MAT_CN(info.type) > 1)
        return QStringLiteral("RGB");
    if (!info.range || !info.valueType || info.valueType->kind == ValueType::unsignedInteger)
        return QStringLiteral("gray");
    return info.valueType->kind == ValueType::floatingPoint ? QStringLiteral("gray, float")
                                                            : QStringLiteral("gray, signed");
}

/// "unsigned", "signed" or "float".
QString valuesOf(const FileInfo& info) {
    return info.valueType ? info.valueType->text().section(QLatin1Char(' '), 1)
                          : QStringLiteral("unsigned");
}

QString colourText(std::uint32_t colour) {
    return QStringLiteral("#%1").arg(colour, 6, 16, QLatin1Char('0'));
}

/// What the file says of its axes: "2 channels x 8 z x 3 t, 0.325 µm per pixel".
QString axesText(const FileInfo& info) {
    QStringList parts;
    const Axes& axes = info.axes;
    if (info.metadata.axesKnown || axes.channels > 1)
        parts << QStringLiteral("%1 channel%2 x %3 z x %4 t")
                     .arg(axes.channels)
                     .arg(axes.channels == 1 ? QString() : QStringLiteral("s"))
                     .arg(axes.slices)
                     .arg(axes.frames);
    if (const auto x = info.metadata.pixelSizeX, y = info.metadata.pixelSizeY; x && y && *x != *y)
        parts << QStringLiteral("%1 x %2 \u00B5m per pixel").arg(*x).arg(*y);
    else if (x || y)
        parts << QStringLiteral("%1 \u00B5m per pixel").arg(x ? *x : *y);
    return parts.join(QStringLiteral(", "));
}

/// "DAPI #0000ff, excitation 358 nm, emission 461 nm"; empty if the file says nothing.
QString channelText(const ChannelMetadata& channel) {
    QStringList parts;
    QStringList start;
    if (!channel.name.isEmpty())
        start << escaped(channel.name);
    if (channel.colour)
        start << colourText(*channel.colour);
    if (!start.isEmpty())
        parts << start.join(QLatin1Char(' '));
    if (!channel.lut.empty())
        parts << QStringLiteral("LUT");
    if (channel.excitation)
        parts << QStringLiteral("excitation %1 nm").arg(*channel.excitation);
    if (channel.emission)
        parts << QStringLiteral("emission %1 nm").arg(*channel.emission);
    return parts.join(QStringLiteral(", "));
}

QString lines(const FileInfo& info) {
    const ContrastLimits range = info.histogram.range();
    QString text =
        QStringLiteral("%1: %2 page%3 of %4%5 x %6 pixels, %7 bits, %8, pixel values %9 to %10")
            .arg(escaped(info.file))
            .arg(info.pages)
            .arg(info.pages == 1 ? QString() : QStringLiteral("s"))
            .arg(info.sizesDiffer ? QStringLiteral("various sizes, the last ") : QString())
            .arg(info.size.width)
            .arg(info.size.height)
            .arg(bitsOf(info))
            .arg(kindOf(info))
            .arg(valueOf(info, range.low))
            .arg(valueOf(info, range.high));
    for (const double percent : percents)
        text += QStringLiteral(", %1 % up to %2")
                    .arg(percent)
                    .arg(valueOf(info, info.histogram.percentile(percent)));
    if (info.range && info.range->notFinite > 0)
        text += QStringLiteral(", %1 infinite or not a number").arg(info.range->notFinite);
    text += QLatin1Char('\n');
    if (const QString axes = axesText(info); !axes.isEmpty())
        text += QStringLiteral("  %1\n").arg(axes);
    for (std::size_t i = 0; i < info.metadata.channels.size(); ++i)
        if (const QString channel = channelText(info.metadata.channels[i]); !channel.isEmpty())
            text += QStringLiteral("  channel %1: %2\n").arg(i + 1).arg(channel);
    return text;
}

QJsonObject toJson(const ChannelMetadata& channel) {
    QJsonObject json;
    if (!channel.name.isEmpty())
        json["name"] = channel.name;
    if (channel.colour)
        json["colour"] = colourText(*channel.colour);
    if (channel.excitation)
        json["excitation"] = *channel.excitation;
    if (channel.emission)
        json["emission"] = *channel.emission;
    QJsonArray lut;
    for (const std::uint32_t colour : channel.lut)
        lut << colourText(colour);
    if (!lut.isEmpty())
        json["lut"] = lut;
    return json;
}

QJsonObject toJson(const FileInfo& info) {
    const ContrastLimits range = info.histogram.range();
    const FileMetadata& metadata = info.metadata;
    QJsonObject percentiles;
    for (const double percent : percents)
        percentiles[QString::number(percent)] = valueOf(info, info.histogram.percentile(percent));
    QJsonObject json{{"file", info.file},
                     {"pages", info.pages},
                     {"width", info.size.width},
                     {"height", info.size.height},
                     {"bits", bitsOf(info)},
                     {"channels", CV_MAT_CN(info.type)},
                     {"range", QJsonArray{valueOf(info, range.low), valueOf(info, range.high)}},
                     {"percentiles", percentiles},
                     {"values", valuesOf(info)},
                     {"axes", QJsonObject{{"known", metadata.axesKnown},
                                          {"channels", info.axes.channels},
                                          {"slices", info.axes.slices},
                                          {"frames", info.axes.frames}}}};
    if (!metadata.source.isEmpty())
        json["metadata"] = metadata.source;
    if (metadata.pixelSizeX)
        json["pixelSizeX"] = *metadata.pixelSizeX;
    if (metadata.pixelSizeY)
        json["pixelSizeY"] = *metadata.pixelSizeY;
    if (metadata.sliceDistance)
        json["sliceDistance"] = *metadata.sliceDistance;
    if (info.range)
        json["notFinite"] = static_cast<qint64>(info.range->notFinite);
    QJsonArray channels;
    for (const ChannelMetadata& channel : metadata.channels)
        channels << toJson(channel);
    json["channelMetadata"] = channels;
    QJsonArray warnings;
    for (const QString& warning : metadata.warnings)
        warnings << warning;
    json["warnings"] = warnings;
    return json;
}

/// What is printed of a file, or of the images in a folder.
template<class Info>
void show(const Info& info, const QString& line, bool isJson, QJsonArray& list) {
    if (isJson)
        list << toJson(info);
    else
        print(line);
}

} // namespace

int runInfo(const InfoOptions& options) {
    QJsonArray list;
    int status = done;
    for (const QString& file : options.files) {
        try {
            if (QFileInfo(file).isDir()) {
                const InstrumentFolder folder = recognisedFolder(file);
                show(folder, text(folder) + QLatin1Char('\n'), options.json, list);
            } else {
                const FileInfo info = measure(file);
                for (const QString& warning : info.metadata.warnings)
                    printError(QStringLiteral("%1: %2").arg(file, warning));
                show(info, lines(info), options.json, list);
            }
        } catch (const Interrupted&) {
            throw;
        } catch (...) {
            printError(currentExceptionText());
            status = failed;
        }
    }
    if (options.json)
        print(QString::fromUtf8(QJsonDocument(list).toJson()));
    return status;
}

} // namespace lumetra
