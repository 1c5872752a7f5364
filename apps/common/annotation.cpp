#include "apps/common/annotation.h"

#include "apps/common/error.h"
#include "apps/common/text.h"

#include <opencv2/core.hpp>

#include <QCoreApplication>
#include <QFileInfo>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <mutex>
#include <type_traits>

namespace lumetra {
namespace {

constexpr int smallestLetter = 10, largestLetter = 200; // pixels

struct Line {
    QString text;
    QColor colour;
};

int letterHeight(const cv::Mat& image) {
    return std::clamp(std::min(image.rows, image.cols) / 32, smallestLetter, largestLetter);
}

/// Where the system brings no fonts, they lie beside the programs.
void findFonts() {
    const QString file =
        QCoreApplication::applicationDirPath() + QStringLiteral("/../share/lumetra/DejaVuSans.ttf");
    if (QFileInfo::exists(file))
        QFontDatabase::addApplicationFont(file);
}

QFont letters(int height) {
    static std::once_flag once;
    std::call_once(once, findFonts);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(height);
    return font;
}

/// Lays a drawing with transparency over the part of the image whose corner is given.
template<class Component>
void lay(const QImage& drawing, QPoint corner, cv::Mat& image) {
    constexpr int full = std::is_same_v<Component, unsigned char> ? 1 : 257;
    const int components = image.channels();
    for (int y = 0; y < drawing.height(); ++y) {
        const int row = corner.y() + y;
        if (row < 0 || row >= image.rows)
            continue;
        const auto* line = reinterpret_cast<const QRgb*>(drawing.constScanLine(y));
        auto* pixels = image.ptr<Component>(row);
        for (int x = 0; x < drawing.width(); ++x) {
            const int column = corner.x() + x;
            if (column < 0 || column >= image.cols)
                continue;
            const QRgb drawn = line[x]; // premultiplied
            const int rest = 255 - qAlpha(drawn);
            const int added[] = {qBlue(drawn), qGreen(drawn), qRed(drawn)};
            for (int c = 0; c < 3; ++c) {
                auto& pixel = pixels[components * column + c];
                pixel = static_cast<Component>((pixel * rest + 127) / 255 + added[c] * full);
            }
        }
    }
}

void layOver(const QImage& drawing, QPoint corner, cv::Mat& image) {
    if (image.depth() == CV_8U)
        lay<unsigned char>(drawing, corner, image);
    else
        lay<unsigned short>(drawing, corner, image);
}

/// Transparent paper; a shade makes letters of any colour readable on any image.
QImage paper(QSize size) {
    QImage canvas(size, QImage::Format_ARGB32_Premultiplied);
    if (canvas.isNull())
        throw Error(QStringLiteral("there is not enough memory to draw the legend"));
    canvas.fill(QColor(0, 0, 0, 110));
    return canvas;
}

/// Whether letters of a colour can be read on black: a contrast of 4.5, as accessible text has, for
/// which relative luminance must reach 0.175.
bool isReadable(const QColor& colour) {
    const auto linear = [](double share) {
        return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
               0.0722 * linear(colour.blueF()) >=
           0.175;
}

/// Draws names in their colours; one whose colour is too dark in white, behind a swatch.
void drawLines(cv::Mat& image, const std::vector<Line>& lines) {
    if (lines.empty())
        return;
    const int height = letterHeight(image);
    const QFont font = letters(height);
    const QFontMetrics metrics(font);
    const int swatch = height * 3 / 4, margin = height / 2;
    const auto indentOf = [&](const Line& line) {
        return isReadable(line.colour) ? 0 : swatch + margin;
    };
    int width = 0;
    for (const Line& line : lines)
        width = std::max(width, indentOf(line) + metrics.horizontalAdvance(line.text));
    const int step = metrics.height();
    QImage drawing = paper(
        {std::min(width + 2 * margin, image.cols), static_cast<int>(lines.size()) * step + margin});
    QPainter painter(&drawing);
    painter.setFont(font);
    int baseline = margin / 2 + metrics.ascent();
    for (const Line& line : lines) {
        if (!isReadable(line.colour))
            painter.fillRect(margin, baseline - swatch, swatch, swatch, line.colour);
        painter.setPen(isReadable(line.colour) ? line.colour : QColor(Qt::white));
        painter.drawText(margin + indentOf(line), baseline, line.text);
        baseline += step;
    }
    painter.end();
    layOver(drawing, {0, 0}, image);
}

void drawLegend(cv::Mat& image, const std::vector<Channel>& channels) {
    std::vector<Line> lines;
    for (const Channel& channel : channels)
        if (channel.visible)
            lines.push_back({channelLabel(channel), toQt(channel.colour)});
    drawLines(image, lines);
}

QString barText(double micrometres) { return QStringLiteral("%1 µm").arg(micrometres); }

void drawScaleBar(cv::Mat& image, const ScaleBar& bar) {
    const int height = letterHeight(image);
    const int margin = height / 2;
    const double pixels = bar.micrometres / bar.pixelSize;
    if (!(pixels >= 1 && pixels <= image.cols - 2.0 * margin))
        throw Error(QStringLiteral("a scale bar of %1 would be %2 pixels long in an image %3 "
                                   "pixels wide")
                        .arg(barText(bar.micrometres))
                        .arg(pixels, 0, 'f', 0)
                        .arg(image.cols));
    const int length = static_cast<int>(std::lround(pixels));
    const int thickness = std::max(2, height / 5);
    const QFont font = letters(height);
    const QFontMetrics metrics(font);
    const QString text = barText(bar.micrometres);
    const int width = std::max(length, metrics.horizontalAdvance(text)) + 2 * margin;
    QImage drawing =
        paper({std::min(width, image.cols), metrics.height() + thickness + 2 * margin});
    QPainter painter(&drawing);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(QRect(0, margin / 2, drawing.width(), metrics.height()), Qt::AlignCenter,
                     text);
    painter.fillRect((drawing.width() - length) / 2, margin + metrics.height(), length, thickness,
                     Qt::white);
    painter.end();
    layOver(drawing, {image.cols - drawing.width(), image.rows - drawing.height()}, image);
}

} // namespace

QString channelLabel(const Channel& channel) {
    return escaped(toQt(channel.dye.empty() ? toHex(channel.colour) : channel.dye));
}

QString panelName(const Channel& channel) {
    return channel.name.empty() ? channelLabel(channel) : escaped(toQt(channel.name));
}

void drawWithoutDisplay() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

void annotate(cv::Mat& image, const std::vector<Channel>& channels, const Annotation& annotation) {
    CV_Assert(image.channels() >= 3 && (image.depth() == CV_8U || image.depth() == CV_16U));
    if (annotation.legend)
        drawLegend(image, channels);
    if (annotation.scaleBar)
        drawScaleBar(image, *annotation.scaleBar);
}

void drawName(cv::Mat& image, const QString& name, Colour colour) {
    CV_Assert(image.channels() >= 3 && (image.depth() == CV_8U || image.depth() == CV_16U));
    drawLines(image, {{name, toQt(colour)}});
}

} // namespace lumetra
