// Black and white level as two handles on the histogram.
#pragma once

#include "apps/viewer/measure.h"

#include <QColor>
#include <QWidget>

namespace apps {

/// Draws how often each sample occurs, with logarithmic height, and the line from black to white
/// above it.
class LevelEditor : public QWidget {
    Q_OBJECT
public:
    explicit LevelEditor(QWidget* parent = nullptr);

    void setMeasure(const Measure& measure);
    void setLevels(LevelRange levels, double gamma);
    void setColour(const QColor& colour);

    /// Where a sample lies in the widget, and the other way round.
    double xOf(int sample) const;
    int sampleAt(double x) const;

    QSize sizeHint() const override { return {260, 120}; }
    QSize minimumSizeHint() const override { return {160, 80}; }

signals:
    /// The user moved a handle.
    void levelsMoved(apps::LevelRange levels);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    enum class Handle { none, black, white };

    QRectF box() const;
    int axis() const;
    void drawHandle(QPainter& painter, int sample, const QColor& fill) const;
    QPolygonF rise() const;

    Measure measure_;
    LevelRange levels_;
    double gamma_ = 1;
    QColor colour_ = Qt::white;
    Handle dragged_ = Handle::none;
};

} // namespace apps
