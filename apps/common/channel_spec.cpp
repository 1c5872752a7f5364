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

} // namespace

Channel parseChannel(const QString& text, const DyeList& dyes) {
    Channel channel;
    if (setDye(channel, text, dyes))
        return channel;

    static const QRegularExpression offset(QStringLiteral("([+-][0-9]+)([+-][0-9]+)$"));
    const auto match = offset.match(text);
    const QString dye = match.hasMatch() ? text.left(match.capturedStart()) : text;
    if (!setDye(channel, dye, dyes))
        dyes.at(toUtf8(dye)); // says which names are near
    if (match.hasMatch())
        channel.offset = {offsetPart(match.captured(1)), offsetPart(match.captured(2))};
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
    static const QRegularExpression page(QStringLiteral("^(.+)\\[([0-9]+)\\]$"),
                                         QRegularExpression::DotMatchesEverythingOption);
    const auto match = page.match(text);
    if (!match.hasMatch() || QFileInfo::exists(text))
        return {{text, 0}, {}};
    bool fits = false;
    const int number = match.captured(2).toInt(&fits);
    if (!fits || number < 1)
        throw Error(QStringLiteral("%1: pages are counted from 1").arg(text));
    return {{match.captured(1), number}, {}};
}

QString fileSpec(const InputFile& file) {
    return file.page == 0 ? file.file : QStringLiteral("%1[%2]").arg(file.file).arg(file.page);
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
