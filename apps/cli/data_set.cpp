#include "apps/cli/data_set.h"

#include "apps/cli/folder_listing.h"
#include "apps/cli/natural_order.h"
#include "apps/common/error.h"
#include "apps/common/file_channels.h"
#include "apps/common/messages.h"
#include "apps/common/text.h"
#include "imageio/file_error.h"
#include "imageio/output_conflicts.h"

#include <QFile>
#include <QRegularExpression>

#include <algorithm>
#include <map>
#include <set>

namespace lumetra {
namespace {

const QString channelPlaceholder = QStringLiteral("channel");

/// The names in a list: one in a line, or, if there is a NUL in it, one before each NUL.
FileNames listedFiles(const QString& list) {
    QFile device(list);
    const bool isOpen = list == QLatin1String("-") ? device.open(stdin, QIODevice::ReadOnly)
                                                   : device.open(QIODevice::ReadOnly);
    if (!isOpen)
        throw Error(QStringLiteral("%1: %2").arg(list, device.errorString()));
    const QByteArray bytes = device.readAll();
    const bool hasNul = bytes.contains('\0');
    FileNames files;
    for (QByteArray bytesOfName : bytes.split(hasNul ? '\0' : '\n')) {
        if (!hasNul && bytesOfName.endsWith('\r'))
            bytesOfName.chop(1);
        const auto name = nameOf(bytesOfName);
        if (!name)
            ++files.notText;
        else if (!name->isEmpty())
            files.names << *name;
    }
    return files;
}

/// What tells a field from the others: the texts of its placeholders, in their order.
QStringList textsOf(const Placeholders& placeholders, const QStringList& names) {
    QStringList texts;
    for (const QString& name : names)
        if (name != channelPlaceholder)
            texts << placeholders[name];
    return texts;
}

/// Gives a field the file of one of its channels.
/// @throws UsageError if it has another one.
void setInput(Field& field, std::size_t number, const QString& file) {
    QString& known = field.job.inputs[number].file;
    if (!known.isEmpty() && known != file)
        throw UsageError(
            QStringLiteral("%1 and %2 are both %3: give {*} or {**} a name, such as {site}, where "
                           "it tells fields apart")
                .arg(std::min(known, file), std::max(known, file),
                     field.name.isEmpty()
                         ? QStringLiteral("the same channel of the same field")
                         : QStringLiteral("the same channel of field %1").arg(field.name)));
    known = file;
}

void findProblem(Field& field, const std::vector<Channel>& channels, const Pattern& pattern) {
    for (std::size_t i = 0; i < channels.size() && field.problem.isEmpty(); ++i) {
        if (!field.job.inputs[i].file.isEmpty())
            continue;
        Placeholders placeholders = field.placeholders;
        placeholders[channelPlaceholder] = toQt(channels[i].name);
        field.problem = QStringLiteral("channel \"%1\" is missing: there is no %2")
                            .arg(toQt(channels[i].name), pattern.partlyFilled(placeholders));
    }
}

Pattern patternOf(const DataSetOptions& options, const std::vector<Channel>& channels) {
    QMap<QString, QStringList> choices;
    for (const Channel& channel : channels)
        choices[channelPlaceholder] << toQt(channel.name);
    Pattern pattern(options.pattern, choices);
    return pattern;
}

std::vector<Field> sortedIntoFields(const QStringList& files, const Pattern& pattern,
                                    const std::vector<Channel>& channels) {
    std::map<QString, std::size_t> numberOfName;
    for (const Channel& channel : channels)
        numberOfName.emplace(toQt(channel.name), numberOfName.size());
    const bool hasChannels = pattern.names().contains(channelPlaceholder);
    std::map<QStringList, Field, NaturalOrder> fieldOfTexts;
    for (const QString& file : files) {
        Placeholders placeholders;
        if (!pattern.match(file, placeholders))
            continue;
        const QString channel = placeholders.take(channelPlaceholder);
        const QStringList texts = textsOf(placeholders, pattern.names());
        Field& field = fieldOfTexts[texts];
        if (field.job.inputs.empty()) {
            field.name = texts.join(QLatin1Char('/'));
            field.placeholders = placeholders;
            field.job.inputs.resize(channels.size());
            field.isOneFile = !hasChannels;
        }
        if (hasChannels)
            setInput(field, numberOfName[channel], file);
        for (std::size_t number = 0; !hasChannels && number < channels.size(); ++number)
            setInput(field, number, file);
    }
    std::vector<Field> fields;
    for (auto& [texts, field] : fieldOfTexts) {
        findProblem(field, channels, pattern);
        fields.push_back(std::move(field));
    }
    return fields;
}

/// Where each file holds its channels, those of the first one tell which are meant.
void selectChannelsOf(std::vector<Field>& fields, const std::vector<Channel>& channels) {
    if (fields.empty() || !fields.front().isOneFile || !fields.front().problem.isEmpty())
        return;
    std::vector<std::string> names;
    names.reserve(channels.size());
    for (const Channel& channel : channels)
        names.push_back(channel.name);
    try {
        selectChannels(fields.front().job.inputs, names);
    } catch (const FileError&) { // which is told when the field is rendered
        return;
    }
    for (Field& field : fields)
        for (std::size_t i = 0; i < field.job.inputs.size(); ++i)
            field.job.inputs[i].channels = fields.front().job.inputs[i].channels;
}

} // namespace

std::vector<Field> requestedFields(const DataSetOptions& options,
                                   const std::vector<Channel>& channels) {
    const Pattern pattern = patternOf(options, channels);
    const bool isListed = !options.filesFrom.isEmpty();
    const FileNames files = isListed ? listedFiles(options.filesFrom) : pattern.files();
    if (files.notText > 0)
        printError(QStringLiteral("%1 left out, since the name is not UTF-8")
                       .arg(plural(files.notText, QStringLiteral("file"))));
    std::vector<Field> fields = sortedIntoFields(files.names, pattern, channels);
    selectChannelsOf(fields, channels);
    if (fields.empty()) {
        const QString reason = isListed ? pattern.whyNot(files.names) : pattern.whyNot();
        printError(QStringLiteral("no file matches %1").arg(options.pattern) +
                   (reason.isEmpty() ? QString() : QStringLiteral(": ") + reason));
    }
    return fields;
}

QStringList inputNames(const std::vector<Field>& fields) {
    QStringList names;
    for (const Field& field : fields)
        names << inputNames(field.job);
    return names;
}

bool hasProblems(const std::vector<Field>& fields) {
    return std::any_of(fields.begin(), fields.end(),
                       [](const Field& field) { return !field.problem.isEmpty(); });
}

void printProblems(const std::vector<Field>& fields) {
    std::size_t problems = 0;
    for (const Field& field : fields) {
        if (field.problem.isEmpty())
            continue;
        ++problems;
        printError(QStringLiteral("field %1: %2").arg(field.name, field.problem));
    }
    if (problems > 0)
        printError(QStringLiteral("%1 of %2 fields failed").arg(problems).arg(fields.size()));
}

void nameOutputs(std::vector<Field>& fields, const QString& outputPattern) {
    const Pattern pattern(outputPattern);
    QMap<QString, QString> fieldOfOutput;
    for (Field& field : fields) {
        field.job.output = pattern.filled(field.placeholders);
        QString& other = fieldOfOutput[fileId(field.job.output)];
        if (!other.isNull())
            throw UsageError(QStringLiteral("fields %1 and %2 have the same output %3")
                                 .arg(other, field.name, field.job.output));
        other = field.name;
    }
    for (const Field& field : fields)
        for (const InputFile& input : field.job.inputs) {
            const QString identity = fileId(input.file);
            if (!input.file.isEmpty() && fieldOfOutput.contains(identity))
                throw UsageError(QStringLiteral("%1 is an input and also the output of field %2")
                                     .arg(input.file, fieldOfOutput[identity]));
        }
}

std::vector<Field> shardOf(const std::vector<Field>& fields, const QString& shard) {
    if (shard.isEmpty())
        return fields;
    static const QRegularExpression form(QStringLiteral("^([0-9]{1,6})/([0-9]{1,6})$"));
    const auto match = form.match(shard);
    const std::size_t part = match.captured(1).toUInt();
    const std::size_t parts = match.captured(2).toUInt();
    if (part < 1 || part > parts)
        throw UsageError(QStringLiteral("--shard %1 is not K/N with K from 1 to N").arg(shard));
    const auto start = [&](std::size_t k) {
        return fields.begin() + static_cast<std::ptrdiff_t>(fields.size() * k / parts);
    };
    return {start(part - 1), start(part)};
}

Channel parseNamedChannel(const QString& text, const DyeList& dyes) {
    const auto equals = text.indexOf(QLatin1Char('='));
    if (equals < 1)
        throw UsageError(
            QStringLiteral("--channel \"%1\" is not of the form NAME=DYE or NAME=DYE+X+Y")
                .arg(text));
    Channel channel = parseChannel(text.mid(equals + 1), dyes);
    channel.name = toUtf8(text.left(equals));
    return channel;
}

std::vector<Channel> namedChannels(const QStringList& texts,
                                   const std::optional<Settings>& settings, const DyeList& dyes) {
    std::vector<Channel> channels;
    if (settings && texts.isEmpty())
        channels = settings->channels;
    for (const QString& text : texts) {
        Channel channel = parseNamedChannel(text, dyes);
        if (settings) {
            const auto known =
                std::find_if(settings->channels.begin(), settings->channels.end(),
                             [&](const Channel& other) { return other.name == channel.name; });
            if (known == settings->channels.end())
                throw UsageError(
                    QStringLiteral("the settings have no channel \"%1\"").arg(toQt(channel.name)));
            channel.levels = known->levels;
            channel.levelsBits = known->levelsBits;
            channel.gamma = known->gamma;
            channel.visible = known->visible;
        }
        channels.push_back(channel);
    }
    if (channels.empty())
        throw UsageError(QStringLiteral("there are no channels: give --channel NAME=DYE for each"));
    std::set<std::string> names;
    for (const Channel& channel : channels) {
        if (channel.name.empty())
            throw UsageError(QStringLiteral("a channel of the settings has no name"));
        if (!names.insert(channel.name).second)
            throw UsageError(
                QStringLiteral("channel \"%1\" is given twice").arg(toQt(channel.name)));
    }
    return channels;
}

QString fieldList(const std::vector<Field>& fields) {
    QString line = plural(fields.size(), QStringLiteral("field"));
    // A pattern without placeholders has one field without a name.
    if (!fields.empty() && !fields.front().name.isEmpty())
        line += QStringLiteral(", ") + fields.front().name;
    if (fields.size() > 1)
        line += QStringLiteral(" to ") + fields.back().name;
    return line;
}

} // namespace lumetra
