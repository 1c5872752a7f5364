#include "apps/common/command_line.h"

#include <QLocale>

#include <algorithm>

namespace lumetra {
namespace {

QString number(double value) { return QString::number(value, 'g', QLocale::FloatingPointShortest); }

} // namespace

QStringList annotationArguments(const Annotation& annotation) {
    QStringList arguments;
    if (annotation.legend)
        arguments << QStringLiteral("--legend");
    if (annotation.scaleBar)
        arguments << QStringLiteral("--scale-bar") << number(annotation.scaleBar->micrometres)
                  << QStringLiteral("--pixel-size") << number(annotation.scaleBar->pixelSize);
    return arguments;
}

QString fileArgument(const QString& file) {
    return file.startsWith(QLatin1Char('-')) ? QStringLiteral("./") + file : file;
}

QString levelsText(ContrastLimits levels) {
    return QStringLiteral("%1:%2").arg(levels.low).arg(levels.high);
}

QStringList mergeArguments(const std::vector<ChannelFile>& channels,
                           const std::vector<QString>& levels, const Annotation& annotation,
                           const DyeList& builtIn) {
    const bool hasGamma =
        std::any_of(channels.begin(), channels.end(),
                    [](const ChannelFile& file) { return file.channel.gamma != 1; });
    const bool hasBlend =
        std::any_of(channels.begin(), channels.end(),
                    [](const ChannelFile& file) { return file.channel.blend != Blend::add; });
    QStringList arguments{QStringLiteral("merge")}, options;
    for (std::size_t i = 0; i < channels.size(); ++i) {
        const Channel& channel = channels[i].channel;
        arguments << fileArgument(fileSpec(channels[i])) + QLatin1Char('=') +
                         channelSpec(channel, builtIn);
        options << QStringLiteral("--levels") << levels.at(i);
        if (hasGamma)
            options << QStringLiteral("--gamma") << number(channel.gamma);
        if (hasBlend)
            options << QStringLiteral("--blend")
                    << QString::fromStdString(blendText(channel.blend));
        if (!channel.visible)
            options << QStringLiteral("--hide") << QString::number(i + 1);
    }
    return arguments + options + annotationArguments(annotation);
}

QStringList pseudoArguments(const ChannelFile& channel, const QString& levels,
                            const LutChoice& choice, const Annotation& annotation) {
    QStringList arguments{QStringLiteral("pseudo"),   fileArgument(fileSpec(channel)),
                          QStringLiteral("--lut"),    fileArgument(choice.lut),
                          QStringLiteral("--levels"), levels};
    if (channel.channel.gamma != 1)
        arguments << QStringLiteral("--gamma") << number(channel.channel.gamma);
    if (choice.inverted)
        arguments << QStringLiteral("--reversed");
    return arguments + annotationArguments({false, annotation.scaleBar}); // one channel, no legend
}

} // namespace lumetra
