#include "apps/cli/data_set.h"

#include "apps/cli/folder_listing.h"
#include "apps/cli/natural_order.h"
#include "apps/cli/slice_files.h"
#include "apps/common/error.h"
#include "apps/common/file_channels.h"
#include "apps/common/messages.h"
#include "apps/common/text.h"
#include "imageio/file_error.h"
#include "imageio/output_conflicts.h"

#include <QDir>
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
        const auto name = textOf(bytesOfName);
        if (!name)
            ++files.notText;
        else if (!name->isEmpty())
            files.names << QDir::fromNativeSeparators(*name);
    }
    return files;
}

/// The files of one channel of one field, by the texts of their z; one of no text where z-slices
/// have no files of their own.
using SliceFiles = std::map<QString, QString, NaturalOrder>;

/// A field with the files that were found for it.
struct FoundField {
    Field field;
    std::vector<SliceFiles> files; ///< Of each channel.
};

/// Gives a field a file of one of its channels.
/// @throws UsageError if it has another one for this.
void setInput(FoundField& found, std::size_t number, const QString& slice, const QString& file) {
    QString& known = found.files[number][slice];
    const QString& field = found.field.name;
    if (!known.isEmpty() && known != file)
        throw UsageError(
            QStringLiteral("%1 and %2 are both %3: give {*} or {**} a name, such as {site}, where "
                           "it tells fields apart")
                .arg(std::min(known, file), std::max(known, file),
                     field.isEmpty() ? QStringLiteral("the same channel of the same field")
                                     : QStringLiteral("the same channel of field %1").arg(field)));
    known = file;
}

/// The files of a channel as an image reads them.
InputFile inputOf(const SliceFiles& files, const QString& patternOfSlices) {
    InputFile input;
    if (files.empty())
        return input;
    if (files.begin()->first.isEmpty()) {
        input.file = files.begin()->second;
        return input;
    }
    input.file = patternOfSlices;
    for (const auto& [slice, file] : files)
        input.sliceFiles << file;
    return input;
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
    return Pattern(options.pattern, choices);
}

std::vector<Field> sortedIntoFields(const QStringList& files, const Pattern& pattern,
                                    bool isProjected, const std::vector<Channel>& channels) {
    std::map<QString, std::size_t> numberOfName;
    for (const Channel& channel : channels)
        numberOfName.emplace(toQt(channel.name), numberOfName.size());
    const bool hasChannels = pattern.names().contains(channelPlaceholder);
    std::map<QStringList, FoundField, NaturalOrder> fieldOfTexts;
    for (const QString& file : files) {
        Placeholders placeholders;
        if (!pattern.match(file, placeholders))
            continue;
        const QString channel = placeholders.take(channelPlaceholder);
        const QString slice = isProjected ? placeholders.take(slicePlaceholder()) : QString();
        QStringList texts; // what tells the field from the others
        for (const QString& name : pattern.names())
            if (placeholders.contains(name))
                texts << placeholders[name];
        FoundField& found = fieldOfTexts[texts];
        if (found.files.empty()) {
            found.field.name = texts.join(QLatin1Char('/'));
            found.field.placeholders = placeholders;
            found.field.isOneFile = !hasChannels;
            found.files.resize(channels.size());
        }
        if (hasChannels)
            setInput(found, numberOfName[channel], slice, file);
        for (std::size_t number = 0; !hasChannels && number < channels.size(); ++number)
            setInput(found, number, slice, file);
    }
    std::vector<Field> fields;
    for (auto& [texts, found] : fieldOfTexts) {
        Placeholders placeholders = found.field.placeholders;
        for (std::size_t number = 0; number < channels.size(); ++number) {
            if (isProjected && hasChannels)
                placeholders[channelPlaceholder] = toQt(channels[number].name);
            found.field.job.inputs.push_back(inputOf(
                found.files[number], isProjected ? pattern.narrowed(placeholders) : QString()));
        }
        findProblem(found.field, channels, pattern);
        fields.push_back(std::move(found.field));
    }
    return fields;
}

/// The channels of the first file that matches, each with a name of its own: the one that the file
/// has for it, or its number.
/// @throws Error if it does not tell the dye or colour of each.
std::vector<Channel> channelsOfFirst(const QStringList& files, const Pattern& pattern,
                                     const DyeList& dyes) {
    Placeholders placeholders;
    const auto isOther = [&](const QString& file) { return !pattern.match(file, placeholders); };
    QStringList matching = files;
    matching.erase(std::remove_if(matching.begin(), matching.end(), isOther), matching.end());
    if (matching.isEmpty())
        return {};
    const ImageFile file(*std::min_element(matching.begin(), matching.end(), NaturalOrder()));
    std::vector<Channel> channels;
    std::set<std::string> names;
    for (int number = 1; number <= file.axes().channels; ++number) {
        Channel channel;
        if (!describeChannel(file, number, dyes, channel))
            throw UsageError(QStringLiteral("%1 does not say the dye or colour of channel %2: give "
                                            "--channel NAME=DYE for each, by name or number")
                                 .arg(file.file())
                                 .arg(number));
        if (channel.name.empty() || !names.insert(channel.name).second)
            channel.name = std::to_string(number);
        channels.push_back(channel);
    }
    return channels;
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

std::vector<Field> requestedFields(const DataSetOptions& options, bool isProjected,
                                   const DyeList& dyes, std::vector<Channel>& channels) {
    const Pattern pattern = patternOf(options, channels);
    if (channels.empty() && pattern.names().contains(channelPlaceholder))
        throw UsageError(QStringLiteral("there are no channels: give --channel NAME=DYE for each"));
    const bool isListed = !options.filesFrom.isEmpty();
    const FileNames files = isListed ? listedFiles(options.filesFrom) : pattern.files();
    if (files.notText > 0)
        printError(QStringLiteral("%1 left out, since the name is not UTF-8")
                       .arg(plural(files.notText, QStringLiteral("file"))));
    if (channels.empty())
        channels = channelsOfFirst(files.names, pattern, dyes);
    std::vector<Field> fields = sortedIntoFields(files.names, pattern, isProjected, channels);
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
        for (const QString& input : inputNames(field.job)) {
            const QString identity = fileId(input);
            if (!input.isEmpty() && fieldOfOutput.contains(identity))
                throw UsageError(QStringLiteral("%1 is an input and also the output of field %2")
                                     .arg(input, fieldOfOutput[identity]));
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
            channel.valueLimits = known->valueLimits;
            channel.gamma = known->gamma;
            channel.visible = known->visible;
        }
        channels.push_back(channel);
    }
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
