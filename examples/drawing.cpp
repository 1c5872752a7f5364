#include "drawing.h"

#include <algorithm>

#include <QFontMetricsF>
#include <QLoggingCategory>

#include "program.h"

namespace {

QImage toImage(const cv::Mat& image) {
    cv::Mat display8;
    image.convertTo(display8, CV_8U, image.depth() == CV_16U ? 1 / 256.0 : 1);
    const auto format =
        display8.channels() == 1 ? QImage::Format_Grayscale8 : QImage::Format_BGR888;
    // The QImage does not own the pixels, hence the copy.
    return QImage(display8.data, display8.cols, display8.rows, static_cast<int>(display8.step[0]),
                  format)
        .copy();
}

/// Rounds to 32 levels of each colour, which halves the size of the file; in small images of a
/// noisy specimen the difference is not visible.
void roundLevels(QImage& image) {
    for (int y = 0; y < image.height(); ++y) {
        auto* line = image.scanLine(y);
        std::transform(line, line + 3 * image.width(), line,
                       [](uchar level) { return static_cast<uchar>(level & 0xF8); });
    }
}

} // namespace

void drawWithoutDisplay() {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // Qt warns about a missing runtime directory where nobody is logged in; drawing needs none.
    QLoggingCategory::setFilterRules("default.warning=false");
}

QImage emptyChart(int width, int height) {
    QImage chart(width, height, QImage::Format_RGB32);
    chart.fill(paper);
    return chart;
}

void write(QPainter& painter, const QRectF& box, const QString& text, int height,
           const QColor& colour, bool bold) {
    constexpr int narrowest = 60; // percent; still readable
    QFont font("DejaVu Sans");
    font.setPixelSize(height);
    font.setBold(bold);
    font.setHintingPreference(QFont::PreferFullHinting);
    for (int percent = 100; percent >= narrowest; percent -= 2) {
        font.setStretch(percent);
        if (QFontMetricsF(font).horizontalAdvance(text) <= box.width())
            break;
    }
    painter.setFont(font);
    painter.setPen(colour);
    painter.drawText(box, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     QFontMetricsF(font).elidedText(text, Qt::ElideRight, box.width()));
}

void drawImage(QPainter& painter, QPoint corner, int side, const LabelledImage& shown) {
    // Scaled before it is drawn, since the painter would skip pixels.
    QImage image = toImage(shown.image)
                       .scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation)
                       .convertToFormat(QImage::Format_RGB888);
    roundLevels(image);
    painter.drawImage(corner + QPoint((side - image.width()) / 2, (side - image.height()) / 2),
                      image);
    write(painter, QRectF(corner.x(), corner.y() + side + 2, side, 18), shown.title, 12, ink, true);
    write(painter, QRectF(corner.x(), corner.y() + side + 19, side, 14), shown.explanation, 10,
          paleInk);
}

void saveChart(const QImage& chart, const std::string& file) {
    constexpr int smallest =
        0; // for PNG, quality 0 gives the smallest file; the pixels are the same
    if (!chart.save(QString::fromStdString(file), nullptr, smallest))
        throw Error("cannot write an image to " + file);
}
