#include "apps/viewer/course_view.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace apps {
namespace {

const QColor stageColours[Pace::stages] = {"#7a5cc4", "#3d7fc9", "#33a089", "#d9a441", "#c9605a"};

} // namespace

CourseView::CourseView(const Statistics& statistics, QWidget* parent)
    : QWidget(parent), statistics_(statistics) {
    setAccessibleName(QStringLiteral("Milliseconds of each stage over the last minute"));
}

int CourseView::legendWidth() const {
    return fontMetrics().height() +
           fontMetrics().horizontalAdvance(QStringLiteral("composite  00.00 ms"));
}

QSize CourseView::minimumSizeHint() const {
    return {2 * legendWidth(), (Pace::stages + 2) * fontMetrics().height()};
}

void CourseView::setBudget(double milliseconds) {
    budget_ = milliseconds;
    update();
}

void CourseView::drawStages(QPainter& painter, QRectF box, double scale) const {
    const auto& course = statistics_.course();
    const double step = box.width() / (Statistics::kept - 1);
    const double first = box.right() - step * static_cast<double>(course.size() - 1);
    std::vector<double> below(course.size(), 0);
    for (std::size_t stage = 0; stage < Pace::stages; ++stage) {
        QPolygonF area;
        for (std::size_t i = course.size(); i-- > 0;)
            area << QPointF(first + step * static_cast<double>(i), box.bottom() - below[i] * scale);
        for (std::size_t i = 0; i < course.size(); ++i) {
            below[i] += course[i].milliseconds[stage];
            area << QPointF(first + step * static_cast<double>(i), box.bottom() - below[i] * scale);
        }
        painter.setBrush(stageColours[stage]);
        painter.drawPolygon(area);
    }
}

void CourseView::drawLegend(QPainter& painter, QRectF box) const {
    const Pace pace = statistics_.course().empty() ? Pace{} : statistics_.course().back();
    const double height =
        std::min<double>(box.height() / (Pace::stages + 1), painter.fontMetrics().height());
    QRectF row(box.left(), box.top(), box.width(), height);
    const auto write = [&](const QString& name, double milliseconds) {
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(row.adjusted(height, 0, 0, 0), Qt::AlignVCenter, name);
        painter.drawText(row, Qt::AlignVCenter | Qt::AlignRight,
                         QStringLiteral("%1 ms").arg(milliseconds, 0, 'f', 2));
        row.translate(0, height);
    };
    for (std::size_t stage = Pace::stages; stage-- > 0;) {
        painter.fillRect(QRectF(row.left(), row.top() + height * 0.25, height / 2, height / 2),
                         stageColours[stage]);
        write(QString::fromLatin1(Pace::names[stage]), pace.milliseconds[stage]);
    }
    write(QStringLiteral("together"), pace.sum());
}

void CourseView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box = QRectF(rect()).adjusted(10, 8, -legendWidth() - 24, -8);
    double highest = 0;
    for (const Pace& pace : statistics_.course())
        highest = std::max(highest, pace.sum());
    const double top = std::max(highest * 1.2, 10.0);
    painter.fillRect(box, palette().color(QPalette::Base));
    painter.setPen(Qt::NoPen);
    drawStages(painter, box, box.height() / top);
    painter.setPen(QPen(palette().color(QPalette::Text), 1, Qt::DashLine));
    if (budget_ <= top)
        painter.drawLine(QLineF(box.left(), box.bottom() - box.height() * budget_ / top,
                                box.right(), box.bottom() - box.height() * budget_ / top));
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(box.adjusted(6, 4, -6, -4), Qt::AlignTop | Qt::AlignLeft,
                     QStringLiteral("%1 ms a frame").arg(top, 0, 'f', 0));
    painter.drawText(box.adjusted(6, 4, -6, -4), Qt::AlignBottom | Qt::AlignLeft,
                     QStringLiteral("a minute ago"));
    painter.drawText(box.adjusted(6, 4, -6, -4), Qt::AlignBottom | Qt::AlignRight,
                     QStringLiteral("now"));
    drawLegend(painter, QRectF(box.right() + 14, box.top(), legendWidth(), box.height()));
}

} // namespace apps
