// The image, as large as the user wants it.
#pragma once

#include <QWidget>

#include <opencv2/core/mat.hpp>

namespace lumetra {

/// Shows an image without a copy of it, fitted to the window, at 1:1 of the screen's pixels, or at
/// any other scale, panned by the mouse.
class Canvas : public QWidget {
    Q_OBJECT
public:
    explicit Canvas(QWidget* parent = nullptr);

    /// Paints an image at once. Its memory is read until the next one comes.
    /// @param screen   CV_8UC4, as QImage::Format_RGB32 has it; empty for none.
    /// @param isSmooth  Paint reduced images smoothly, for which live ones leave no time.
    void setImage(const cv::Mat& screen, bool isSmooth);

    void fit();
    void actualSize();
    void zoom(double factor);

    /// Pixels of the screen for one of the image.
    double scale() const { return scale_ * devicePixelRatioF(); }

    /// The image's pixel below a point of the widget.
    QPoint pixelAt(QPointF point) const;

signals:
    /// The mouse is over this pixel of the image, or over none: (-1, -1).
    void hovered(QPoint pixel);
    void scaleChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void paintImage(QPainter& painter) const;
    void setScale(double scale, QPointF fixed);
    void keepInSight();
    QSizeF imageSize() const;
    QRectF imageRect() const;

    cv::Mat screen_;
    QPointF corner_; ///< Where the image's first pixel is in the widget.
    QPointF grabbed_;
    double scale_ = 1; ///< Widget units for one pixel.
    bool isFitted_ = true, isSmooth_ = false, isPanning_ = false;
};

} // namespace lumetra
