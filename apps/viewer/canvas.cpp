#include "apps/viewer/canvas.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace lumetra {

Canvas::Canvas(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setMinimumSize(160, 120);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName(tr("Image"));
}

void Canvas::setImage(const cv::Mat& screen, bool isSmooth) {
    const bool isOtherSize = screen.size() != screen_.size();
    screen_ = screen;
    isSmooth_ = isSmooth;
    if (isOtherSize && isFitted_)
        fit();
    else if (isOtherSize)
        keepInSight();
    repaint(); // at once, so that every image that was taken is seen
}

QSizeF Canvas::imageSize() const { return QSizeF(screen_.cols, screen_.rows) * scale_; }

void Canvas::fit() {
    isFitted_ = true;
    if (!screen_.empty())
        scale_ = std::min(double(width()) / screen_.cols, double(height()) / screen_.rows);
    keepInSight();
}

void Canvas::actualSize() {
    isFitted_ = false;
    setScale(1 / devicePixelRatioF(), QRectF(rect()).center());
}

void Canvas::zoom(double factor) { setScale(scale_ * factor, QRectF(rect()).center()); }

/// @param fixed  The point of the widget below which the image stays.
void Canvas::setScale(double scale, QPointF fixed) {
    constexpr double smallest = 1 / 64.0, largest = 64;
    scale = std::clamp(scale, smallest, largest);
    corner_ = fixed - (fixed - corner_) * (scale / scale_);
    scale_ = scale;
    isFitted_ = false;
    keepInSight();
}

/// An image smaller than the widget stands in the middle; of a larger one, no side is left empty.
void Canvas::keepInSight() {
    const auto keep = [](double corner, double image, double widget) {
        if (image <= widget)
            return (widget - image) / 2;
        return std::clamp(corner, widget - image, 0.0);
    };
    const QSizeF size = imageSize();
    corner_ = {keep(corner_.x(), size.width(), width()),
               keep(corner_.y(), size.height(), height())};
    update();
    emit scaleChanged();
}

/// The image begins with a whole pixel of the screen: within one, 1:1 would show some pixels
/// twice and others not at all.
QRectF Canvas::imageRect() const {
    const double unit = devicePixelRatioF();
    const QPointF corner(std::round(corner_.x() * unit), std::round(corner_.y() * unit));
    return {corner / unit, imageSize()};
}

QPoint Canvas::pixelAt(QPointF point) const {
    const QPointF pixel = (point - imageRect().topLeft()) / scale_;
    const QPoint at(static_cast<int>(std::floor(pixel.x())),
                    static_cast<int>(std::floor(pixel.y())));
    return QRect(0, 0, screen_.cols, screen_.rows).contains(at) ? at : QPoint(-1, -1);
}

void Canvas::paintImage(QPainter& painter) const {
    const QImage image(screen_.data, screen_.cols, screen_.rows, static_cast<int>(screen_.step),
                       QImage::Format_RGB32);
    const QRectF whole = imageRect(), target = whole & QRectF(rect());
    const QRectF source((target.topLeft() - whole.topLeft()) / scale_, target.size() / scale_);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, isSmooth_ && scale() < 1);
    painter.drawImage(target, image, source);
}

void Canvas::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QColor ground(0x1b, 0x1c, 0x1e); // dark in every palette, since images are
    if (screen_.empty()) {
        painter.fillRect(rect(), ground);
        painter.setPen(QColor(0xb8, 0xbc, 0xc4));
        painter.drawText(rect().adjusted(20, 20, -20, -20), Qt::AlignCenter | Qt::TextWordWrap,
                         tr("Drop image files here, one for each channel,\nopen them with Ctrl+O,\n"
                            "or start a simulated camera with F3"));
    } else {
        const QRect covered = imageRect().toAlignedRect();
        for (const QRect& bare : QRegion(rect()).subtracted(covered.adjusted(1, 1, -1, -1)))
            painter.fillRect(bare, ground);
        paintImage(painter);
    }
}

void Canvas::resizeEvent(QResizeEvent* /*event*/) {
    if (isFitted_)
        fit();
    else
        keepInSight();
}

void Canvas::wheelEvent(QWheelEvent* event) {
    constexpr double notch = 120, perNotch = 1.25;
    setScale(scale_ * std::pow(perNotch, event->angleDelta().y() / notch), event->position());
    event->accept();
}

void Canvas::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton && event->button() != Qt::MiddleButton)
        return;
    isPanning_ = true;
    grabbed_ = QPointF(event->pos()) - corner_;
    setCursor(Qt::ClosedHandCursor);
}

void Canvas::mouseMoveEvent(QMouseEvent* event) {
    if (isPanning_) {
        corner_ = QPointF(event->pos()) - grabbed_;
        keepInSight();
    }
    emit hovered(pixelAt(event->pos()));
}

void Canvas::mouseReleaseEvent(QMouseEvent* /*event*/) {
    isPanning_ = false;
    unsetCursor();
}

void Canvas::mouseDoubleClickEvent(QMouseEvent* /*event*/) {
    if (isFitted_)
        actualSize();
    else
        fit();
}

void Canvas::leaveEvent(QEvent* /*event*/) { emit hovered({-1, -1}); }

} // namespace lumetra
