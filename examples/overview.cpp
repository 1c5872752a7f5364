#include "overview.h"

#include <lumetra>

#include "drawing.h"

namespace {

constexpr int tile = 152, gap = 12, ribbon = 16;
constexpr int large = 2 * tile + label + gap;

void drawCatalogue(QPainter& painter, QPoint corner, double width) {
    const auto dyes = static_cast<int>(Lumetra::m_vecSldFluo.size());
    for (int i = 0; i < dyes; ++i) {
        const FLUO_DYE_TYPE dye = Lumetra::g_mapFluo[Lumetra::m_vecSldFluo[i]];
        const double left = i * width / dyes, right = (i + 1) * width / dyes;
        painter.fillRect(QRectF(corner.x() + left, corner.y(), right - left, ribbon),
                         QColor(dye.nColorR, dye.nColorG, dye.nColorB));
    }
    const auto text = QString("%1 of the catalogue's %2 dyes, in the order of their colours")
                          .arg(dyes)
                          .arg(Lumetra::g_mapFluo.size());
    write(painter, QRectF(corner.x(), corner.y() + ribbon + 3, width, 14), text, 10, paleInk);
}

} // namespace

QImage overview(const std::vector<LabelledImage>& images) {
    const int columns = static_cast<int>(images.size()) / 2;
    const int width = large + columns * (gap + tile);
    QImage chart = emptyChart(width + 2 * gap, large + label + ribbon + 22 + 2 * gap);
    QPainter painter(&chart);

    drawImage(painter, {gap, gap}, large, images.front());
    for (int i = 1; i < static_cast<int>(images.size()); ++i) {
        const QPoint cell((i - 1) % columns, (i - 1) / columns);
        drawImage(painter,
                  QPoint(gap + large + gap, gap) +
                      QPoint(cell.x() * (tile + gap), cell.y() * (tile + label + gap)),
                  tile, images[static_cast<size_t>(i)]);
    }
    drawCatalogue(painter, {gap, gap + large + label + 4}, width);
    return chart;
}
