/// @file
/// What the charts of the examples share.

#ifndef LUMETRA_EXAMPLES_DRAWING_H
#define LUMETRA_EXAMPLES_DRAWING_H

#include <string>

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QString>

#include <opencv2/core/mat.hpp>

inline const QColor paper(17, 19, 24), ink(232, 234, 238), paleInk(142, 149, 160);

/// Lets Qt draw without a display, unless the environment names a platform. Call it before the
/// application object is made.
void drawWithoutDisplay();

/// An empty chart of so many pixels.
QImage emptyChart(int width, int height);

/// Writes a line of text `height` pixels high, left-aligned in the box and vertically centred. Text
/// that is too long is condensed, then shortened with an ellipsis.
void write(QPainter& painter, const QRectF& box, const QString& text, int height,
           const QColor& colour, bool bold = false);

/// An image (8 or 16 bits, one or three channels) with two lines of text below it.
struct LabelledImage {
    QString title, explanation;
    cv::Mat image;
};

/// Height of the two lines below an image.
constexpr int label = 36;

/// Draws an image into a square of `side` pixels, with its two lines below.
void drawImage(QPainter& painter, QPoint corner, int side, const LabelledImage& shown);

/// @throws Error if the file cannot be written.
void saveChart(const QImage& chart, const std::string& file);

#endif
