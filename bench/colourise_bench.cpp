#include "rivals.h"

#include <lumetra>

#include <opencv2/imgproc.hpp>

#include <array>

namespace {

/// The colour of FITC, in the order of an image's channels.
constexpr std::array<int, 3> tint{0, 255, 29};

Preparation dye(int type, bool autoLevels, bool dominantChannel) {
    return [=](int side) {
        return [=, src = noise(type, side), dst = cv::Mat()]() mutable {
            Lumetra::Dye(src, dst, tint[2], tint[1], tint[0], autoLevels, dominantChannel);
        };
    };
}

/// A gray image in three scaled copies, merged.
void mergeScaled(const cv::Mat& gray, double fullScale, std::vector<cv::Mat>& planes,
                 cv::Mat& dst) {
    planes.resize(3);
    for (std::size_t k = 0; k < planes.size(); ++k)
        gray.convertTo(planes[k], -1, tint[k] / fullScale);
    cv::merge(planes, dst);
}

Preparation scaleAndMerge(int type, bool autoLevels) {
    const double fullScale = CV_MAT_DEPTH(type) == CV_8U ? 255 : 256;
    return [=](int side) {
        return [=, src = noise(type, side), gray = cv::Mat(), planes = std::vector<cv::Mat>(),
                dst = cv::Mat()]() mutable {
            if (autoLevels) {
                cv::normalize(src, gray, 0, 255, cv::NORM_MINMAX);
            } else if (src.channels() == 1) {
                gray = src;
            } else {
                cv::split(src, planes);
                cv::max(planes[0], planes[1], gray);
                cv::max(planes[2], gray, gray);
            }
            mergeScaled(gray, fullScale, planes, dst);
        };
    };
}

std::function<void()> multiply(int side) {
    return [src = noise(CV_8UC3, side), dst = cv::Mat()]() mutable {
        cv::multiply(src, cv::Scalar(tint[0], tint[1], tint[2]), dst, 1.0 / 255);
    };
}

QVector<QColor> colours() {
    QVector<QColor> list;
    for (int i = 0; i < 256; ++i)
        list.append(QColor(i, 255 - i, i / 2));
    return list;
}

using Picture = std::function<cv::Mat(int side)>;

Picture noiseOf(int type) {
    return [=](int side) { return noise(type, side); };
}

Preparation pseudo(const Picture& picture) {
    return [=](int side) {
        return [src = picture(side), dst = cv::Mat(), list = colours()]() mutable {
            Lumetra::Pseudo(src, dst, list);
        };
    };
}

cv::Mat colourMap() {
    cv::Mat map(256, 1, CV_8UC3);
    const QVector<QColor> list = colours();
    for (int i = 0; i < 256; ++i)
        map.row(i) = cv::Scalar(list[i].blue(), list[i].green(), list[i].red());
    return map;
}

/// The image over its own range, in the colours of a map.
Preparation normalizeAndMap(const Picture& picture) {
    return [=](int side) {
        return [src = picture(side), fitted = cv::Mat(), dst = cv::Mat(),
                map = colourMap()]() mutable {
            cv::normalize(src, fitted, 0, 255, cv::NORM_MINMAX, CV_8U);
            cv::applyColorMap(fitted, dst, map);
        };
    };
}

} // namespace

void registerColourise() {
    compare({"Dye 8UC1, plain",
             4,
             {2.5, 0.8},
             dye(CV_8UC1, false, false),
             scaleAndMerge(CV_8UC1, false)});
    compare({"Dye 8UC1, auto levels",
             4,
             {3, 0.8},
             dye(CV_8UC1, true, false),
             scaleAndMerge(CV_8UC1, true)});
    compare({"Dye 8UC3, plain", 6, {2, 0.2}, dye(CV_8UC3, false, false), multiply});
    compare(
        {"Dye 8UC3, auto levels and dominant channel", 6, {4, 0}, dye(CV_8UC3, true, true), {}});
    compare(
        {"Dye 16UC1", 8, {2.5, 0.8}, dye(CV_16UC1, false, false), scaleAndMerge(CV_16UC1, false)});
    compare(
        {"Dye 16UC3", 12, {2.5, 0.8}, dye(CV_16UC3, false, false), scaleAndMerge(CV_16UC3, false)});
    const auto comparePseudo = [](const char* name, double bytes, Aims aims,
                                  const Picture& picture) {
        compare({name, bytes, aims, pseudo(picture), normalizeAndMap(picture)});
    };
    comparePseudo("Pseudo 8UC1", 4, {3, 0.5}, noiseOf(CV_8UC1));
    comparePseudo("Pseudo 8UC3", 6, {5, 0.6}, noiseOf(CV_8UC3));
    comparePseudo("Pseudo 8UC3, mostly black", 6, {5, 0.6},
                  [](int side) { return mostlyBlack(CV_8UC3, side); });
    comparePseudo("Pseudo 16UC1", 8, {4, 0}, noiseOf(CV_16UC1));
    comparePseudo("Pseudo 16UC3", 12, {4, 0}, noiseOf(CV_16UC3));
}
