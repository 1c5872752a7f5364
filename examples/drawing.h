/// @file
/// What the drawn charts of the examples have in common.

#ifndef LUMETRA_EXAMPLES_DRAWING_H
#define LUMETRA_EXAMPLES_DRAWING_H

#include <string>

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QString>

#include <opencv2/core/mat.hpp>

inline const QColor paper(17, 19, 24), ink(232, 234, 238), paleInk(142, 149, 160);

/// Lets Qt draw without a display, unless the environment names a platform. To be called before
/// the application object is made.
void drawWithoutDisplay();

/// An empty chart of so many pixels.
QImage emptyChart(int width, int height);

/// Writes a line of text `height` pixels high, left in the box and vertically centred; squeezed
/// where it is too long, and cut off if even that does not help.
void write(QPainter& painter, const QRectF& box, const QString& text, int height,
           const QColor& colour, bool bold = false);

/// A picture (8 or 16 bits, one or three channels) with two lines of text to go below it.
struct LabelledPicture {
    QString title, explanation;
    cv::Mat picture;
};

/// How high the two lines below a picture are.
constexpr int label = 36;

/// Draws a picture into a square of `side` pixels and its two lines below.
void drawPicture(QPainter& painter, QPoint corner, int side, const LabelledPicture& shown);

/// @throws Failure if the file cannot be written.
void saveChart(const QImage& chart, const std::string& file);

#endif
