#include "apps/viewer/level_editor.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace lumetra {
namespace {

constexpr double handleSize = 7;

} // namespace

LevelEditor::LevelEditor(QWidget* parent) : QWidget(parent) {
    setAccessibleName(tr("Histogram with black and white level"));
    setToolTip(tr("Drag the handles to set black and white level"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::MinimumExpanding);
}

void LevelEditor::setStatistics(const ChannelStatistics& statistics) {
    statistics_ = statistics;
    update();
}

void LevelEditor::setLevels(ContrastLimits levels, double gamma) {
    levels_ = levels;
    gamma_ = gamma;
    update();
}

void LevelEditor::setColour(const QColor& colour) {
    colour_ = colour;
    update();
}

QRectF LevelEditor::box() const {
    return QRectF(rect()).adjusted(handleSize + 1, 2, -handleSize - 1, -2 * handleSize);
}

/// The axis of the curve, or a longer one if a level lies beyond its end.
int LevelEditor::axis() const {
    return std::max(statistics_.axis, largestOf(significantBits(levels_.high)));
}

double LevelEditor::xOf(int value) const { return box().left() + box().width() * value / axis(); }

int LevelEditor::valueAt(double x) const {
    const double share = (x - box().left()) / std::max(box().width(), 1.0);
    return static_cast<int>(std::lround(std::clamp(share, 0.0, 1.0) * axis()));
}

/// What the pixel values between the levels become, drawn as a line.
QPolygonF LevelEditor::rise() const {
    constexpr int steps = 32;
    const QRectF area = box();
    QPolygonF line;
    line << area.bottomLeft();
    for (int i = 0; i <= steps; ++i) {
        const double share = double(i) / steps;
        const double value = levels_.low + share * (levels_.high - levels_.low);
        line << QPointF(area.left() + area.width() * value / axis(),
                        area.bottom() - area.height() * std::pow(share, gamma_));
    }
    return line << area.topRight();
}

void LevelEditor::drawHandle(QPainter& painter, int value, const QColor& fill) const {
    const QPointF tip(xOf(value), box().bottom());
    painter.setPen(QPen(palette().color(QPalette::Text), 1));
    painter.setBrush(fill);
    painter.drawPolygon(QPolygonF() << tip << tip + QPointF(handleSize, 1.8 * handleSize)
                                    << tip + QPointF(-handleSize, 1.8 * handleSize));
}

void LevelEditor::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF area = box();
    painter.fillRect(area, QColor(0x1b, 0x1c, 0x1e));
    const double width =
        area.width() * (statistics_.axis + 1) / (axis() + 1) / ChannelStatistics::bins;
    QPolygonF outline;
    outline << area.bottomLeft();
    double x = area.left();
    for (const float height : statistics_.curve) {
        const double y = area.bottom() - area.height() * 0.95 * double{height};
        outline << QPointF(x, y) << QPointF(x + width, y);
        x += width;
    }
    outline << QPointF(x, area.bottom());
    QColor fill = colour_;
    fill.setAlphaF(0.75F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawPolygon(outline);

    painter.setClipRect(area);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(255, 255, 255, 200), 1.4));
    painter.drawPolyline(rise());
    painter.setClipping(false);
    drawHandle(painter, levels_.low, Qt::black);
    drawHandle(painter, levels_.high, Qt::white);
}

void LevelEditor::mousePressEvent(QMouseEvent* event) {
    const double x = event->pos().x();
    const double fromBlack = std::abs(x - xOf(levels_.low));
    const double fromWhite = std::abs(x - xOf(levels_.high));
    // Of two handles in one place, the one that can move to this side.
    const bool isWhite = fromWhite < fromBlack || (fromWhite == fromBlack && x > xOf(levels_.low));
    dragged_ = isWhite ? Handle::white : Handle::black;
    mouseMoveEvent(event);
}

void LevelEditor::mouseMoveEvent(QMouseEvent* event) {
    const int value = valueAt(event->pos().x());
    if (dragged_ == Handle::black)
        emit levelsMoved({std::min(value, levels_.high - 1), levels_.high});
    else if (dragged_ == Handle::white)
        emit levelsMoved({levels_.low, std::max(value, levels_.low + 1)});
}

void LevelEditor::mouseReleaseEvent(QMouseEvent* /*event*/) { dragged_ = Handle::none; }

} // namespace lumetra
