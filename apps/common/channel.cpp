#include "apps/common/channel.h"

#include "apps/common/failure.h"

#include <QFileInfo>
#include <QRegularExpression>

namespace apps {
namespace {

int offsetPart(const QString& digits) {
    bool fits = false;
    const int value = digits.toInt(&fits);
    if (!fits)
        throw Failure(QStringLiteral("the offset %1 is too large").arg(digits));
    return value;
}

QString signedNumber(int value) {
    return (value < 0 ? QString() : QStringLiteral("+")) + QString::number(value);
}

/// Sets the dye or colour that the words name; false if they name none.
bool setDye(Channel& channel, const QString& words, const DyeList& dyes) {
    const Dye* dye = dyes.find(words);
    if (dye) {
        channel.dye = dye->name;
        channel.colour = dye->colour;
        return true;
    }
    static const QRegularExpression colour(QStringLiteral("^(.*)(#[0-9A-Fa-f]{6})$"),
                                           QRegularExpression::DotMatchesEverythingOption);
    const auto match = colour.match(words);
    if (match.hasMatch()) {
        channel.dye = match.captured(1);
        channel.colour = QColor(match.captured(2));
    }
    return match.hasMatch();
}

} // namespace

Channel parseChannel(const QString& words, const DyeList& dyes) {
    Channel channel;
    if (setDye(channel, words, dyes))
        return channel;

    static const QRegularExpression offset(QStringLiteral("([+-][0-9]+)([+-][0-9]+)$"));
    const auto match = offset.match(words);
    const QString dye = match.hasMatch() ? words.left(match.capturedStart()) : words;
    if (!setDye(channel, dye, dyes))
        dyes.at(dye); // says which names are near
    if (match.hasMatch())
        channel.offset = {offsetPart(match.captured(1)), offsetPart(match.captured(2))};
    return channel;
}

QString channelWords(const Channel& channel, const DyeList& dyes) {
    const Dye* dye = dyes.find(channel.dye);
    QString words = channel.dye;
    if (words.contains(QLatin1Char('='))) // would be taken for the end of the file's name
        words.clear();
    if (!dye || dye->name != words || dye->colour != channel.colour)
        words += channel.colour.name();
    if (!channel.offset.isNull())
        words += signedNumber(channel.offset.x()) + signedNumber(channel.offset.y());
    return words;
}

ChannelFile parseFile(const QString& words) {
    static const QRegularExpression page(QStringLiteral("^(.+)\\[([0-9]+)\\]$"),
                                         QRegularExpression::DotMatchesEverythingOption);
    const auto match = page.match(words);
    if (!match.hasMatch() || QFileInfo::exists(words))
        return {words, 0, {}};
    bool fits = false;
    const int number = match.captured(2).toInt(&fits);
    if (!fits || number < 1)
        throw Failure(QStringLiteral("%1: pages are counted from 1").arg(shown(words)));
    return {match.captured(1), number, {}};
}

QString fileWords(const ChannelFile& file) {
    return file.page == 0 ? file.file : QStringLiteral("%1[%2]").arg(file.file).arg(file.page);
}

ChannelFile parseChannelFile(const QString& words, const DyeList& dyes) {
    const auto equals = words.lastIndexOf(QLatin1Char('='));
    if (equals < 1)
        throw BadUsage(
            QStringLiteral("\"%1\" is not of the form FILE=DYE or FILE=DYE+X+Y").arg(shown(words)));
    ChannelFile result = parseFile(words.left(equals));
    result.channel = parseChannel(words.mid(equals + 1), dyes);
    return result;
}

} // namespace apps
