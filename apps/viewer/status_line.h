// The line below the image.
#pragma once

#include "apps/common/channel_spec.h"

#include <QStatusBar>

#include <optional>
#include <vector>

class QLabel;

namespace lumetra {

/// Pixel values below the mouse, pixel size, zoom, and the rate of frames. A message takes the
/// place of the pixel values for a while.
class StatusLine : public QStatusBar {
    Q_OBJECT
public:
    explicit StatusLine(QWidget* parent = nullptr);

    /// @param intensities  Of each channel; none where the mouse is outside the image.
    void showIntensities(QPoint pixel, const std::vector<int>& intensities,
                         const std::vector<Channel>& channels);

    /// @param micrometres  None where it is not known.
    void showPixelSize(std::optional<double> micrometres);

    /// @param scale  Pixels of the screen for one of the image.
    void showZoom(double scale);

    /// @param framesPerSecond  None hides it.
    void showFrameRate(std::optional<double> framesPerSecond, std::uint64_t dropped);

private:
    QLabel* addLabel();

    QLabel *intensities_, *pixelSize_, *zoom_, *rate_;
};

} // namespace lumetra
