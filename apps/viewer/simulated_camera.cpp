#include "apps/viewer/simulated_camera.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

namespace apps {
namespace {

constexpr int driftMargin = 64; // pixels that the specimen may wander

/// Cells as three dyes would show them: round nuclei, a web of filaments, grains around nuclei; and
/// a veil for a fourth.
class Specimen {
public:
    explicit Specimen(int side) : side_(side), scale_(side / 512.0) {
        const int cells = 40;
        for (int i = 0; i < cells; ++i)
            centres_.push_back(anywhere());
    }

    cv::Mat scene(int channel) {
        cv::Mat light(side_, side_, CV_32FC1, cv::Scalar::all(0));
        for (const cv::Point2f& centre : centres_)
            drawCell(channel % 4, centre, light);
        const double sharpness[] = {3, 1, 1.2, 12};
        cv::GaussianBlur(light, light, {}, sharpness[channel % 4] * scale_);
        cv::Mat haze;
        cv::resize(light, haze, {128, 128}, 0, 0, cv::INTER_AREA);
        cv::GaussianBlur(haze, haze, {}, 4);
        cv::resize(haze, haze, light.size(), 0, 0, cv::INTER_CUBIC);
        light = light + 0.3 * haze;
        double brightest = 1;
        cv::minMaxLoc(light, nullptr, &brightest);
        cv::Mat samples;
        light.convertTo(samples, CV_16U, 30000 / std::max(brightest, 1e-6));
        return samples;
    }

private:
    cv::Point2f anywhere() {
        const auto side = static_cast<float>(side_);
        return {random_.uniform(0.F, side), random_.uniform(0.F, side)};
    }

    cv::Point2f around(cv::Point2f centre, double distance) {
        const double spread = distance * scale_;
        return centre + cv::Point2f(static_cast<float>(random_.gaussian(spread)),
                                    static_cast<float>(random_.gaussian(spread)));
    }

    void drawCell(int kind, cv::Point2f centre, cv::Mat& light) {
        const double glow = random_.uniform(0.5, 1.0);
        const auto pixels = [&](double size) { return cvRound(size * scale_) + 1; };
        if (kind == 0 || kind == 3) {
            const double size = kind == 0 ? 14 : 40;
            cv::ellipse(light, cv::Point(centre),
                        {pixels(size * random_.uniform(0.9, 1.3)), pixels(size)},
                        random_.uniform(0.0, 180.0), 0, 360, cv::Scalar::all(glow), cv::FILLED);
        }
        for (int i = 0; kind == 0 && i < 4; ++i)
            cv::circle(light, around(centre, 6), pixels(2), cv::Scalar::all(glow / 2), cv::FILLED);
        for (int i = 0; kind == 1 && i < 60; ++i)
            cv::line(light, around(centre, 10), around(centre, 45),
                     cv::Scalar::all(glow * random_.uniform(0.2, 1.0)), pixels(0.4), cv::LINE_8);
        for (int i = 0; kind == 2 && i < 150; ++i)
            cv::circle(light, around(centre, 22), pixels(1), cv::Scalar::all(glow), cv::FILLED);
    }

    int side_;
    double scale_;
    cv::RNG random_{7};
    std::vector<cv::Point2f> centres_;
};

cv::Mat sceneOf(const cv::Mat& picture, int side) {
    cv::Mat samples;
    picture.convertTo(samples, CV_16U, picture.depth() == CV_8U ? 128 : 1);
    cv::resize(samples, samples, {side, side}, 0, 0, cv::INTER_CUBIC);
    return samples;
}

} // namespace

SimulatedCamera::SimulatedCamera(SimulatedCameraOptions options) : options_(std::move(options)) {
    if (!options_.pictures.empty())
        options_.channels = static_cast<int>(options_.pictures.size());
}

cv::Rect SimulatedCamera::driftingPart() const {
    const double t = exposures_ / 60.0;
    const auto wander = [&](double rate) {
        constexpr int reach = driftMargin / 2;
        return reach + cvRound((reach - 1) * std::sin(rate * t));
    };
    return {wander(0.9), wander(0.7), options_.side, options_.side};
}

void SimulatedCamera::grab(Frame& frame) {
    const int side = options_.side;
    if (scenes_.empty()) {
        Specimen specimen(side + driftMargin);
        for (int i = 0; i < options_.channels; ++i)
            scenes_.push_back(
                options_.pictures.empty()
                    ? specimen.scene(i)
                    : sceneOf(options_.pictures[static_cast<size_t>(i)], side + driftMargin));
        noise_.create(side + driftMargin, side + driftMargin, CV_16UC1);
        random_.fill(noise_, cv::RNG::NORMAL, 400, 60);
        hotPixels_.resize(scenes_.size());
        for (auto& pixels : hotPixels_)
            for (int i = 0; i < 40; ++i)
                pixels.emplace_back(random_.uniform(0, side), random_.uniform(0, side));
    }
    ++exposures_;
    frame.planes.resize(scenes_.size());
    for (std::size_t i = 0; i < scenes_.size(); ++i) {
        const cv::Rect noisePart(random_.uniform(0, driftMargin), random_.uniform(0, driftMargin),
                                 side, side);
        cv::add(scenes_[i](driftingPart()), noise_(noisePart), frame.planes[i]);
        for (const cv::Point pixel : hotPixels_[i])
            frame.planes[i].at<std::uint16_t>(pixel) = 65535;
    }
}

} // namespace apps
