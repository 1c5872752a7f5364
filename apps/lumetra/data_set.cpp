#include "apps/lumetra/data_set.h"

#include "apps/common/failure.h"
#include "apps/common/writing.h"

#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <map>

namespace apps {
namespace {

const QString channelPart = QStringLiteral("channel");

/// The names in a list: one in a line, or, if there is a NUL in it, one before each NUL.
QStringList listedFiles(const QString& list) {
    QFile device(list);
    const bool isOpen = list == QLatin1String("-") ? device.open(stdin, QIODevice::ReadOnly)
                                                   : device.open(QIODevice::ReadOnly);
    if (!isOpen)
        throw Failure(QStringLiteral("%1: %2").arg(shown(list), device.errorString()));
    const QByteArray bytes = device.readAll();
    QStringList names;
    for (QByteArray name : bytes.split(bytes.contains('\0') ? '\0' : '\n')) {
        if (!bytes.contains('\0') && name.endsWith('\r'))
            name.chop(1);
        if (!name.isEmpty())
            names << QFile::decodeName(name);
    }
    return names;
}

QString joined(const Parts& parts, const QStringList& names) {
    QStringList texts;
    for (const QString& name : names)
        if (name != channelPart)
            texts << parts[name];
    return texts.join(QLatin1Char('/'));
}

void findProblem(Field& field, const std::vector<Channel>& channels, const Pattern& pattern) {
    for (std::size_t i = 0; i < channels.size() && field.problem.isEmpty(); ++i) {
        if (!field.files.inputs[i].file.isEmpty())
            continue;
        Parts parts = field.parts;
        parts[channelPart] = channels[i].name;
        field.problem = QStringLiteral("the channel \"%1\" is missing: there is no %2")
                            .arg(shown(channels[i].name), shown(pattern.filled(parts)));
    }
}

} // namespace

std::vector<Field> findFields(const DataSetRequest& request) {
    QMap<QString, QStringList> choices;
    std::map<QString, std::size_t> numberOfName;
    for (const Channel& channel : request.channels) {
        numberOfName.emplace(channel.name, numberOfName.size());
        choices[channelPart] << channel.name;
    }
    const Pattern pattern(request.pattern, choices);
    const bool hasChannels = pattern.names().contains(channelPart);
    if (!hasChannels && request.channels.size() > 1)
        throw BadUsage(QStringLiteral("the pattern \"%1\" needs a part {channel} for %2 channels")
                           .arg(shown(request.pattern))
                           .arg(request.channels.size()));

    const bool isListed = !request.filesFrom.isEmpty();
    std::map<QStringList, Field> fieldOfParts; // in the order of their parts
    const QStringList files = isListed ? listedFiles(request.filesFrom) : pattern.files();
    for (const QString& file : files) {
        Parts parts;
        if (!pattern.match(file, parts))
            continue;
        const std::size_t number = hasChannels ? numberOfName[parts.take(channelPart)] : 0;
        Field& field = fieldOfParts[joined(parts, pattern.names()).split(QLatin1Char('/'))];
        if (field.files.inputs.empty()) {
            field.name = joined(parts, pattern.names());
            field.parts = parts;
            for (const Channel& channel : request.channels)
                field.files.inputs.push_back({QString(), 0, channel});
        }
        field.files.inputs[number].file = file;
    }

    std::vector<Field> fields;
    for (auto& [parts, field] : fieldOfParts) {
        findProblem(field, request.channels, pattern);
        fields.push_back(std::move(field));
    }
    return fields;
}

void nameOutputs(std::vector<Field>& fields, const QString& outputPattern) {
    const Pattern pattern(outputPattern);
    QMap<QString, QString> fieldOfOutput;
    for (Field& field : fields) {
        field.files.output = pattern.filled(field.parts);
        QString& other = fieldOfOutput[identityOf(field.files.output)];
        if (!other.isNull())
            throw BadUsage(QStringLiteral("the fields %1 and %2 have the same output %3")
                               .arg(shown(other), shown(field.name), shown(field.files.output)));
        other = field.name;
    }
    for (const Field& field : fields)
        for (const ChannelFile& input : field.files.inputs) {
            const QString identity = identityOf(input.file);
            if (!input.file.isEmpty() && fieldOfOutput.contains(identity))
                throw BadUsage(QStringLiteral("%1 is an input and the output of the field %2")
                                   .arg(shown(input.file), shown(fieldOfOutput[identity])));
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
        throw BadUsage(
            QStringLiteral("--shard %1 is not K/N with K from 1 to N").arg(shown(shard)));
    const auto start = [&](std::size_t k) {
        return fields.begin() + static_cast<std::ptrdiff_t>(fields.size() * k / parts);
    };
    return {start(part - 1), start(part)};
}

Channel parseNamedChannel(const QString& words, const DyeList& dyes) {
    const auto equals = words.indexOf(QLatin1Char('='));
    if (equals < 1)
        throw BadUsage(
            QStringLiteral("--channel \"%1\" is not of the form NAME=DYE or NAME=DYE+X+Y")
                .arg(shown(words)));
    Channel channel = parseChannel(words.mid(equals + 1), dyes);
    channel.name = words.left(equals);
    return channel;
}

std::vector<Channel> namedChannels(const QStringList& words,
                                   const std::optional<Settings>& settings, const DyeList& dyes) {
    std::vector<Channel> channels;
    if (settings && words.isEmpty())
        channels = settings->channels;
    for (const QString& word : words) {
        Channel channel = parseNamedChannel(word, dyes);
        if (settings) {
            const auto known =
                std::find_if(settings->channels.begin(), settings->channels.end(),
                             [&](const Channel& other) { return other.name == channel.name; });
            if (known == settings->channels.end())
                throw BadUsage(
                    QStringLiteral("the settings have no channel \"%1\"").arg(shown(channel.name)));
            channel.levels = known->levels;
            channel.gamma = known->gamma;
            channel.visible = known->visible;
        }
        channels.push_back(channel);
    }
    if (channels.empty())
        throw BadUsage(QStringLiteral("there are no channels: give --channel NAME=DYE for each"));
    QSet<QString> names;
    for (const Channel& channel : channels) {
        if (channel.name.isEmpty())
            throw BadUsage(QStringLiteral("a channel of the settings has no name"));
        if (names.contains(channel.name))
            throw BadUsage(
                QStringLiteral("the channel \"%1\" is there twice").arg(shown(channel.name)));
        names << channel.name;
    }
    return channels;
}

QString fieldList(const std::vector<Field>& fields) {
    constexpr std::size_t most = 20;
    QStringList names;
    for (std::size_t i = 0; i < std::min(fields.size(), most); ++i)
        names << shown(fields[i].name);
    QString line = counted(fields.size(), QStringLiteral("field"));
    if (!names.join(QString()).isEmpty()) // a pattern without parts has one field without a name
        line += QStringLiteral(": ") + names.join(QStringLiteral(", "));
    if (fields.size() > most)
        line += QStringLiteral(" and %1 more").arg(fields.size() - most);
    return line;
}

} // namespace apps
