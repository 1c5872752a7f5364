#include "apps/viewer/batch_command.h"

#include "apps/common/command_line.h"
#include "apps/common/error.h"
#include "apps/common/shell.h"
#include "apps/common/text.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

namespace lumetra {
namespace {

const QRegularExpression separator(QStringLiteral("[-_ .]"));

/// A text as a pattern takes it literally.
QString literal(QString text) {
    return text.replace(QLatin1Char('{'), QStringLiteral("{{"))
        .replace(QLatin1Char('}'), QStringLiteral("}}"));
}

/// What all names begin with.
QString commonStart(const QStringList& names) {
    QString start = names.front();
    for (const QString& name : names)
        while (!name.startsWith(start))
            start.chop(1);
    return start;
}

QString commonEnd(const QStringList& names) {
    QString end = names.front();
    for (const QString& name : names)
        while (!name.endsWith(end))
            end.remove(0, 1);
    return end;
}

struct Names {
    QString pattern;      ///< Of the files' names, without the folder.
    QStringList channels; ///< What stands for each channel in them.
};

/// Finds where the names of one field's files tell the channel, and where the field: what comes
/// before the channel up to a separator, otherwise what comes behind one.
/// @param names  Two or more, without folder and extension.
Names fieldAndChannels(const QStringList& names) {
    const QString start = commonStart(names);
    QStringList rests;
    for (const QString& name : names)
        rests << name.mid(start.size());
    const QString end = commonEnd(rests);
    Names result;
    for (const QString& rest : rests)
        result.channels << rest.left(rest.size() - end.size());
    const auto before = start.lastIndexOf(separator), behind = end.indexOf(separator);
    const QString channel = QStringLiteral("{channel}"), field = QStringLiteral("{field}");
    const bool isToldApart =
        !result.channels.contains(QString()) && result.channels.removeDuplicates() == 0;
    if (isToldApart && before > 0)
        result.pattern = field + literal(start.mid(before)) + channel + literal(end);
    else if (isToldApart && behind >= 0 && behind + 1 < end.size())
        result.pattern = literal(start) + channel + literal(end.left(behind + 1)) + field;
    else
        throw Error(QCoreApplication::translate(
            "BatchCommand", "the names of these files do not tell field and channel apart, as in "
                            "A01_DAPI.tif and A01_FITC.tif"));
    return result;
}

/// Which of several planes are meant.
QStringList planeArguments(const FileSource& source, const StackPosition& position) {
    if (position.projection)
        return {QStringLiteral("--project"), toQt(projectionText(*position.projection))};
    if (source.axes().slices == 1 && source.axes().frames == 1)
        return {};
    if (source.hasPages())
        return {QStringLiteral("--page"), QString::number(position.slice)};
    return {QStringLiteral("--all-pages")};
}

} // namespace

QString BatchCommand::line(const QString& settingsFile) const {
    return shellLine(
        QStringList{QStringLiteral("lumetra"), QStringLiteral("batch")} + arguments +
        QStringList{QStringLiteral("--settings"), settingsFile, QStringLiteral("-o"), output});
}

BatchCommand batchCommand(const FileSource& source, const DisplaySettings& settings,
                          const StackPosition& position) {
    const auto shown = ofChannels(settings, source.channels());
    QStringList names, files;
    for (const auto& channel : shown) {
        const QFileInfo file(channel.input.file);
        names << file.completeBaseName();
        files << channel.input.file;
    }
    const QFileInfo first(files.front());
    Names found{QStringLiteral("{field}"), {}};
    files.removeDuplicates();
    if (files.size() == 1)
        for (const auto& channel : shown)
            found.channels << QString::number(std::max(channel.input.channels.first, 1));
    else if (files.size() == names.size())
        found = fieldAndChannels(names);
    else
        throw Error(QCoreApplication::translate(
            "BatchCommand", "there is a batch command for channels that are in one file, or each "
                            "in a file of its own"));
    BatchCommand command;
    command.channels = settings.channels;
    for (std::size_t i = 0; i < command.channels.size(); ++i)
        command.channels[i].name = toUtf8(found.channels[static_cast<int>(i)]);
    const QString folder = literal(first.path()) + QLatin1Char('/');
    const QStringList planes = planeArguments(source, position);
    command.arguments << folder + found.pattern + QLatin1Char('.') + literal(first.suffix());
    command.arguments += planes + annotationArguments(settings.annotation);
    command.output = folder + QStringLiteral("out/{field}") +
                     (planes.contains(QStringLiteral("--all-pages")) ? QStringLiteral(".tif")
                                                                     : QStringLiteral(".png"));
    return command;
}

} // namespace lumetra
