#include "light.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <opencv2/core.hpp>

namespace {

void blurRows(const Light& from, Light& to, double sigma) {
    const int radius = cvCeil(3 * sigma);
    std::vector<float> weights;
    for (int i = -radius; i <= radius; ++i)
        weights.push_back(
            float(std::exp(-i * i / (2 * sigma * sigma)) / (sigma * std::sqrt(2 * pi))));
    to.create(from.size());
    for (int y = 0; y < from.rows; ++y)
        for (int x = 0; x < from.cols; ++x) {
            float sum = 0;
            int near = x - radius;
            for (const float weight : weights)
                sum += weight * from(y, std::clamp(near++, 0, from.cols - 1));
            to(y, x) = sum;
        }
}

} // namespace

void shine(Light& light, Point p, double amount) {
    const int x = cvFloor(p.x), y = cvFloor(p.y);
    if (x < 0 || y < 0 || x + 1 >= light.cols || y + 1 >= light.rows)
        return;
    const double right = p.x - x, down = p.y - y;
    light(y, x) += float(amount * (1 - right) * (1 - down));
    light(y, x + 1) += float(amount * right * (1 - down));
    light(y + 1, x) += float(amount * (1 - right) * down);
    light(y + 1, x + 1) += float(amount * right * down);
}

Light blurred(const Light& light, double sigma) {
    Light rows, columns;
    blurRows(light, rows, sigma);
    cv::transpose(rows, columns);
    blurRows(columns, rows, sigma);
    cv::transpose(rows, columns);
    return columns;
}

Light throughLens(const Light& light, double sigma) {
    Light image;
    cv::addWeighted(blurred(light, sigma), 0.78, blurred(light, 7 * sigma), 0.22, 0, image);
    return image;
}
