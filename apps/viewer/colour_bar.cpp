#include "apps/viewer/colour_bar.h"

#include <QPainter>

#include <cmath>

namespace apps {
namespace {

constexpr int margin = 8, barWidth = 16;

} // namespace

ColourBar::ColourBar(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    setAccessibleName(QStringLiteral("Colours and the samples they stand for"));
}

QSize ColourBar::sizeHint() const {
    return {4 * margin + barWidth + fontMetrics().horizontalAdvance(QStringLiteral("65535")), 200};
}

void ColourBar::setTable(const QVector<QColor>& colours) {
    colours_ = colours;
    update();
}

void ColourBar::setRange(LevelRange range, double gamma) {
    range_ = range;
    gamma_ = gamma;
    update();
}

void ColourBar::paintEvent(QPaintEvent* /*event*/) {
    constexpr int marks = 5;
    QPainter painter(this);
    const int letter = painter.fontMetrics().height();
    const QRect bar(margin, letter, barWidth, height() - 2 * letter);
    painter.drawImage(bar, tablePreview(colours_, {256, 1}).transformed(QTransform().rotate(-90)));
    for (int i = 0; i < marks; ++i) {
        const double share = double(i) / (marks - 1);
        const double sample = range_.low + (range_.high - range_.low) * std::pow(share, 1 / gamma_);
        const int y = bar.bottom() - static_cast<int>(std::lround(share * bar.height()));
        painter.drawLine(bar.right() + 1, y, bar.right() + 5, y);
        painter.drawText(QRect(bar.right() + margin, y - letter / 2, width(), letter),
                         Qt::AlignVCenter, QString::number(std::lround(sample)));
    }
}

QImage tablePreview(const QVector<QColor>& colours, QSize size) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::black);
    for (int x = 0; x < size.width() && !colours.isEmpty(); ++x) {
        const auto i = qint64{x} * colours.size() / size.width();
        for (int y = 0; y < size.height(); ++y)
            image.setPixel(x, y, colours[static_cast<int>(i)].rgb());
    }
    return image;
}

} // namespace apps
