#include "apps/viewer/level_editor.h"

#include "apps/common/text.h"

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

void LevelEditor::setChannel(const Channel& channel, ContrastLimits levels,
                             const ChannelStatistics& statistics) {
    levels_ = levels;
    gamma_ = channel.gamma;
    colour_ = toQt(channel.colour);
    statistics_ = statistics;
    update();
}

void LevelEditor::setLogarithmic(bool on) {
    isLogarithmic_ = on;
    update();
}

QRectF LevelEditor::box() const {
    return QRectF(rect()).adjusted(handleSize + 1, 2, -handleSize - 1, -2 * handleSize);
}

/// The axis of the curve, or a longer one if a level lies beyond its end.
ContrastLimits LevelEditor::axis() const {
    return {std::min(statistics_.axis.low, levels_.low),
            std::max(statistics_.axis.high, levels_.high)};
}

double LevelEditor::shareOfAxis(double value) const {
    const ContrastLimits ends = axis();
    return (value - ends.low) / (ends.high - ends.low);
}

double LevelEditor::xOf(int value) const {
    return box().left() + box().width() * shareOfAxis(value);
}

int LevelEditor::valueAt(double x) const {
    const double share = (x - box().left()) / std::max(box().width(), 1.0);
    const ContrastLimits ends = axis();
    return ends.low +
           static_cast<int>(std::lround(std::clamp(share, 0.0, 1.0) * (ends.high - ends.low)));
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
        line << QPointF(area.left() + area.width() * shareOfAxis(value),
                        area.bottom() - area.height() * std::pow(share, gamma_));
    }
    return line << area.topRight();
}

/// The curve as steps, one for each part of the axis.
QPolygonF LevelEditor::outline() const {
    const QRectF area = box();
    const auto height = [&](float count) {
        return isLogarithmic_ ? std::log1p(double{count}) : double{count};
    };
    const auto& curve = statistics_.curve;
    const double highest = std::max(height(*std::max_element(curve.begin(), curve.end())), 1e-6);
    const ContrastLimits ends = statistics_.axis;
    const double width = double(ends.high - ends.low + 1) / ChannelStatistics::bins;
    const auto xOfValue = [&](double value) {
        return std::min(area.left() + area.width() * shareOfAxis(value), area.right());
    };
    QPolygonF outline;
    outline << QPointF(xOfValue(ends.low), area.bottom());
    for (std::size_t i = 0; i < curve.size(); ++i) {
        const double y = area.bottom() - area.height() * 0.95 * height(curve[i]) / highest;
        const double first = ends.low + width * static_cast<double>(i);
        outline << QPointF(xOfValue(first), y) << QPointF(xOfValue(first + width), y);
    }
    return outline << QPointF(xOfValue(ends.high), area.bottom());
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
    QColor fill = colour_;
    fill.setAlphaF(0.75F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawPolygon(outline());

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
