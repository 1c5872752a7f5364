// Draws the dyes of the colour slider in their order and in their display colours, so that a fault
// in the catalogue is visible at once: a gap in the wheel, a point off the curve, a missing swatch.

#include <algorithm>
#include <cmath>
#include <iostream>

#include <QGuiApplication>

#include <lumetra>

#include "drawing.h"
#include "program.h"

namespace {

constexpr auto usage = R"(usage: dye_wheel OUTPUT

Draws the dyes of the catalogue's colour slider to the image file OUTPUT.
)";

constexpr int columns = 4, columnWidth = 219, rowHeight = 29, margin = 12, header = 232;

int dyeCount() { return static_cast<int>(Lumetra::m_vecSldFluo.size()); }

/// The record of a place of the slider, or null if the catalogue lacks the name.
const FLUO_DYE_TYPE* dyeAt(int place) {
    const auto found = Lumetra::g_mapFluo.constFind(Lumetra::m_vecSldFluo[place]);
    return found == Lumetra::g_mapFluo.constEnd() ? nullptr : &*found;
}

QColor colourOf(const FLUO_DYE_TYPE* dye) {
    return dye ? QColor(dye->nColorR, dye->nColorG, dye->nColorB) : paper;
}

void drawWheel(QPainter& painter, const QRectF& box) {
    constexpr int fullTurn = 360 * 16, top = 90 * 16;
    const auto start = [](int place) { return top - fullTurn * place / dyeCount(); };
    painter.setRenderHint(QPainter::Antialiasing, false); // or seams show between the sectors
    painter.setPen(Qt::NoPen);
    for (int place = 0; place < dyeCount(); ++place) {
        painter.setBrush(colourOf(dyeAt(place)));
        painter.drawPie(box, start(place), start(place + 1) - start(place));
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(paper);
    painter.drawEllipse(box.center(), box.width() / 3.4, box.height() / 3.4);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(paper, 2));
    painter.drawEllipse(box);

    const QRectF middle(box.center().x() - 46, box.center().y() - 16, 92, 18);
    write(painter, middle, QString("%1 dyes").arg(dyeCount()), 15, ink, true);
    write(painter, middle.translated(0, 17), "clockwise from red", 10, paleInk);
}

/// Excitation (rings) and emission (dots) over the place in the slider.
void drawWavelengths(QPainter& painter, const QRectF& box) {
    constexpr int shortest = 300, longest = 800;
    const auto height = [&](int wavelength) {
        int const shown = std::clamp(wavelength, shortest, longest);
        return box.bottom() - box.height() * (shown - shortest) / (longest - shortest);
    };
    for (int wavelength = shortest; wavelength <= longest; wavelength += 100) {
        const double y = height(wavelength);
        painter.setPen(QPen(paleInk.darker(250), 0.7));
        painter.drawLine(QPointF(box.left(), y), QPointF(box.right(), y));
        write(painter, QRectF(box.left() - 48, y - 7, 46, 14), QString("%1 nm").arg(wavelength), 10,
              paleInk);
    }
    for (int place = 0; place < dyeCount(); ++place) {
        const auto* dye = dyeAt(place);
        if (!dye)
            continue;
        const double x = box.left() + box.width() * (place + 0.5) / dyeCount();
        painter.setPen(QPen(colourOf(dye), 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(QPointF(x, height(dye->nExcitation)), 2, 2);
        painter.setBrush(colourOf(dye));
        painter.drawEllipse(QPointF(x, height(dye->nEmission)), 2, 2);
    }
    write(painter, QRectF(box.left(), box.top() - 20, box.width(), 14),
          "emission (dots) and excitation (rings) along the slider", 10, paleInk);
}

void drawDye(QPainter& painter, QPoint corner, int place) {
    const auto* dye = dyeAt(place);
    const QRectF swatch(corner.x(), corner.y(), 30, rowHeight - 4);
    painter.fillRect(swatch, colourOf(dye));
    if (!dye) {
        painter.setPen(QPen(Qt::red, 2));
        painter.drawLine(swatch.topLeft(), swatch.bottomRight());
        painter.drawLine(swatch.bottomLeft(), swatch.topRight());
    }
    const QColor number = qGray(colourOf(dye).rgb()) > 100 ? paper : ink;
    write(painter, swatch.adjusted(4, 0, 0, 0), QString::number(place + 1), 10, number);

    const QRectF line(corner.x() + 36, corner.y() - 1, columnWidth - 44, 14);
    write(painter, line, Lumetra::m_vecSldFluo[place], 11, ink);
    const auto wavelengths = dye ? QString("%1 / %2 nm").arg(dye->nExcitation).arg(dye->nEmission)
                                 : QString("not in the catalogue");
    write(painter, line.translated(0, 13), wavelengths, 10, paleInk);
}

QImage drawChart() {
    const int rows = (dyeCount() + columns - 1) / columns;
    const int width = columns * columnWidth + 2 * margin;
    QImage chart = emptyChart(width, header + rows * rowHeight + margin);
    QPainter painter(&chart);
    painter.setRenderHint(QPainter::Antialiasing);
    drawWheel(painter, {margin, margin, header - 30, header - 30});
    drawWavelengths(painter, {header + 52.0, 38, width - header - 52.0 - margin, header - 62});
    for (int place = 0; place < dyeCount(); ++place)
        drawDye(painter, {margin + place / rows * columnWidth, header + place % rows * rowHeight},
                place);
    return chart;
}

} // namespace

int main(int argc, char** argv) {
    drawWithoutDisplay();
    const QGuiApplication application(argc, argv);
    return runProgram(usage, [&] {
        if (argc != 2)
            throw UsageError{};
        Lumetra::InitFluoDyeType();
        saveChart(drawChart(), argv[1]);
        std::cout << argv[1] << ": the " << dyeCount() << " dyes of the colour slider\n";
    });
}
