#include "drawing.h"

#include <QFontMetricsF>
#include <QLoggingCategory>

#include "program.h"

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

void write(QPainter& painter, QRectF const& box, QString const& text, int height,
           QColor const& colour, bool bold) {
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

void saveChart(QImage const& chart, std::string const& file) {
    constexpr int smallest = 0; // for PNG the quality is the size of the file, the pixels stay
    if (!chart.save(QString::fromStdString(file), nullptr, smallest))
        throw Failure("cannot write a picture to " + file);
}
