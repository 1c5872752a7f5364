#include "apps/cli/batch_log.h"

#include "apps/cli/json_line.h"
#include "apps/common/error.h"
#include "apps/common/settings.h"
#include "apps/common/text.h"

#include <QDateTime>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLockFile>

#include <chrono>
#include <string_view>
#include <thread>

namespace lumetra {
namespace {

const QString fieldKey = QStringLiteral("field"), outputKey = QStringLiteral("output"),
              outcomeKey = QStringLiteral("outcome"), reasonKey = QStringLiteral("reason"),
              channelsKey = QStringLiteral("channels"), methodKey = QStringLiteral("method"),
              bytesKey = QStringLiteral("bytes"), timeKey = QStringLiteral("milliseconds"),
              doneOutcome = QStringLiteral("done");

[[noreturn]] void fail(const QFile& file) {
    throw Error(QStringLiteral("%1: %2").arg(file.fileName(), file.errorString()));
}

std::size_t hashOf(const QByteArray& output) {
    return std::hash<std::string_view>()(viewOf(output));
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
    QJsonObject entry = parsedLine(channelJson(channel));
    entry[methodKey] = method;
    return entry;
}

/// None for the line of another version.
LoggedChannels loggedChannels(const QJsonArray& entries, const DyeList& dyes) {
    LoggedChannels logged;
    QJsonArray channels;
    for (const QJsonValue entry : entries) {
        QJsonObject settings = entry.toObject();
        logged.methods << settings.take(methodKey).toString();
        channels << settings;
    }
    try {
        logged.channels = parseSettings(lineOf({{channelsKey, channels}}), dyes).channels;
    } catch (const std::runtime_error&) {
        return {};
    }
    return logged;
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
    char first = '{', last = '\n';
    if (file_.size() > 0 && file_.seek(0) && file_.getChar(&first) && first != '{')
        throw Error(QStringLiteral("%1: is no log, to which lines could be added").arg(file));
    if (resume)
        readEarlier();
    // A run may have been killed while it wrote.
    const OnlyWriter onlyWriter(file_);
    if (file_.size() > 0 && file_.seek(file_.size() - 1) && file_.getChar(&last) && last != '\n')
        file_.write("\n");
}

void BatchLog::readEarlier() {
    earlier_.setFileName(file_.fileName());
    if (!earlier_.open(QIODevice::ReadOnly))
        fail(earlier_);
    for (qint64 at = earlier_.pos(); !earlier_.atEnd(); at = earlier_.pos()) {
        const QByteArray line = earlier_.readLine();
        const std::size_t output = hashOf(textOf(memberOf(viewOf(line), "output")));
        if (textOf(memberOf(viewOf(line), "outcome")) == doneOutcome)
            doneByOutput_[output] = at;
        else // the latest line counts
            doneByOutput_.erase(output);
    }
}

QJsonObject BatchLog::earlierLine(const QString& output) {
    const std::lock_guard lock(mutex_);
    const auto known = doneByOutput_.find(hashOf(output.toUtf8()));
    if (known == doneByOutput_.end() || !earlier_.seek(known->second))
        return {};
    return parsedLine(earlier_.readLine());
}

bool BatchLog::isDone(const QJsonObject& work) {
    const QJsonObject earlier = earlierLine(work[outputKey].toString());
    if (earlier.isEmpty() || causes(earlier) != causes(parsedLine(lineOf(work))))
        return false;
    const QFileInfo output(work[outputKey].toString());
    return output.isFile() && output.size() == static_cast<qint64>(earlier[bytesKey].toDouble(-1));
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

void readLog(const QString& file, const std::function<void(LoggedImage)>& add) {
    const DyeList dyes;
    QFile log(file);
    if (!log.open(QIODevice::ReadOnly))
        fail(log);
    QByteArray textOfChannels;
    std::shared_ptr<const LoggedChannels> channels;
    while (!log.atEnd()) {
        const QJsonObject object = parsedLine(log.readLine());
        if (!object[outputKey].isString() || !object[outcomeKey].isString())
            continue;
        LoggedImage image;
        image.output = object[outputKey].toString();
        if (object[outcomeKey].toString() != doneOutcome)
            image.reason = object[reasonKey].toString(QStringLiteral("failed"));
        const QJsonArray entries = object[channelsKey].toArray();
        const QByteArray text = QJsonDocument(entries).toJson(QJsonDocument::Compact);
        if (!channels || text != textOfChannels) {
            textOfChannels = text;
            channels = std::make_shared<LoggedChannels>(loggedChannels(entries, dyes));
        }
        image.channels = channels;
        add(std::move(image));
    }
}

} // namespace lumetra
