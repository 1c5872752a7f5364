#include "apps/cli/batch_log.h"

#include "apps/common/error.h"
#include "apps/common/settings.h"
#include "apps/common/text.h"

#include <QDateTime>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLockFile>

#include <chrono>
#include <thread>

namespace lumetra {
namespace {

const QString fieldKey = QStringLiteral("field"), outputKey = QStringLiteral("output"),
              outcomeKey = QStringLiteral("outcome"), reasonKey = QStringLiteral("reason"),
              channelsKey = QStringLiteral("channels"), methodKey = QStringLiteral("method"),
              bytesKey = QStringLiteral("bytes"), timeKey = QStringLiteral("milliseconds"),
              doneOutcome = QStringLiteral("done");

QJsonObject parsed(const QByteArray& json) { return QJsonDocument::fromJson(json).object(); }

QByteArray lineOf(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

[[noreturn]] void fail(const QFile& file) {
    throw Error(QStringLiteral("%1: %2").arg(file.fileName(), file.errorString()));
}

QList<QByteArray> linesOf(const QString& name) {
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        fail(file);
    return file.readAll().split('\n');
}

/// Keeps others from a file, on systems and network disks that append no line in one piece. Where
/// no lock can be had beside it, the line is written all the same.
class OnlyWriter {
public:
    explicit OnlyWriter(const QFile& file) : lock_(file.fileName() + QStringLiteral(".lock")) {
        if (!QFileInfo(file).isFile()) // a pipe or a device
            return;
        constexpr int patience = 60000, period = 5; // milliseconds
        for (int waited = 0; waited < patience && !lock_.tryLock(0); waited += period) {
            if (lock_.error() != QLockFile::LockFailedError)
                return;
            std::this_thread::sleep_for(std::chrono::milliseconds(period));
        }
    }

private:
    QLockFile lock_;
};

QJsonObject channelEntry(const Channel& channel, const QString& method) {
    QJsonObject entry = parsed(channelJson(channel));
    entry[methodKey] = method;
    return entry;
}

/// What of a line decides on the bytes of the image. A single merge knows no names of fields and
/// channels; contrast limits follow from the method and the inputs.
QJsonObject causes(QJsonObject line) {
    for (const QString& key : {fieldKey, outcomeKey, bytesKey, timeKey})
        line.remove(key);
    QJsonArray channels;
    for (const QJsonValue channel : line[channelsKey].toArray()) {
        QJsonObject settings = channel.toObject();
        for (const char* key : {"name", "bits", "levels", "range"})
            settings.remove(QLatin1String(key));
        channels << settings;
    }
    line[channelsKey] = channels;
    return line;
}

} // namespace

BatchLog::BatchLog(const QString& file, bool resume) {
    if (file.isEmpty())
        return;
    file_.setFileName(file);
    if (!file_.open(QIODevice::ReadWrite | QIODevice::Append | QIODevice::Unbuffered))
        fail(file_);
    if (resume)
        for (const QByteArray& line : linesOf(file)) {
            const QJsonObject object = parsed(line);
            if (object[outcomeKey].toString() == doneOutcome)
                doneByOutput_[object[outputKey].toString()] = object;
            else // the latest line counts
                doneByOutput_.remove(object[outputKey].toString());
        }
    // A run may have been killed while it wrote.
    const OnlyWriter onlyWriter(file_);
    char last = '\n';
    if (file_.size() > 0 && file_.seek(file_.size() - 1) && file_.getChar(&last) && last != '\n')
        file_.write("\n");
}

bool BatchLog::isDone(const QJsonObject& work) const {
    const QJsonObject earlier = doneByOutput_.value(work[outputKey].toString());
    const QFileInfo output(work[outputKey].toString());
    const auto bytes = static_cast<qint64>(earlier[bytesKey].toDouble(-1));
    return output.isFile() && output.size() == bytes &&
           causes(earlier) == causes(parsed(lineOf(work)));
}

void BatchLog::add(const QJsonObject& line) {
    const std::lock_guard lock(mutex_);
    if (!file_.isOpen())
        return;
    const QByteArray bytes = lineOf(line);
    const OnlyWriter onlyWriter(file_);
    file_.seek(file_.size()); // others have written meanwhile
    if (file_.write(bytes) != bytes.size())
        fail(file_);
}

void BatchLog::addDone(QJsonObject work, qint64 milliseconds) {
    work[bytesKey] = static_cast<double>(QFileInfo(work[outputKey].toString()).size());
    work[outcomeKey] = doneOutcome;
    work[timeKey] = static_cast<double>(milliseconds);
    add(work);
}

void BatchLog::addFailed(QJsonObject work, qint64 milliseconds, const QString& reason) {
    work[outcomeKey] = QStringLiteral("failed");
    work[reasonKey] = reason;
    work[timeKey] = static_cast<double>(milliseconds);
    add(work);
}

bool isMeasuredMethod(const QString& method) {
    return method == QLatin1String("auto") || method.startsWith(QLatin1String("clip:"));
}

QJsonObject workOf(const Field& field, const RenderSpec& rendering) {
    QJsonArray inputs, channels;
    for (std::size_t i = 0; i < field.job.inputs.size(); ++i) {
        for (const QString& file : inputNames(field.job.inputs[i])) {
            const QFileInfo info(file);
            inputs << QJsonObject{
                {"file", file},
                {"bytes", static_cast<double>(info.size())},
                {"modified", static_cast<double>(info.lastModified().toMSecsSinceEpoch())}};
        }
        channels << channelEntry(rendering.channels[i].channelWithKnownLevels(),
                                 toQt(rendering.channels[i].levels.text()));
    }
    QJsonObject options{{"page", rendering.pages.number},
                        {"all pages", rendering.pages.all},
                        {"legend", rendering.annotation.legend}};
    if (rendering.pages.project)
        options["project"] = toQt(projectionText(*rendering.pages.project));
    if (const auto& crop = rendering.framing.crop)
        options["crop"] = QJsonArray{crop->x, crop->y, crop->width, crop->height};
    if (const auto& size = rendering.framing.size)
        options["resize"] = QJsonArray{size->width, size->height, size->percent};
    if (rendering.panels)
        options["panels"] = rendering.panels == PanelColours::gray ? "gray" : "colour";
    if (const auto& bar = rendering.annotation.scaleBar)
        options["scale bar"] = QJsonArray{bar->micrometres, bar->pixelSize};
    if (rendering.compression != TiffCompression::lzw)
        options["compression"] = tiffCompressionName(rendering.compression);
    return {{fieldKey, field.name},  {"inputs", inputs},   {outputKey, field.job.output},
            {channelsKey, channels}, {"options", options}, {"version", LUMETRA_VERSION}};
}

QJsonObject withLevels(QJsonObject work, const std::vector<Channel>& channels) {
    const QJsonArray before = work[channelsKey].toArray();
    QJsonArray after;
    for (const Channel& channel : channels)
        after << channelEntry(channel, before[after.size()].toObject()[methodKey].toString());
    work[channelsKey] = after;
    return work;
}

std::vector<LoggedImage> readLog(const QString& file) {
    std::vector<LoggedImage> images;
    const DyeList dyes;
    for (const QByteArray& line : linesOf(file)) {
        const QJsonObject object = parsed(line);
        if (!object[outputKey].isString() || !object[outcomeKey].isString())
            continue;
        LoggedImage image;
        image.output = object[outputKey].toString();
        if (object[outcomeKey].toString() != doneOutcome)
            image.reason = object[reasonKey].toString(QStringLiteral("failed"));
        QJsonArray channels;
        for (const QJsonValue channel : object[channelsKey].toArray()) {
            QJsonObject settings = channel.toObject();
            image.methods << settings.take(methodKey).toString();
            channels << settings;
        }
        try {
            const QByteArray json = QJsonDocument(QJsonObject{{channelsKey, channels}}).toJson();
            image.channels = parseSettings(json, dyes).channels;
        } catch (const std::runtime_error&) {
            image.methods.clear(); // the line of another version; what became of it still holds
        }
        images.push_back(std::move(image));
    }
    return images;
}

} // namespace lumetra
