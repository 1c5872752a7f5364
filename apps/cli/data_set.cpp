#include "apps/cli/data_set.h"

#include "apps/cli/field_list.h"
#include "apps/cli/folder_listing.h"
#include "apps/cli/found_fields.h"
#include "apps/cli/print.h"
#include "apps/common/error.h"
#include "apps/common/file_channels.h"
#include "apps/common/messages.h"
#include "apps/common/text.h"
#include "imageio/file_error.h"
#include "imageio/output_conflicts.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <functional>
#include <memory>
#include <set>

namespace lumetra {
namespace {

/// Gives the names in a list: one in a line, or, if there is a NUL in it, one before each NUL.
/// @return How many were left out, since they are not UTF-8.
std::size_t forEachListedFile(const QString& list, const std::function<void(const QString&)>& add) {
    QFile device(list);
    const bool isOpen = list == QLatin1String("-") ? device.open(stdin, QIODevice::ReadOnly)
                                                   : device.open(QIODevice::ReadOnly);
    if (!isOpen)
        throw Error(QStringLiteral("%1: %2").arg(list, device.errorString()));
    const QByteArray bytes = device.readAll();
    const char end = bytes.contains('\0') ? '\0' : '\n';
    std::size_t notText = 0;
    for (int at = 0, next = 0; at < static_cast<int>(bytes.size()); at = next + 1) {
        const auto found = static_cast<int>(bytes.indexOf(end, at));
        next = found < 0 ? static_cast<int>(bytes.size()) : found;
        int size = next - at;
        if (end == '\n' && size > 0 && bytes[next - 1] == '\r')
            --size;
        const auto name = textOf(QByteArray::fromRawData(bytes.constData() + at, size));
        if (!name)
            ++notText;
        else if (!name->isEmpty())
            add(QDir::fromNativeSeparators(*name));
    }
    return notText;
}

Pattern patternOf(const DataSetOptions& options, const std::vector<Channel>& channels) {
    QMap<QString, QStringList> choices;
    for (const Channel& channel : channels)
        choices[channelPlaceholder()] << toQt(channel.name);
    return Pattern(options.pattern, choices);
}

/// The channels of a file, each with a name of its own: the one that the file has for it, or its
/// number.
/// @throws Error if it does not tell the dye or colour of each.
std::vector<Channel> channelsOfFile(const QString& name, const DyeList& dyes) {
    const ImageFile file(name);
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

/// Where each file holds its channels, those of the first field tell which are meant.
void selectChannelsOf(FoundFields& fields, const std::vector<Channel>& channels) {
    if (fields.size() == 0 || !fields.areOneFile())
        return;
    std::vector<InputFile> inputs = fields.field(0).job.inputs;
    std::vector<std::string> names;
    names.reserve(channels.size());
    for (const Channel& channel : channels)
        names.push_back(channel.name);
    try {
        selectChannels(inputs, names);
    } catch (const FileError&) { // which is told when the field is rendered
        return;
    }
    for (InputFile& input : inputs)
        input = {{}, 0, input.channels};
    fields.selectChannels(inputs);
}

FieldSet foundFields(const DataSetOptions& options, const QString& outputs, bool isProjected,
                     const DyeList& dyes, std::vector<Channel>& channels) {
    constexpr int mostOthers = 10000; // which are enough for an example
    const Pattern pattern = patternOf(options, channels);
    if (channels.empty() && pattern.names().contains(channelPlaceholder()))
        throw UsageError(QStringLiteral("there are no channels: give --channel NAME=DYE for each"));
    const auto found = std::make_shared<FoundFields>(pattern, isProjected);
    found->nameChannels(channels);
    QStringList others;
    const auto add = [&](const QString& file) {
        if (!found->add(file) && static_cast<int>(others.size()) < mostOthers)
            others << file;
    };
    const bool isListed = !options.filesFrom.isEmpty();
    const std::size_t notText =
        isListed ? forEachListedFile(options.filesFrom, add) : pattern.forEachFile(add);
    if (notText > 0)
        printError(QStringLiteral("%1 left out, since the name is not UTF-8")
                       .arg(plural(notText, QStringLiteral("file"))));
    if (channels.empty() && !found->firstFile().isEmpty()) {
        channels = channelsOfFile(found->firstFile(), dyes);
        found->nameChannels(channels);
    }
    found->sort();
    if (!outputs.isEmpty())
        found->setOutputs(Pattern(outputs));
    selectChannelsOf(*found, channels);
    if (found->size() == 0) {
        const QString reason = isListed ? pattern.whyNot(others) : pattern.whyNot();
        printError(QStringLiteral("no file matches %1").arg(options.pattern) +
                   (reason.isEmpty() ? QString() : QStringLiteral(": ") + reason));
    }
    return FieldSet(found);
}

FieldSet listedFields(const QString& file, bool isProjected, std::vector<Channel>& channels) {
    const auto list = std::make_shared<FieldList>(file);
    if (list->header().isProjected != isProjected)
        throw UsageError(
            isProjected
                ? QStringLiteral("%1 was made without --project: give it to "
                                 "'lumetra list', too")
                      .arg(file)
                : QStringLiteral("%1 was made with --project: give it here, too").arg(file));
    if (channels.empty())
        channels = list->header().channels;
    list->useChannels(channels);
    if (list->size() == 0)
        printError(QStringLiteral("%1: there is no field in it").arg(file));
    return FieldSet(list);
}

} // namespace

void requirePattern(const DataSetOptions& options) {
    if (options.pattern.isEmpty() == options.fields.isEmpty())
        throw UsageError(options.fields.isEmpty()
                             ? QStringLiteral("there is no PATTERN and no list of --fields")
                             : QStringLiteral("--fields stands in the place of PATTERN"));
    if (!options.fields.isEmpty() && !options.filesFrom.isEmpty())
        throw UsageError(QStringLiteral("--fields cannot be combined with --files-from"));
}

FieldSet requestedFields(const DataSetOptions& options, const QString& outputs, bool isProjected,
                         const DyeList& dyes, std::vector<Channel>& channels) {
    return options.fields.isEmpty() ? foundFields(options, outputs, isProjected, dyes, channels)
                                    : listedFields(options.fields, isProjected, channels);
}

void checkFiles(const FieldSet& fields, const QString& compression, const QStringList& written,
                const QStringList& read, bool inputsToo) {
    OutputFiles outputs;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const Field field = fields[i];
        if (field.job.output.isEmpty())
            break;
        checkImageOutput(field.job.output, compression);
        if (const auto other = outputs.add(field.job.output, i))
            throw UsageError(QStringLiteral("fields %1 and %2 have the same output %3")
                                 .arg(fields[*other].name, field.name, field.job.output));
    }
    const auto nameOf = [&](std::size_t number) {
        return number < fields.size() ? fields[number].job.output
                                      : written[static_cast<int>(number - fields.size())];
    };
    const auto isFile = [](const QString& name) {
        return !name.isEmpty() && name != QLatin1String("-");
    };
    for (int i = 0; i < static_cast<int>(written.size()); ++i) {
        const QFileInfo info(written[i]);
        if (isFile(written[i]) && (info.isFile() || !info.exists()) &&
            outputs.add(written[i], fields.size() + static_cast<std::size_t>(i)))
            throw FileError(written[i], QStringLiteral("would be written twice; give the outputs "
                                                       "different names"));
    }
    for (const QString& name : read)
        if (const auto number = isFile(name) ? outputs.find(name) : std::nullopt)
            throw FileError(nameOf(*number), QStringLiteral("is also an input"));
    for (std::size_t i = 0; inputsToo && i < fields.size(); ++i)
        for (const QString& input : fields.inputs(i)) {
            const auto number = isFile(input) ? outputs.find(input) : std::nullopt;
            if (number && *number < fields.size())
                throw UsageError(QStringLiteral("%1 is an input and also the output of field %2")
                                     .arg(input, fields[*number].name));
            if (number)
                throw FileError(nameOf(*number), QStringLiteral("is also an input"));
        }
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

} // namespace lumetra
