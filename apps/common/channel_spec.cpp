#include "apps/common/channel_spec.h"

#include "apps/common/error.h"
#include "apps/common/text.h"

#include <QFileInfo>
#include <QRegularExpression>

namespace lumetra {
namespace {

int offsetPart(const QString& digits) {
    bool fits = false;
    const int value = digits.toInt(&fits);
    if (!fits)
        throw Error(QStringLiteral("the offset %1 is too large").arg(digits));
    return value;
}

QString signedNumber(int value) {
    return (value < 0 ? QString() : QStringLiteral("+")) + QString::number(value);
}

/// Sets the dye or colour that a text names; false if it names none.
bool setDye(Channel& channel, const QString& text, const DyeList& dyes) {
    const Dye* dye = dyes.find(toUtf8(text));
    if (dye) {
        channel.dye = dye->name;
        channel.colour = dye->colour;
        return true;
    }
    static const QRegularExpression colour(QStringLiteral("^(.*)(#[0-9A-Fa-f]{6})$"),
                                           QRegularExpression::DotMatchesEverythingOption);
    const auto match = colour.match(text);
    if (match.hasMatch()) {
        channel.dye = toUtf8(match.captured(1));
        channel.colour = *parseHex(toUtf8(match.captured(2)));
    }
    return match.hasMatch();
}

/// A number of a selector.
int counted(const QString& text, const QString& digits) {
    bool fits = false;
    const int number = digits.toInt(&fits);
    if (!fits || number < 1)
        throw Error(
            QStringLiteral("%1: pages, channels, z-slices and time points are counted from 1")
                .arg(text));
    return number;
}

/// Whether the list has this name, not only one that may be written so.
bool isNameAsWritten(const QString& text, const DyeList& dyes) {
    const Dye* dye = dyes.find(toUtf8(text));
    return dye && toQt(dye->name).compare(text, Qt::CaseInsensitive) == 0;
}

/// Refuses what follows a dye like an offset and is none.
/// @throws Error if there is such a thing.
void refuseOffset(const QString& text, const DyeList& dyes) {
    static const QRegularExpression sign(QStringLiteral("[+-]+[0-9.]"));
    for (auto match = sign.match(text); match.hasMatch();
         match = sign.match(text, match.capturedStart() + 1)) {
        Channel channel;
        if (setDye(channel, text.left(match.capturedStart()), dyes))
            throw Error(
                QStringLiteral("\"%1\" after \"%2\" is not an offset: give two whole "
                               "numbers with their signs, such as +3-2")
                    .arg(text.mid(match.capturedStart()), text.left(match.capturedStart())));
    }
}

} // namespace

Channel parseChannel(const QString& text, const DyeList& dyes) {
    static const QRegularExpression offset(QStringLiteral("([+-][0-9]+)([+-][0-9]+)$"));
    const auto match = offset.match(text);
    const QString dye = text.left(match.capturedStart());
    Channel channel;
    if (match.hasMatch() && !isNameAsWritten(text, dyes) && setDye(channel, dye, dyes)) {
        channel.offset = {offsetPart(match.captured(1)), offsetPart(match.captured(2))};
        return channel;
    }
    if (!setDye(channel, text, dyes)) {
        refuseOffset(text, dyes);
        dyes.at(toUtf8(match.hasMatch() ? dye : text)); // says which names are near
    }
    return channel;
}

QString channelSpec(const Channel& channel, const DyeList& dyes) {
    const Dye* dye = dyes.find(channel.dye);
    QString text = toQt(channel.dye);
    if (text.contains(QLatin1Char('='))) // would be taken for the end of the file's name
        text.clear();
    if (!dye || toQt(dye->name) != text || dye->colour != channel.colour)
        text += toQt(toHex(channel.colour));
    if (channel.offset != cv::Point())
        text += signedNumber(channel.offset.x) + signedNumber(channel.offset.y);
    return text;
}

ChannelFile parseFile(const QString& text) {
    static const QRegularExpression form(
        QStringLiteral("^(.+)\\[([0-9]+|[czt][0-9]+(?:-[0-9]+)?(?:,[czt][0-9]+(?:-[0-9]+)?)*)\\]$"),
        QRegularExpression::DotMatchesEverythingOption);
    const auto match = form.match(text);
    if (!match.hasMatch() || QFileInfo::exists(text))
        return {{text, 0, {}, {}, {}, {}}, {}};
    ChannelFile result{{match.captured(1), 0, {}, {}, {}, {}}, {}};
    const QString selector = match.captured(2);
    if (selector[0].isDigit()) {
        result.page = counted(text, selector);
        return result;
    }
    for (const QString& part : selector.split(QLatin1Char(','))) {
        const QChar axis = part[0];
        AxisRange& range = axis == QLatin1Char('c')   ? result.channels
                           : axis == QLatin1Char('z') ? result.slices
                                                      : result.frames;
        if (range.isNamed())
            throw Error(QStringLiteral("%1: %2 is named twice").arg(text, QString(axis)));
        range.first = counted(text, part.section(QLatin1Char('-'), 0, 0).mid(1));
        range.last = part.contains(QLatin1Char('-'))
                         ? counted(text, part.section(QLatin1Char('-'), 1))
                         : range.first;
        if (range.last < range.first)
            throw Error(
                QStringLiteral("%1: a range goes from the smaller number to the larger").arg(text));
    }
    return result;
}

bool isChannelText(const QString& text) {
    return text.contains(QLatin1Char('=')) && !QFileInfo::exists(text);
}

QString fileSpec(const InputFile& file) {
    QStringList parts;
    if (file.page > 0)
        parts << QString::number(file.page);
    const auto add = [&](const char* axis, const AxisRange& range) {
        if (!range.isNamed())
            return;
        parts << QLatin1String(axis) + QString::number(range.first);
        if (range.last != range.first)
            parts.back() += QLatin1Char('-') + QString::number(range.last);
    };
    add("c", file.channels);
    add("z", file.slices);
    add("t", file.frames);
    return parts.isEmpty() ? file.file
                           : QStringLiteral("%1[%2]").arg(file.file, parts.join(QLatin1Char(',')));
}

ChannelFile parseChannelFile(const QString& text, const DyeList& dyes) {
    const auto equals = text.lastIndexOf(QLatin1Char('='));
    if (equals < 1)
        throw UsageError(
            QStringLiteral("\"%1\" is not of the form FILE=DYE or FILE=DYE+X+Y").arg(text));
    ChannelFile result = parseFile(text.left(equals));
    result.channel = parseChannel(text.mid(equals + 1), dyes);
    return result;
}

} // namespace lumetra
