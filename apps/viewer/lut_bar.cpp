#include "apps/viewer/lut_bar.h"

#include "apps/common/text.h"

#include <QPainter>

#include <cmath>

namespace lumetra {
namespace {

constexpr int margin = 8, barWidth = 16;

} // namespace

LutBar::LutBar(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    setAccessibleName(tr("LUT with pixel values"));
}

QSize LutBar::sizeHint() const {
    return {4 * margin + barWidth + fontMetrics().horizontalAdvance(QStringLiteral("65535")), 200};
}

void LutBar::setLut(const Colormap& colours, ContrastLimits range, double gamma) {
    colours_ = colours;
    range_ = range;
    gamma_ = gamma;
    update();
}

double LutBar::valueAt(double share) const {
    return range_.low + (range_.high - range_.low) * std::pow(share, 1 / gamma_);
}

void LutBar::paintEvent(QPaintEvent* /*event*/) {
    constexpr int marks = 5;
    QPainter painter(this);
    const int letter = painter.fontMetrics().height();
    const QRect bar(margin, letter, barWidth, height() - 2 * letter);
    painter.drawImage(bar, lutPreview(colours_, {256, 1}).transformed(QTransform().rotate(-90)));
    for (int i = 0; i < marks; ++i) {
        const double share = double(i) / (marks - 1);
        const int y = bar.bottom() - static_cast<int>(std::lround(share * bar.height()));
        painter.drawLine(bar.right() + 1, y, bar.right() + 5, y);
        painter.drawText(QRect(bar.right() + margin, y - letter / 2, width(), letter),
                         Qt::AlignVCenter, QString::number(std::lround(valueAt(share))));
    }
}

QImage lutPreview(const Colormap& colours, QSize size) {
    QImage image(size, QImage::Format_RGB32);
    for (int x = 0; x < size.width(); ++x) {
        const auto i =
            static_cast<std::size_t>(x) * colours.size() / static_cast<std::size_t>(size.width());
        for (int y = 0; y < size.height(); ++y)
            image.setPixel(x, y, toQt(colours[i]).rgb());
    }
    return image;
}

} // namespace lumetra
