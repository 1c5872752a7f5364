// Draws the figures of the documentation from the specimen that examples/specimen.cpp draws.

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include <QGuiApplication>

#include <opencv2/core.hpp>

#include <opencv2/imgcodecs.hpp>

#include <lumetra>
#include <lumetra_render.hpp>

#include "drawing.h"
#include "program.h"

namespace {

constexpr auto usage = R"(usage: pictures SPECIMENDIR OUTDIR

Draws the figures of the documentation from the channels in SPECIMENDIR.
)";

constexpr int side = 256, gap = 12;

int placeOf(int column) { return gap + column * (side + gap); }

/// A chart of images side by side, with room for something below them.
QImage chartOf(const std::vector<LabelledImage>& images, int room = 0) {
    const int count = static_cast<int>(images.size());
    QImage chart = emptyChart(placeOf(count), gap + side + label + room + gap);
    QPainter painter(&chart);
    for (int i = 0; i < count; ++i)
        drawImage(painter, {placeOf(i), gap}, side, images[static_cast<size_t>(i)]);
    return chart;
}

cv::Mat dyed(cv::Mat gray, const QString& name) {
    const FLUO_DYE_TYPE dye = Lumetra::g_mapFluo.value(name);
    cv::Mat image;
    Lumetra::Dye(gray, image, dye.nColorR, dye.nColorG, dye.nColorB, true, false);
    return image;
}

cv::Mat composite(cv::Mat first, cv::Mat second, QPoint offset) {
    QList<cv::Mat*> images{&first, &second};
    QList<QPoint> offsets{{0, 0}, offset};
    return *std::unique_ptr<cv::Mat>(Lumetra::Composite(&images, &offsets));
}

QImage dyeing(const cv::Mat& gray) {
    return chartOf({{"The channel", "8 bits, gray", gray},
                    {"Tinted", "as FITC (29, 255, 0)", dyed(gray, "FITC")},
                    {"Tinted", "as Cy3", dyed(gray, "Cy3")}});
}

/// Two channels between whose exposures the stage moved.
QImage compositing(const cv::Mat& nuclei, const cv::Mat& filaments) {
    const QPoint moved(14, -9);
    constexpr int margin = 16;
    cv::Rect const field(margin, margin, nuclei.cols - 2 * margin, nuclei.rows - 2 * margin);
    cv::Mat const blue = dyed(nuclei(field), "DAPI");
    cv::Mat const green = dyed(filaments(field - cv::Point(moved.x(), moved.y())), "FITC");
    return chartOf(
        {{"Two channels", "tinted and added: the stage has moved", composite(blue, green, {})},
         {"The same", "the second one shifted by (14, -9)", composite(blue, green, moved)}});
}

/// The histogram as bars, and the levels that a stretch would use.
void drawHistogram(QPainter& painter, const QRectF& box, const cv::Mat& gray) {
    std::array<int, 256> counts{};
    for (const uchar value : cv::Mat_<uchar>(gray))
        ++counts[value];
    const double highest = *std::max_element(counts.begin(), counts.end());
    painter.fillRect(box, paper.lighter(150));
    for (int value = 0; value < 256; ++value) {
        const double height =
            std::sqrt(counts[static_cast<size_t>(value)] / highest) * box.height();
        painter.fillRect(QRectF(box.left() + value, box.bottom() - height, 1, height), ink);
    }
    unsigned short black = 0, white = 0;
    Lumetra::AutoCountHistoGray(gray.data, gray.cols, gray.rows, &black, &white);
    for (const int level : {black, white})
        painter.fillRect(QRectF(box.left() + level, box.top(), 1, box.height()),
                         QColor(255, 160, 0));
    write(painter, {box.left(), box.bottom() + 3, box.width(), 14},
          QString("black level %1, white level %2").arg(black).arg(white), 10, paleInk);
}

QImage levels(const cv::Mat& gray) {
    constexpr int height = 80;
    cv::Mat dim, stretched;
    gray.convertTo(dim, CV_8U, 0.25, 30); // like an underexposed image
    stretched = dim.clone();
    //! [levels]
    unsigned short black = 0, white = 0;
    Lumetra::AutoCountHistoGray(dim.data, dim.cols, dim.rows, &black, &white);
    Lumetra::StretchLevelsGray(black, white, stretched.data, stretched.cols, stretched.rows);
    //! [levels]

    QImage chart = chartOf(
        {{"Before", "a dim exposure", dim}, {"After", "stretched between the levels", stretched}},
        height + 20);
    QPainter painter(&chart);
    const int top = gap + side + label + 4;
    drawHistogram(painter, QRectF(placeOf(0), top, side, height), dim);
    drawHistogram(painter, QRectF(placeOf(1), top, side, height), stretched);
    return chart;
}

/// A 16-bit channel as 8 bits for display.
cv::Mat toDisplay8(const cv::Mat& gray) {
    const lumetra::LevelPolicy wholeRange{lumetra::LevelPolicy::Method::clip, 0, {}};
    return lumetra::stretched(gray, lumetra::componentLimits(gray, wholeRange), 1);
}

cv::Mat readGray(const std::string& file) {
    return cv::imread(file, cv::IMREAD_ANYDEPTH | cv::IMREAD_GRAYSCALE);
}

QImage pseudoColour(cv::Mat gray) {
    constexpr int ribbon = 20;
    QVector<QColor> lut;
    for (const auto [red, green, blue] : lumetra::oklabColormap())
        lut << QColor(red, green, blue);
    //! [pseudo-colour]
    cv::Mat image;
    Lumetra::Pseudo(gray, image, lut); // a QVector of 255 or 256 QColors
    //! [pseudo-colour]

    QImage chart = chartOf({{"The channel", "16 bits, gray", toDisplay8(gray)},
                            {"Pseudo-colour", "with the LUT below", image}},
                           ribbon + 20);
    QPainter painter(&chart);
    const double top = gap + side + label + 4, width = placeOf(2) - gap - gap;
    const double slot = width / lut.size();
    for (int i = 0; i < lut.size(); ++i)
        painter.fillRect(QRectF(gap + i * slot, top, slot + 1, ribbon), lut[i]);
    write(painter, {gap, top + ribbon + 3, width, 14},
          "LUT, from the smallest pixel value (left) to the largest (right)", 10, paleInk);
    return chart;
}

/// A frame of a 12-bit camera, tinted unscaled and after conversion to 8 bits.
QImage camera(const cv::Mat& gray) {
    const FLUO_DYE_TYPE dye = Lumetra::g_mapFluo.value("Cy3");
    cv::Mat frame, dark;
    gray.convertTo(frame, CV_16U, 3000.0 / 65535, 150);
    Lumetra::Dye(frame, dark, dye.nColorR, dye.nColorG, dye.nColorB, true, false);
    //! [camera]
    double black = 0, white = 0;
    cv::minMaxLoc(frame, &black, &white); // or fixed limits for all frames: 0 and 4095 for 12 bits
    const double scale = 255 / std::max(white - black, 1.0);
    cv::Mat display8, image;
    frame.convertTo(display8, CV_8U, scale, -black * scale);
    Lumetra::Dye(display8, image, dye.nColorR, dye.nColorG, dye.nColorB, false, false);
    //! [camera]
    cv::Mat shown;
    dark.convertTo(shown, CV_8U, 1.0 / 256); // what a screen displays of 16 bits
    return chartOf({{"Tinted unscaled", "12 of 16 bits in use, on a screen", shown},
                    {"Converted to 8 bits", "over its own range", image}});
}

} // namespace

int main(int argc, char** argv) {
    drawWithoutDisplay();
    const QGuiApplication application(argc, argv);
    return runProgram(usage, [&] {
        if (argc != 3)
            throw UsageError{};
        std::string const specimen = argv[1], out = argv[2];
        Lumetra::InitFluoDyeType();
        cv::Mat const nuclei = readGray(specimen + "/nuclei.png");
        cv::Mat const filaments = readGray(specimen + "/filaments.png");
        saveChart(dyeing(filaments), out + "/dyeing.png");
        saveChart(compositing(nuclei, filaments), out + "/compositing.png");
        saveChart(levels(nuclei), out + "/levels.png");
        cv::Mat const mitochondria = readGray(specimen + "/mitochondria.tif");
        saveChart(pseudoColour(mitochondria), out + "/pseudo_colour.png");
        saveChart(camera(mitochondria), out + "/camera.png");
        cv::Mat const blue = dyed(nuclei, "DAPI"), green = dyed(filaments, "FITC");
        saveChart(chartOf({{"Channel", "from the camera", nuclei},
                           {"Tinted", "as DAPI", blue},
                           {"Composite", "with a second one, tinted as FITC",
                            composite(blue, green, {})}}),
                  out + "/road.png");
    });
}
