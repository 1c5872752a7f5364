#include "apps/viewer/status_line.h"

#include "apps/common/annotation.h"

#include <QLabel>

namespace lumetra {

StatusLine::StatusLine(QWidget* parent)
    : QStatusBar(parent), intensities_(new QLabel(this)), pixelSize_(addLabel()), zoom_(addLabel()),
      rate_(addLabel()) {
    intensities_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // may be long
    addWidget(intensities_, 1); // a permanent one would hide messages
}

QLabel* StatusLine::addLabel() {
    auto* label = new QLabel(this);
    addPermanentWidget(label);
    return label;
}

void StatusLine::showIntensities(QPoint pixel, const std::vector<int>& intensities,
                                 const std::vector<Channel>& channels) {
    QString text;
    if (!intensities.empty())
        text = tr("x %1, y %2").arg(pixel.x()).arg(pixel.y());
    for (std::size_t i = 0; i < intensities.size(); ++i)
        text += QStringLiteral("   %1 %2").arg(panelName(channels[i])).arg(intensities[i]);
    intensities_->setText(text);
}

void StatusLine::showPixelSize(std::optional<double> micrometres) {
    pixelSize_->setText(micrometres ? tr("%L1 µm/pixel").arg(*micrometres, 0, 'g', 4)
                                    : tr("pixel size unknown"));
}

void StatusLine::showZoom(double scale) { zoom_->setText(tr("%1 %").arg(100 * scale, 0, 'f', 0)); }

void StatusLine::showFrameRate(std::optional<double> framesPerSecond, std::uint64_t dropped) {
    rate_->setText(
        framesPerSecond
            ? tr("%L1 frames/s · %2 dropped").arg(*framesPerSecond, 0, 'f', 1).arg(dropped)
            : QString());
}

} // namespace lumetra
