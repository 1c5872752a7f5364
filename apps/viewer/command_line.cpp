#include "apps/viewer/command_line.h"

#include "apps/common/shell.h"

#include <QLocale>

#include <algorithm>

namespace apps {
namespace {

QString number(double value) { return QString::number(value, 'g', QLocale::FloatingPointShortest); }

QString rangeWords(const Channel& channel) {
    return QStringLiteral("%1:%2").arg(channel.levels->low).arg(channel.levels->high);
}

QStringList mergeWords(const std::vector<ChannelFile>& files, const View& view) {
    const DyeList builtIn;
    QStringList words{QStringLiteral("merge")};
    for (std::size_t i = 0; i < files.size(); ++i)
        words << fileWords(files[i]) + QLatin1Char('=') + channelWords(view.channels[i], builtIn);
    for (const Channel& channel : view.channels)
        words << QStringLiteral("--levels") << rangeWords(channel);
    const bool hasGamma = std::any_of(view.channels.begin(), view.channels.end(),
                                      [](const Channel& channel) { return channel.gamma != 1; });
    for (const Channel& channel : view.channels)
        if (hasGamma)
            words << QStringLiteral("--gamma") << number(channel.gamma);
    for (std::size_t i = 0; i < view.channels.size(); ++i)
        if (!view.channels[i].visible)
            words << QStringLiteral("--hide") << QString::number(i + 1);
    if (view.annotation.legend)
        words << QStringLiteral("--legend");
    return words;
}

QStringList pseudoWords(const std::vector<ChannelFile>& files, const View& view,
                        const TableChoice& table) {
    const std::size_t i = view.pseudo->channel;
    QStringList words{QStringLiteral("pseudo"),   fileWords(files.at(i)),
                      QStringLiteral("--table"),  table.table,
                      QStringLiteral("--levels"), rangeWords(view.channels[i])};
    if (view.channels[i].gamma != 1)
        words << QStringLiteral("--gamma") << number(view.channels[i].gamma);
    if (table.reversed)
        words << QStringLiteral("--reversed");
    return words;
}

} // namespace

QString commandFor(const std::vector<ChannelFile>& files, const View& view,
                   const TableChoice& table, const QString& output) {
    QStringList words{QStringLiteral("lumetra")};
    words << (view.pseudo ? pseudoWords(files, view, table) : mergeWords(files, view));
    if (view.annotation.scaleBar)
        words << QStringLiteral("--scale-bar") << number(view.annotation.scaleBar->micrometres)
              << QStringLiteral("--pixel-size") << number(view.annotation.scaleBar->pixelSize);
    words << QStringLiteral("-o") << output;
    return shellLine(words);
}

} // namespace apps
