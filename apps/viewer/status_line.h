// The line below the image.
#pragma once

#include "apps/common/channel_spec.h"

#include <QStatusBar>

#include <optional>
#include <vector>

class QLabel;

namespace lumetra {

/// Pixel values below the mouse, gammas, zoom, and the rate of frames.
class StatusLine : public QStatusBar {
    Q_OBJECT
public:
    explicit StatusLine(QWidget* parent = nullptr);

    /// @param intensities  Of each channel; none where the mouse is outside the image.
    void showIntensities(QPoint pixel, const std::vector<int>& intensities,
                         const std::vector<Channel>& channels);

    /// The gammas other than 1, since they make intensities incomparable.
    void showGammas(const std::vector<Channel>& channels);

    /// @param scale  Pixels of the screen for one of the image.
    void showZoom(double scale);

    /// @param framesPerSecond  None hides it.
    void showFrameRate(std::optional<double> framesPerSecond, std::uint64_t dropped);

private:
    QLabel* addLabel(int stretch);

    QLabel *intensities_, *gammas_, *zoom_, *rate_;
};

} // namespace lumetra
