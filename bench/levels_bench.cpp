#include "rivals.h"

#include <lumetra>

namespace {

/// Levels as a picture with a little room at both ends has them.
constexpr unsigned short black = 10;
constexpr unsigned short white = 200;

cv::Mat levelTable(int type) {
    cv::Mat table(1, 256, type);
    for (int value = 0; value < 256; ++value)
        table.col(value) = cv::Scalar::all((value - black) * 255.0 / (white - black)); // saturates
    return table;
}

std::function<void()> stretchByTable(int type, int side) {
    return [image = noise(type, side).clone(), table = levelTable(type)]() mutable {
        cv::LUT(image, table, image);
    };
}

} // namespace

void registerLevels() {
    compare({"AutoCountHistoGray",
             1,
             {1, 0.5},
             [](int side) {
                 return [image = noise(CV_8UC1, side), side] {
                     unsigned short low = 0;
                     unsigned short high = 0;
                     Lumetra::AutoCountHistoGray(image.data, side, side, &low, &high);
                 };
             },
             [](int side) {
                 return [image = noise(CV_8UC1, side)] {
                     double low = 0;
                     double high = 0;
                     cv::minMaxLoc(image, &low, &high);
                 };
             }});

    compare({"StretchLevelsGray",
             2,
             {3, 0.8},
             [](int side) {
                 return [image = noise(CV_8UC1, side).clone(), side] {
                     Lumetra::StretchLevelsGray(black, white, image.data, side, side);
                 };
             },
             [](int side) { return stretchByTable(CV_8UC1, side); }});

    compare({"AutoCountHistoRGB24",
             3,
             {1.5, 0.4},
             [](int side) {
                 return [image = noise(CV_8UC3, side), side] {
                     TS_LEVELS levels{};
                     Lumetra::AutoCountHistoRGB24(image.data, side, side, levels);
                 };
             },
             [](int side) {
                 return [image = noise(CV_8UC3, side), planes = std::vector<cv::Mat>()]() mutable {
                     cv::split(image, planes);
                     for (const cv::Mat& plane : planes) {
                         double low = 0;
                         double high = 0;
                         cv::minMaxLoc(plane, &low, &high);
                     }
                 };
             }});

    compare({"StretchLevelsRGB24",
             6,
             {4, 0.5},
             [](int side) {
                 return [image = noise(CV_8UC3, side).clone(), side] {
                     Lumetra::StretchLevelsRGB24({black, black, black, white, white, white},
                                                 image.data, side, side);
                 };
             },
             [](int side) { return stretchByTable(CV_8UC3, side); }});
}
