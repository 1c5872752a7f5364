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
void mergeScaled(const cv::Mat& gray, double black, double span, double fullScale,
                 std::vector<cv::Mat>& planes, cv::Mat& dst) {
    planes.resize(3);
    for (std::size_t k = 0; k < planes.size(); ++k) {
        const double scale = tint[k] / fullScale * (255 / span);
        gray.convertTo(planes[k], -1, scale, -black * scale);
    }
    cv::merge(planes, dst);
}

Preparation scaleAndMerge(int type, bool autoLevels) {
    const double fullScale = CV_MAT_DEPTH(type) == CV_8U ? 255 : 256;
    return [=](int side) {
        return [=, src = noise(type, side), planes = std::vector<cv::Mat>(), dst = cv::Mat(),
                largest = cv::Mat()]() mutable {
            double black = 0;
            double white = 255;
            if (autoLevels)
                cv::minMaxLoc(src, &black, &white);
            if (src.channels() == 1)
                return mergeScaled(src, black, white - black, fullScale, planes, dst);
            cv::split(src, planes);
            cv::max(planes[0], planes[1], largest);
            cv::max(planes[2], largest, largest);
            mergeScaled(largest, black, white - black, fullScale, planes, dst);
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

Preparation pseudo(int type) {
    return [=](int side) {
        return [src = noise(type, side), dst = cv::Mat(), list = colours()]() mutable {
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

/// Without spreading an 8-bit image over its range first, as the library does.
Preparation applyMap(int type) {
    return [=](int side) {
        return [src = noise(type, side), dst = cv::Mat(), map = colourMap()]() mutable {
            cv::applyColorMap(src, dst, map);
        };
    };
}

} // namespace

void registerColourise() {
    compare({"Dye 8UC1, plain", 4, dye(CV_8UC1, false, false), scaleAndMerge(CV_8UC1, false)});
    compare({"Dye 8UC1, auto levels", 4, dye(CV_8UC1, true, false), scaleAndMerge(CV_8UC1, true)});
    compare({"Dye 8UC3, plain", 6, dye(CV_8UC3, false, false), multiply});
    compare({"Dye 8UC3, auto levels and dominant channel", 6, dye(CV_8UC3, true, true), {}});
    compare({"Dye 16UC1", 8, dye(CV_16UC1, false, false), scaleAndMerge(CV_16UC1, false)});
    compare({"Dye 16UC3", 12, dye(CV_16UC3, false, false), scaleAndMerge(CV_16UC3, false)});
    compare({"Pseudo 8UC1", 4, pseudo(CV_8UC1), applyMap(CV_8UC1)});
    compare({"Pseudo 8UC3", 6, pseudo(CV_8UC3), applyMap(CV_8UC3)});
    compare({"Pseudo 16UC1", 8, pseudo(CV_16UC1), {}});
    compare({"Pseudo 16UC3", 12, pseudo(CV_16UC3), {}});
}
