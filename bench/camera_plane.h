// What a camera sees, for benchmarks: noise nearly everywhere.
#pragma once

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

/// A dim background with spots and the noise of a camera, 12 bits of 16.
inline cv::Mat cameraPlane(int side, int seed) {
    cv::RNG random(static_cast<uint64>(seed) + 1);
    cv::Mat light(side, side, CV_32F, cv::Scalar(200));
    for (int spot = 0; spot < 150; ++spot)
        cv::circle(light, {random.uniform(0, side), random.uniform(0, side)},
                   random.uniform(10, 60), cv::Scalar(random.uniform(500, 3500)), cv::FILLED);
    cv::GaussianBlur(light, light, {}, 5);
    cv::Mat noise(side, side, CV_32F);
    random.fill(noise, cv::RNG::NORMAL, 0, 15);
    cv::Mat plane;
    cv::Mat(light + noise).convertTo(plane, CV_16U);
    return plane;
}

/// A plane in a colour, as 8 bits.
/// @param black, white  Contrast limits.
inline cv::Mat tinted(const cv::Mat& plane, double black, double white, const cv::Scalar& colour) {
    const double scale = 255 / (white - black);
    cv::Mat eightBits, colours;
    plane.convertTo(eightBits, CV_8U, scale, -black * scale);
    cv::cvtColor(eightBits, colours, cv::COLOR_GRAY2BGR);
    cv::multiply(colours, colour, colours, 1 / 255.0);
    return colours;
}
