// The picture, as large as the user wants it.
#pragma once

#include <QWidget>

#include <opencv2/core/mat.hpp>

namespace apps {

/// Shows a picture without a copy of it, fitted to the window, at 1:1 of the screen's pixels, or
/// anywhere between, moved by the mouse.
class Canvas : public QWidget {
    Q_OBJECT
public:
    explicit Canvas(QWidget* parent = nullptr);

    /// Paints a picture at once. It is looked at until the next one comes.
    /// @param screen   CV_8UC4, as QImage::Format_RGB32 has it; empty for none.
    /// @param isSmooth  Paint smaller pictures smoothly, for which moving ones leave no time.
    void setPicture(const cv::Mat& screen, bool isSmooth);

    /// What is said where there is no picture.
    void setHint(const QString& text);

    void fit();
    void actualSize();
    void zoom(double factor);

    /// Pixels of the screen for one of the picture.
    double scale() const { return scale_ * devicePixelRatioF(); }
    bool isFitted() const { return isFitted_; }

    /// The picture's pixel below a point of the widget.
    QPoint pixelAt(QPointF point) const;

signals:
    /// The mouse is over this pixel of the picture, or over none: (-1, -1).
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
    void paintPicture(QPainter& painter) const;
    void setScale(double scale, QPointF fixed);
    void keepInSight();
    QSizeF pictureSize() const;
    QRectF pictureRect() const;

    cv::Mat screen_;
    QString hint_;
    QPointF corner_; ///< Where the picture's first pixel is in the widget.
    QPointF grabbed_;
    double scale_ = 1; ///< Widget units for one pixel.
    bool isFitted_ = true, isSmooth_ = false, isPanning_ = false;
};

} // namespace apps
