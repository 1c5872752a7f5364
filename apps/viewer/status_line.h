// The line below the image.
#pragma once

#include "apps/common/annotation.h"

#include <QLabel>
#include <QStatusBar>

#include <optional>
#include <vector>

namespace lumetra {

/// Pixel values below the mouse, pixel size, zoom, and the rate of frames. A message takes the
/// place of the pixel values for a while.
class StatusLine : public QStatusBar {
    Q_OBJECT
public:
    explicit StatusLine(QWidget* parent = nullptr) : QStatusBar(parent) {
        intensities_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // may be long
        addWidget(intensities_, 1); // a permanent one would hide messages
        for (QLabel* label : {pixelSize_, zoom_, rate_})
            addPermanentWidget(label);
    }

    /// @param intensities  Of each channel; none where the mouse is outside the image.
    void showIntensities(QPoint pixel, const std::vector<int>& intensities,
                         const std::vector<Channel>& channels) {
        QString text;
        if (!intensities.empty())
            text = tr("x %1, y %2").arg(pixel.x()).arg(pixel.y());
        for (std::size_t i = 0; i < intensities.size(); ++i)
            text += QStringLiteral("   %1 %2").arg(panelName(channels[i])).arg(intensities[i]);
        intensities_->setText(text);
    }

    /// @param micrometres  None where it is not known.
    void showPixelSize(std::optional<double> micrometres) {
        pixelSize_->setText(micrometres ? tr("%L1 µm/pixel").arg(*micrometres, 0, 'g', 4)
                                        : tr("pixel size unknown"));
    }

    /// @param scale  Pixels of the screen for one of the image.
    void showZoom(double scale) { zoom_->setText(tr("%1 %").arg(100 * scale, 0, 'f', 0)); }

    /// @param framesPerSecond  None hides it.
    void showFrameRate(std::optional<double> framesPerSecond, std::uint64_t dropped) {
        rate_->setText(
            framesPerSecond
                ? tr("%L1 frames/s · %2 dropped").arg(*framesPerSecond, 0, 'f', 1).arg(dropped)
                : QString());
    }

private:
    QLabel *intensities_ = new QLabel(this), *pixelSize_ = new QLabel(this),
           *zoom_ = new QLabel(this), *rate_ = new QLabel(this);
};

} // namespace lumetra
