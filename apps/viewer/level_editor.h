// Black and white level as two handles on the histogram.
#pragma once

#include "apps/viewer/channel_statistics.h"

#include <QColor>
#include <QWidget>

namespace lumetra {

/// Draws how often each pixel value occurs, and the line from black to white above it.
class LevelEditor : public QWidget {
    Q_OBJECT
public:
    explicit LevelEditor(QWidget* parent = nullptr);

    /// @param levels  The channel's, in numbers.
    void setChannel(const Channel& channel, ContrastLimits levels,
                    const ChannelStatistics& statistics);

    /// Whether the height is the logarithm of the number of pixels, or the number itself.
    void setLogarithmic(bool on);

    /// Where a pixel value lies in the widget, and the other way round.
    double xOf(int value) const;
    int valueAt(double x) const;

    QSize sizeHint() const override { return {260, 120}; }
    QSize minimumSizeHint() const override { return {160, 80}; }

signals:
    /// The user moved a handle.
    void levelsMoved(lumetra::ContrastLimits levels);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    enum class Handle { none, black, white };

    QRectF box() const;
    ContrastLimits axis() const;
    double shareOfAxis(double value) const;
    QPolygonF outline() const;
    void drawHandle(QPainter& painter, int value, const QColor& fill) const;
    QPolygonF rise() const;

    ChannelStatistics statistics_;
    ContrastLimits levels_;
    double gamma_ = 1;
    QColor colour_ = Qt::white;
    bool isLogarithmic_ = true;
    Handle dragged_ = Handle::none;
};

} // namespace lumetra
