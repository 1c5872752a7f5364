#include "apps/viewer/status_line.h"

#include "apps/common/annotation.h"

#include <QLabel>

namespace lumetra {
StatusLine::StatusLine(QWidget* parent)
    : QStatusBar(parent), intensities_(addLabel(1)), gammas_(addLabel(0)), zoom_(addLabel(0)),
      rate_(addLabel(0)) {}

QLabel* StatusLine::addLabel(int stretch) {
    auto* label = new QLabel(this);
    addPermanentWidget(label, stretch);
    return label;
}

void StatusLine::showIntensities(QPoint pixel, const std::vector<int>& intensities,
                                 const std::vector<Channel>& channels) {
    QString text;
    if (!intensities.empty())
        text = tr("x %1, y %2").arg(pixel.x()).arg(pixel.y());
    for (std::size_t i = 0; i < intensities.size(); ++i)
        text += QStringLiteral("   %1 %2").arg(channelLabel(channels[i])).arg(intensities[i]);
    intensities_->setText(text);
}

void StatusLine::showGammas(const std::vector<Channel>& channels) {
    QStringList gammas;
    for (const Channel& channel : channels)
        if (channel.gamma != 1)
            gammas << QStringLiteral("%1 %2").arg(channelLabel(channel)).arg(channel.gamma);
    gammas_->setText(gammas.isEmpty() ? QString()
                                      : tr("Gamma: %1").arg(gammas.join(QStringLiteral(", "))));
}

void StatusLine::showZoom(double scale) { zoom_->setText(tr("%1 %").arg(100 * scale, 0, 'f', 0)); }

void StatusLine::showFrameRate(std::optional<double> framesPerSecond, std::uint64_t dropped) {
    rate_->setText(
        framesPerSecond
            ? tr("%1 frames/s · %2 dropped").arg(*framesPerSecond, 0, 'f', 1).arg(dropped)
            : QString());
}

} // namespace lumetra
