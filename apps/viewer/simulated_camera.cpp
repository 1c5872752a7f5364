#include "apps/viewer/simulated_camera.h"

#include "apps/common/error.h"

#include "culture.h"
#include "light.h"
#include "stains.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <utility>

namespace lumetra {
namespace {

constexpr int driftMargin = 64; // pixels that the specimen may wander

cv::Mat enlarged(const cv::Mat& plane, int side) {
    cv::Mat scene;
    cv::resize(plane, scene, {side, side}, 0, 0, cv::INTER_CUBIC);
    return scene;
}

} // namespace

SimulatedCamera::SimulatedCamera(SimulatedCameraOptions options) : options_(std::move(options)) {}

/// Drawing takes long enough that nobody who closes the window should have to wait for its end.
void SimulatedCamera::throwIfCancelled() const {
    if (isCancelled_)
        throw Error(QStringLiteral("the simulated camera is closed"));
}

/// Cells as four dyes show them.
std::vector<cv::Mat> SimulatedCamera::drawnScenes(int side) const {
    constexpr int largestDrawn = 512; // cells of more pixels than that are this one, magnified
    constexpr double sharpness = 1, brightest = 30000;
    const int drawn = std::min(side, largestDrawn);
    Random random(7);
    const auto cells = culture(drawn, random);
    std::vector<cv::Mat> scenes;
    for (const auto draw : {drawNuclei, drawFilaments, drawMitochondria, drawCytoplasm}) {
        if (static_cast<int>(scenes.size()) == options_.channels)
            break;
        throwIfCancelled();
        const Light drawing = draw(cells, drawn, random);
        throwIfCancelled();
        const Light light = throughLens(drawing, sharpness);
        double most = 0;
        cv::minMaxLoc(light, nullptr, &most);
        cv::Mat plane;
        light.convertTo(plane, CV_16U, brightest / std::max(most, 1e-6));
        scenes.push_back(enlarged(plane, side));
    }
    return scenes;
}

cv::Rect SimulatedCamera::driftingPart() const {
    const double t = exposures_ / 60.0;
    const auto wander = [&](double rate) {
        constexpr int reach = driftMargin / 2;
        return reach + cvRound((reach - 1) * std::sin(rate * t));
    };
    return {wander(0.9), wander(0.7), options_.side, options_.side};
}

void SimulatedCamera::prepare() {
    const int side = options_.side + driftMargin;
    if (options_.images.empty())
        scenes_ = drawnScenes(side);
    for (const cv::Mat& image : options_.images) {
        cv::Mat plane;
        image.convertTo(plane, CV_16U, image.depth() == CV_8U ? 128 : 1);
        scenes_.push_back(enlarged(plane, side));
    }
    noise_.create(side, side, CV_16UC1);
    random_.fill(noise_, cv::RNG::NORMAL, 400, 60);
    hotPixels_.resize(scenes_.size());
    for (auto& pixels : hotPixels_)
        for (int i = 0; i < 40; ++i)
            pixels.emplace_back(random_.uniform(0, options_.side),
                                random_.uniform(0, options_.side));
}

void SimulatedCamera::grab(Frame& frame) {
    throwIfCancelled();
    if (scenes_.empty())
        prepare();
    ++exposures_;
    frame.planes.resize(scenes_.size());
    for (std::size_t i = 0; i < scenes_.size(); ++i) {
        const cv::Rect noisePart(random_.uniform(0, driftMargin), random_.uniform(0, driftMargin),
                                 options_.side, options_.side);
        cv::add(scenes_[i](driftingPart()), noise_(noisePart), frame.planes[i]);
        for (const cv::Point pixel : hotPixels_[i])
            frame.planes[i].at<std::uint16_t>(pixel) = 65535;
    }
}

} // namespace lumetra
