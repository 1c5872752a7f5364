#include "drawing.h"

#include <algorithm>

#include <QFontMetricsF>
#include <QLoggingCategory>

#include "program.h"

namespace {

QImage toImage(const cv::Mat& picture) {
    cv::Mat eightBits;
    picture.convertTo(eightBits, CV_8U, picture.depth() == CV_16U ? 1 / 256.0 : 1);
    const auto format =
        eightBits.channels() == 1 ? QImage::Format_Grayscale8 : QImage::Format_BGR888;
    // The image only borrows the pixels, hence the copy.
    return QImage(eightBits.data, eightBits.cols, eightBits.rows,
                  static_cast<int>(eightBits.step[0]), format)
        .copy();
}

/// Rounds to 32 levels of each colour, which halves the size of the file; in small pictures of a
/// noisy specimen nobody sees the difference.
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
    // Qt misses a runtime directory where nobody is logged in; pictures need none.
    QLoggingCategory::setFilterRules("default.warning=false");
}

QImage emptyChart(int width, int height) {
    QImage chart(width, height, QImage::Format_RGB32);
    chart.fill(paper);
    return chart;
}

void write(QPainter& painter, const QRectF& box, const QString& text, int height,
           const QColor& colour, bool bold) {
    constexpr int narrowest = 60; // percent, still readable
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

void drawPicture(QPainter& painter, QPoint corner, int side, const LabelledPicture& shown) {
    // Scaled before it is drawn: the painter alone would skip pixels.
    QImage image = toImage(shown.picture)
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
    constexpr int smallest = 0; // for PNG the quality is the size of the file, the pixels stay
    if (!chart.save(QString::fromStdString(file), nullptr, smallest))
        throw Failure("cannot write a picture to " + file);
}
