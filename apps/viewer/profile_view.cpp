#include "apps/viewer/profile_view.h"

#include "apps/common/annotation.h"
#include "apps/common/text.h"

#include <QCoreApplication>
#include <QPainter>
#include <QStringList>

#include <algorithm>
#include <cstdlib>

namespace lumetra {

ProfileView::ProfileView(QWidget* parent) : QWidget(parent) {
    setAccessibleName(tr("Pixel values along a line"));
}

void ProfileView::setValues(const std::vector<std::vector<int>>& values,
                            const std::vector<Channel>& channels) {
    values_ = values;
    channels_ = channels;
    update();
}

void ProfileView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), QColor(0x1b, 0x1c, 0x1e));
    painter.setPen(Qt::lightGray);
    if (values_.size() < 2) {
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap,
                         tr("Draw a line on the image with the mouse"));
        return;
    }
    int highest = 1;
    for (const auto& values : values_)
        for (const int value : values)
            highest = std::max(highest, value);
    const int letter = painter.fontMetrics().height();
    const QRectF area = QRectF(rect()).adjusted(8, letter / 2.0, -8, -letter);
    for (std::size_t channel = 0; channel < channels_.size(); ++channel) {
        QPolygonF curve;
        for (std::size_t i = 0; i < values_.size(); ++i)
            if (channel < values_[i].size())
                curve << QPointF(area.left() + area.width() * static_cast<double>(i) /
                                                   static_cast<double>(values_.size() - 1),
                                 area.bottom() - area.height() * values_[i][channel] / highest);
        painter.setPen(QPen(toQt(channels_[channel].colour), 1.5));
        if (channels_[channel].visible)
            painter.drawPolyline(curve);
    }
    painter.setPen(Qt::lightGray);
    painter.drawLine(area.bottomLeft(), area.bottomRight());
    painter.drawText(QPointF(area.left(), area.top() + letter / 2.0), QString::number(highest));
    painter.drawText(rect().adjusted(8, 0, -8, 0), Qt::AlignRight | Qt::AlignBottom,
                     tr("%1 pixels").arg(values_.size()));
}

std::vector<QPoint> pixelsOf(QLine line) {
    const int steps = std::max(std::abs(line.dx()), std::abs(line.dy()));
    std::vector<QPoint> pixels;
    for (int i = 0; i <= steps; ++i) {
        const double share = steps > 0 ? double(i) / steps : 0;
        pixels.push_back((line.p1() + QPointF(line.dx(), line.dy()) * share).toPoint());
    }
    return pixels;
}

QString intensityTable(const std::vector<QPoint>& pixels,
                       const std::vector<std::vector<int>>& values,
                       const std::vector<Channel>& channels) {
    QStringList heading{QStringLiteral("x"), QStringLiteral("y")};
    for (const Channel& channel : channels)
        heading << panelName(channel).replace(QLatin1Char('\t'), QLatin1Char(' '));
    QStringList lines{heading.join(QLatin1Char('\t'))};
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        if (values[i].empty())
            continue;
        QStringList cells{QString::number(pixels[i].x()), QString::number(pixels[i].y())};
        for (const int value : values[i])
            cells << QString::number(value);
        lines << cells.join(QLatin1Char('\t'));
    }
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

} // namespace lumetra
