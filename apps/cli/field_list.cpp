#include "apps/cli/field_list.h"

#include "apps/cli/json_line.h"
#include "apps/common/error.h"
#include "apps/common/settings.h"
#include "apps/common/text.h"
#include "imageio/atomic_file.h"
#include "imageio/file_error.h"

#include <QJsonArray>

#include <algorithm>

namespace lumetra {
namespace {

const QString listedFieldsKey = QStringLiteral("fields"),
              listedChannelsKey = QStringLiteral("channels"),
              listedImagesKey = QStringLiteral("images"),
              listedProjectedKey = QStringLiteral("projected"),
              listedNumberKey = QStringLiteral("number"), listedFieldKey = QStringLiteral("field"),
              listedInputsKey = QStringLiteral("inputs"),
              listedOutputKey = QStringLiteral("output"),
              listedProblemKey = QStringLiteral("problem"), listedFileKey = QStringLiteral("file"),
              listedChannelKey = QStringLiteral("channel"),
              listedSlicesKey = QStringLiteral("slices");

/// A channel without contrast limits and the like, which are the batch's.
QJsonObject listedChannel(const Channel& channel) {
    const QJsonObject all = parsedLine(channelJson(channel));
    QJsonObject entry;
    for (const char* key : {"name", "dye", "colour", "offset"})
        if (all.contains(QLatin1String(key)))
            entry[QLatin1String(key)] = all[QLatin1String(key)];
    return entry;
}

/// A file, as plain text where that is all there is to say; null where there is none.
QJsonValue listedInput(const InputFile& input) {
    if (input.file.isEmpty())
        return {};
    QJsonObject entry{{listedFileKey, input.file}};
    if (input.channels.isNamed())
        entry[listedChannelKey] = input.channels.first;
    if (!input.sliceFiles.isEmpty())
        entry[listedSlicesKey] = QJsonArray::fromStringList(input.sliceFiles);
    return entry.size() == 1 ? QJsonValue(input.file) : entry;
}

InputFile inputListed(const QJsonValue& entry) {
    InputFile input;
    if (entry.isString()) {
        input.file = entry.toString();
        return input;
    }
    const QJsonObject object = entry.toObject();
    input.file = object[listedFileKey].toString();
    const int channel = object[listedChannelKey].toInt();
    input.channels = {channel, channel};
    for (const QJsonValue slice : object[listedSlicesKey].toArray())
        input.sliceFiles << slice.toString();
    return input;
}

} // namespace

void writeFieldList(QIODevice& device, const FieldListHeader& header, const FieldSet& fields) {
    const auto write = [&](const QJsonObject& object) {
        const QByteArray line = lineOf(object);
        if (!writeAll(device, line.constData(), line.size()))
            throw Error(device.errorString());
    };
    QJsonArray entries;
    for (const Channel& channel : header.channels)
        entries << listedChannel(channel);
    write({{listedFieldsKey, static_cast<double>(header.fields)},
           {listedChannelsKey, entries},
           {listedImagesKey, header.images},
           {listedProjectedKey, header.isProjected},
           {"version", LUMETRA_VERSION}});
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const Field field = fields[i];
        QJsonArray inputs;
        for (const InputFile& input : field.job.inputs)
            inputs << listedInput(input);
        QJsonObject line{{listedNumberKey, static_cast<double>(i + 1)},
                         {listedFieldKey, field.name},
                         {listedInputsKey, inputs},
                         {listedOutputKey, field.job.output}};
        if (!field.problem.isEmpty())
            line[listedProblemKey] = field.problem;
        write(line);
    }
}

FieldList::FieldList(const QString& file) : file_(file) {
    if (!file_.open(QIODevice::ReadOnly))
        fail(file_.errorString());
    if (file_.isSequential())
        fail(QStringLiteral("is not a regular file, in which a part can be found by its place"));
    const QByteArray line = file_.readLine();
    begin_ = file_.pos();
    const QJsonObject header = parsedLine(line);
    if (!line.endsWith('\n') || !header[listedFieldsKey].isDouble() ||
        !header[listedChannelsKey].isArray())
        fail(QStringLiteral("is no list of fields as 'lumetra list' writes it"));
    header_.fields = static_cast<std::size_t>(std::max(header[listedFieldsKey].toDouble(), 0.0));
    header_.images = header[listedImagesKey].toString();
    header_.isProjected = header[listedProjectedKey].toBool();
    try {
        header_.channels =
            parseSettings(lineOf({{listedChannelsKey, header[listedChannelsKey]}}), DyeList())
                .channels;
    } catch (const Error& error) {
        fail(error.text());
    }
    for (std::size_t i = 0; i < header_.channels.size(); ++i)
        order_.push_back(i);
}

void FieldList::fail(const QString& reason) const {
    throw Error(QStringLiteral("%1: %2").arg(file_.fileName(), reason));
}

void FieldList::useChannels(const std::vector<Channel>& channels) {
    QStringList listed, wanted;
    for (const Channel& channel : header_.channels)
        listed << toQt(channel.name);
    order_.clear();
    for (const Channel& channel : channels) {
        wanted << toQt(channel.name);
        order_.push_back(static_cast<std::size_t>(listed.indexOf(wanted.back())));
    }
    const QString all = listed.join(QStringLiteral(", "));
    std::sort(listed.begin(), listed.end());
    std::sort(wanted.begin(), wanted.end());
    if (wanted != listed)
        throw UsageError(QStringLiteral("%1 has the channels %2: give each of them, and no other")
                             .arg(file_.fileName(), all));
}

QByteArray FieldList::readAt(qint64 offset, qint64 count) const {
    const std::lock_guard lock(mutex_);
    if (!file_.seek(offset))
        fail(file_.errorString());
    QByteArray bytes = file_.read(count);
    if (file_.error() != QFileDevice::NoError)
        fail(file_.errorString());
    return bytes;
}

/// Where the first line begins that does so there or later; the end of the file if there is none.
qint64 FieldList::lineFrom(qint64 offset) const {
    constexpr qint64 step = 4096;
    for (qint64 at = offset - 1;; at += step) {
        const QByteArray bytes = readAt(at, step);
        const auto end = bytes.indexOf('\n');
        if (end >= 0 || bytes.size() < step)
            return at + (end >= 0 ? end + 1 : bytes.size());
    }
}

/// The number of the field whose line begins there.
std::size_t FieldList::numberAt(qint64 offset) const {
    const qint64 end = lineFrom(offset + 1);
    const QByteArray line = readAt(offset, end - offset);
    bool isNumber = false;
    const std::string_view member = memberOf(viewOf(line), "number");
    const qulonglong number =
        QByteArray(member.data(), static_cast<int>(member.size())).toULongLong(&isNumber);
    if (!isNumber || number == 0)
        fail(QStringLiteral("has a line that is of no field; make it again with 'lumetra list'"));
    return number - 1;
}

/// Where the line of a field begins, or of the first one after it: found by halving what is left of
/// the file.
qint64 FieldList::offsetOf(std::size_t number) const {
    qint64 begin = begin_, end = file_.size();
    while (begin < end) {
        const qint64 middle = begin + (end - begin) / 2;
        const qint64 line = lineFrom(middle);
        if (line >= end || numberAt(line) >= number)
            end = middle;
        else
            begin = lineFrom(line + 1);
    }
    return lineFrom(begin);
}

void FieldList::prepare(std::size_t first, std::size_t last) {
    const qint64 begin = offsetOf(first);
    part_ = readAt(begin, offsetOf(last) - begin);
    lines_ = {0};
    for (qint64 end = part_.indexOf('\n'); end >= 0;
         end = part_.indexOf('\n', static_cast<int>(end) + 1))
        lines_.push_back(end + 1);
    firstOfPart_ = first;
    if (lines_.size() != last - first + 1 || lines_.back() != part_.size())
        fail(QStringLiteral("does not have a line for each of the fields %1 to %2; make it again "
                            "with 'lumetra list'")
                 .arg(first + 1)
                 .arg(last));
}

QByteArray FieldList::lineOfField(std::size_t number) const {
    const std::size_t i = number - firstOfPart_;
    if (number >= firstOfPart_ && i + 1 < lines_.size())
        return part_.mid(static_cast<int>(lines_[i]), static_cast<int>(lines_[i + 1] - lines_[i]));
    const qint64 begin = offsetOf(number);
    return readAt(begin, lineFrom(begin + 1) - begin);
}

Field FieldList::field(std::size_t number) const {
    const QJsonObject line = parsedLine(lineOfField(number));
    const QJsonArray inputs = line[listedInputsKey].toArray();
    if (line[listedNumberKey].toDouble() != static_cast<double>(number + 1) ||
        static_cast<std::size_t>(inputs.size()) != header_.channels.size() ||
        !line[listedOutputKey].isString())
        fail(QStringLiteral("has no line for field %1 that can be understood; make it again with "
                            "'lumetra list'")
                 .arg(number + 1));
    Field field;
    field.number = number;
    field.name = line[listedFieldKey].toString();
    field.problem = line[listedProblemKey].toString();
    field.job.output = line[listedOutputKey].toString();
    for (const std::size_t channel : order_) {
        field.job.inputs.push_back(inputListed(inputs[static_cast<int>(channel)]));
        if (field.job.inputs.back().file.isEmpty() && field.problem.isEmpty())
            field.problem = QStringLiteral("channel \"%1\" is missing")
                                .arg(toQt(header_.channels[channel].name));
    }
    return field;
}

} // namespace lumetra
