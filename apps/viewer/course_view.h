// The milliseconds of each stage over the last minute.
#pragma once

#include "apps/viewer/statistics.h"

#include <QWidget>

namespace apps {

/// Draws the stages on top of one another, against the time that one frame has.
class CourseView : public QWidget {
    Q_OBJECT
public:
    explicit CourseView(const Statistics& statistics, QWidget* parent = nullptr);

    /// @param milliseconds  What one frame may take.
    void setBudget(double milliseconds);

    QSize sizeHint() const override { return minimumSizeHint(); }
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void drawStages(QPainter& painter, QRectF box, double scale) const;
    void drawLegend(QPainter& painter, QRectF box) const;
    int legendWidth() const;

    const Statistics& statistics_;
    double budget_ = 1000.0 / 30;
};

} // namespace apps
