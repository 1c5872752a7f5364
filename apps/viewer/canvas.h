// The image, as large as the user wants it.
#pragma once

#include <QLine>
#include <QWidget>

#include <opencv2/core/mat.hpp>

#include <vector>

namespace lumetra {

/// Shows an image without a copy of it, fitted to the window, at 1:1 of the screen's pixels, or at
/// any other scale, panned by the mouse. Several images of one size stand side by side, all at the
/// same scale and position.
class Canvas : public QWidget {
    Q_OBJECT
public:
    explicit Canvas(QWidget* parent = nullptr);

    /// Paints images at once. Their memory is read until the next ones come.
    /// @param screens   CV_8UC4 of one size, as QImage::Format_RGB32 has it; may be none.
    /// @param isSmooth  Paint reduced images smoothly, for which live ones leave no time.
    void setImages(const std::vector<cv::Mat>& screens, bool isSmooth);

    /// Whether the left button draws a line in place of moving the image. Off removes the line.
    void drawLines(bool on);

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
    /// The user draws a line, in pixels of the image.
    void lineDrawn(QLine line);

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
    enum class Drag { none, image, line };

    cv::Size imageSize() const { return screens_.empty() ? cv::Size() : screens_[0].size(); }
    int count() const { return static_cast<int>(screens_.size()); }
    int columns() const;
    QRectF cell(int number) const;
    int cellAt(QPointF point) const;
    QRectF imageRect(int number) const;
    double fittingScale(int columns) const;
    QPoint pixelPosition(QPointF point) const;
    void paintCell(QPainter& painter, int number) const;
    void setScale(double scale, QPointF fixed);
    void place();
    void keepInSight();
    void drawLineTo(QPointF point);

    std::vector<cv::Mat> screens_;
    QPointF corner_; ///< Where the image's first pixel is in each cell.
    QPointF grabbed_;
    double scale_ = 1; ///< Widget units for one pixel.
    bool isFitted_ = true, isSmooth_ = false, drawsLines_ = false;
    Drag drag_ = Drag::none;
    QLine line_; ///< In pixels of the image.
};

} // namespace lumetra
