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

void Canvas::setImages(const std::vector<cv::Mat>& screens, bool isSmooth) {
    const cv::Size before = imageSize();
    const int countBefore = count();
    screens_ = screens;
    isSmooth_ = isSmooth;
    if (count() != countBefore || imageSize() != before)
        place();
    repaint(); // at once, so that every image that was taken is seen
}

void Canvas::drawLines(bool on) {
    drawsLines_ = on;
    line_ = {};
    setCursor(on ? Qt::CrossCursor : Qt::ArrowCursor);
    update();
}

/// The scale at which all images are seen whole in so many columns.
double Canvas::fittingScale(int columns) const {
    const int rows = (std::max(count(), 1) + columns - 1) / columns;
    const cv::Size size = imageSize();
    return std::min(double(width()) / columns / std::max(size.width, 1),
                    double(height()) / rows / std::max(size.height, 1));
}

/// The columns of images that show them largest.
int Canvas::columns() const {
    int best = 1;
    for (int columns = 2; columns <= count(); ++columns)
        best = fittingScale(columns) > fittingScale(best) ? columns : best;
    return best;
}

/// The part of the widget that shows an image, in whole units.
QRectF Canvas::cell(int number) const {
    const int across = columns(), down = (std::max(count(), 1) + across - 1) / across;
    const int x = number % across, y = number / across;
    const int gap = count() > 1 ? 2 : 0;
    const QPoint first(width() * x / across, height() * y / down);
    const QPoint next(width() * (x + 1) / across, height() * (y + 1) / down);
    return {QPointF(first), QPointF(next - QPoint(gap, gap))};
}

int Canvas::cellAt(QPointF point) const {
    for (int i = 0; i < count(); ++i)
        if (cell(i).contains(point))
            return i;
    return 0;
}

/// After the images or the widget have another size.
void Canvas::place() { isFitted_ ? fit() : keepInSight(); }

void Canvas::fit() {
    isFitted_ = true;
    const cv::Size size = imageSize();
    const QSizeF room = cell(0).size();
    if (!size.empty())
        scale_ = std::min(room.width() / size.width, room.height() / size.height);
    keepInSight();
}

void Canvas::actualSize() {
    isFitted_ = false;
    setScale(1 / devicePixelRatioF(), cell(0).center());
}

void Canvas::zoom(double factor) { setScale(scale_ * factor, cell(0).center()); }

/// @param fixed  The point of the widget below which the image stays.
void Canvas::setScale(double scale, QPointF fixed) {
    constexpr double smallest = 1 / 64.0, largest = 64;
    scale = std::clamp(scale, smallest, largest);
    fixed -= cell(cellAt(fixed)).topLeft();
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
    const cv::Size size = imageSize();
    const QSizeF room = cell(0).size();
    corner_ = {keep(corner_.x(), size.width * scale_, room.width()),
               keep(corner_.y(), size.height * scale_, room.height())};
    update();
    emit scaleChanged();
}

/// The part of the widget that an image would cover if its cell were large enough. It begins with a
/// whole pixel of the screen: within one, 1:1 would show some pixels twice and others not at all.
QRectF Canvas::imageRect(int number) const {
    const double unit = devicePixelRatioF();
    const QPointF corner = cell(number).topLeft() + corner_;
    return {QPointF(std::round(corner.x() * unit), std::round(corner.y() * unit)) / unit,
            QSizeF(imageSize().width, imageSize().height) * scale_};
}

/// The pixel below a point, if the image went on beyond its sides.
QPoint Canvas::pixelPosition(QPointF point) const {
    const QPointF pixel = (point - imageRect(cellAt(point)).topLeft()) / scale_;
    return {static_cast<int>(std::floor(pixel.x())), static_cast<int>(std::floor(pixel.y()))};
}

QPoint Canvas::pixelAt(QPointF point) const {
    const QPoint pixel = pixelPosition(point);
    const bool isInside = cv::Rect({0, 0}, imageSize()).contains({pixel.x(), pixel.y()});
    return isInside ? pixel : QPoint(-1, -1);
}

void Canvas::paintCell(QPainter& painter, int number) const {
    const cv::Mat& screen = screens_[static_cast<std::size_t>(number)];
    const QImage image(screen.data, screen.cols, screen.rows, static_cast<int>(screen.step),
                       QImage::Format_RGB32);
    const QRectF whole = imageRect(number), target = whole & cell(number);
    const QRectF source((target.topLeft() - whole.topLeft()) / scale_, target.size() / scale_);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, isSmooth_ && scale() < 1);
    painter.drawImage(target, image, source);
    if (line_.isNull())
        return;
    const QPointF middle(0.5, 0.5); // of a pixel
    painter.setClipRect(target);
    painter.setPen(QPen(Qt::yellow, 0)); // a pixel wide
    painter.drawLine(whole.topLeft() + (line_.p1() + middle) * scale_,
                     whole.topLeft() + (line_.p2() + middle) * scale_);
    painter.setClipping(false);
}

void Canvas::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QColor ground(0x1b, 0x1c, 0x1e); // dark in every palette, since images are
    QRegion bare(rect());
    for (int i = 0; i < count(); ++i)
        bare -= (imageRect(i) & cell(i)).toAlignedRect().adjusted(1, 1, -1, -1);
    for (const QRect& part : bare)
        painter.fillRect(part, ground);
    for (int i = 0; i < count(); ++i)
        paintCell(painter, i);
    if (!screens_.empty())
        return;
    painter.setPen(QColor(0xb8, 0xbc, 0xc4));
    painter.drawText(rect().adjusted(20, 20, -20, -20), Qt::AlignCenter | Qt::TextWordWrap,
                     tr("Drop image files here, open them with Ctrl+O,\n"
                        "or start a simulated camera with F3"));
}

void Canvas::resizeEvent(QResizeEvent* /*event*/) { place(); }

void Canvas::wheelEvent(QWheelEvent* event) {
    constexpr double notch = 120, perNotch = 1.25;
    setScale(scale_ * std::pow(perNotch, event->angleDelta().y() / notch), event->position());
    event->accept();
}

/// Draws from where the button was pressed, within the image.
void Canvas::drawLineTo(QPointF point) {
    const QPoint pixel = pixelPosition(point);
    line_.setP2({std::clamp(pixel.x(), 0, imageSize().width - 1),
                 std::clamp(pixel.y(), 0, imageSize().height - 1)});
    update();
    emit lineDrawn(line_);
}

void Canvas::mousePressEvent(QMouseEvent* event) {
    const QPointF point(event->pos());
    if (event->button() == Qt::LeftButton && drawsLines_ && pixelAt(point).x() >= 0) {
        drag_ = Drag::line;
        line_ = {pixelAt(point), pixelAt(point)};
    } else if (event->button() == Qt::LeftButton || event->button() == Qt::MiddleButton) {
        drag_ = Drag::image;
        grabbed_ = point - corner_;
        setCursor(Qt::ClosedHandCursor);
    }
}

void Canvas::mouseMoveEvent(QMouseEvent* event) {
    const QPointF point(event->pos());
    if (drag_ == Drag::image) {
        corner_ = point - grabbed_;
        keepInSight();
    } else if (drag_ == Drag::line && !screens_.empty()) {
        drawLineTo(point);
    }
    emit hovered(pixelAt(point));
}

void Canvas::mouseReleaseEvent(QMouseEvent* /*event*/) {
    drag_ = Drag::none;
    setCursor(drawsLines_ ? Qt::CrossCursor : Qt::ArrowCursor);
}

void Canvas::mouseDoubleClickEvent(QMouseEvent* /*event*/) { isFitted_ ? actualSize() : fit(); }

void Canvas::leaveEvent(QEvent* /*event*/) { emit hovered({-1, -1}); }

} // namespace lumetra
