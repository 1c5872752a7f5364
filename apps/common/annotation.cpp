#include "apps/common/annotation.h"

#include "apps/common/failure.h"

#include <opencv2/core.hpp>

#include <QFontMetrics>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace apps {
namespace {

constexpr int smallestLetter = 10, largestLetter = 200; // pixels

struct Line {
    QString text;
    QColor colour;
};

int letterHeight(const cv::Mat& picture) {
    return std::clamp(std::min(picture.rows, picture.cols) / 32, smallestLetter, largestLetter);
}

QFont letters(int height) {
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(height);
    return font;
}

/// Lays a drawing with transparency over the part of the picture whose corner is given.
template<class Sample>
void lay(const QImage& drawing, QPoint corner, cv::Mat& picture) {
    constexpr int full = std::is_same_v<Sample, unsigned char> ? 1 : 257;
    const int samplesOfPixel = picture.channels();
    for (int y = 0; y < drawing.height(); ++y) {
        const int row = corner.y() + y;
        if (row < 0 || row >= picture.rows)
            continue;
        const auto* line = reinterpret_cast<const QRgb*>(drawing.constScanLine(y));
        auto* pixels = picture.ptr<Sample>(row);
        for (int x = 0; x < drawing.width(); ++x) {
            const int column = corner.x() + x;
            if (column < 0 || column >= picture.cols)
                continue;
            const QRgb drawn = line[x]; // premultiplied
            const int rest = 255 - qAlpha(drawn);
            const int samples[] = {qBlue(drawn), qGreen(drawn), qRed(drawn)};
            for (int c = 0; c < 3; ++c) {
                auto& pixel = pixels[samplesOfPixel * column + c];
                pixel = static_cast<Sample>((pixel * rest + 127) / 255 + samples[c] * full);
            }
        }
    }
}

void layOver(const QImage& drawing, QPoint corner, cv::Mat& picture) {
    if (picture.depth() == CV_8U)
        lay<unsigned char>(drawing, corner, picture);
    else
        lay<unsigned short>(drawing, corner, picture);
}

/// Transparent paper; a shade makes letters of any colour readable on any picture.
QImage paper(QSize size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        throw Failure(QStringLiteral("there is not enough memory to draw the legend"));
    image.fill(QColor(0, 0, 0, 110));
    return image;
}

QString label(const Channel& channel) {
    return channel.dye.isEmpty() ? channel.colour.name() : shown(channel.dye);
}

void drawLegend(cv::Mat& picture, const std::vector<Channel>& channels) {
    const int height = letterHeight(picture);
    const QFont font = letters(height);
    const QFontMetrics metrics(font);
    std::vector<Line> lines;
    int width = 0;
    for (const Channel& channel : channels) {
        if (!channel.visible)
            continue;
        lines.push_back({label(channel), channel.colour});
        width = std::max(width, metrics.horizontalAdvance(lines.back().text));
    }
    if (lines.empty())
        return;
    const int step = metrics.height();
    const int margin = height / 2;
    QImage drawing = paper({std::min(width + 2 * margin, picture.cols),
                            static_cast<int>(lines.size()) * step + margin});
    QPainter painter(&drawing);
    painter.setFont(font);
    int baseline = margin / 2 + metrics.ascent();
    for (const Line& line : lines) {
        painter.setPen(line.colour);
        painter.drawText(margin, baseline, line.text);
        baseline += step;
    }
    painter.end();
    layOver(drawing, {0, 0}, picture);
}

QString barText(double micrometres) { return QStringLiteral("%1 µm").arg(micrometres); }

void drawScaleBar(cv::Mat& picture, const ScaleBar& bar) {
    const int height = letterHeight(picture);
    const int margin = height / 2;
    const double pixels = bar.micrometres / bar.pixelSize;
    if (!(pixels >= 1 && pixels <= picture.cols - 2.0 * margin))
        throw Failure(QStringLiteral("a scale bar of %1 would be %2 pixels long in a picture %3 "
                                     "pixels wide")
                          .arg(barText(bar.micrometres))
                          .arg(pixels, 0, 'f', 0)
                          .arg(picture.cols));
    const int length = static_cast<int>(std::lround(pixels));
    const int thickness = std::max(2, height / 5);
    const QFont font = letters(height);
    const QFontMetrics metrics(font);
    const QString text = barText(bar.micrometres);
    const int width = std::max(length, metrics.horizontalAdvance(text)) + 2 * margin;
    QImage drawing =
        paper({std::min(width, picture.cols), metrics.height() + thickness + 2 * margin});
    QPainter painter(&drawing);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(QRect(0, margin / 2, drawing.width(), metrics.height()), Qt::AlignCenter,
                     text);
    painter.fillRect((drawing.width() - length) / 2, margin + metrics.height(), length, thickness,
                     Qt::white);
    painter.end();
    layOver(drawing, {picture.cols - drawing.width(), picture.rows - drawing.height()}, picture);
}

} // namespace

void drawWithoutDisplay() {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

void annotate(cv::Mat& picture, const std::vector<Channel>& channels,
              const Annotation& annotation) {
    CV_Assert(picture.channels() >= 3 && (picture.depth() == CV_8U || picture.depth() == CV_16U));
    if (annotation.legend)
        drawLegend(picture, channels);
    if (annotation.scaleBar)
        drawScaleBar(picture, *annotation.scaleBar);
}

} // namespace apps
