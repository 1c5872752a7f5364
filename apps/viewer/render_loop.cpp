#include "apps/viewer/render_loop.h"

#include "apps/common/error.h"

#include <QRect>

#include <algorithm>
#include <utility>

namespace lumetra {

RenderLoop::RenderLoop() : thread_([this] { run(); }) {}

RenderLoop::~RenderLoop() {
    {
        const std::lock_guard lock(mutex_);
        quitting_ = true;
    }
    work_.notify_all();
    thread_.join();
}

void RenderLoop::offer(Frame& frame) {
    if (frames_.put(frame))
        ++dropped_;
    const std::lock_guard lock(mutex_);
    hasFrame_ = true;
    work_.notify_all();
}

void RenderLoop::setSettings(const DisplaySettings& settings) {
    const std::lock_guard lock(mutex_);
    settings_ = settings;
    hasSettings_ = true;
    work_.notify_all();
}

void RenderLoop::clear() {
    Frame unseen;
    frames_.take(unseen);
    const std::lock_guard lock(mutex_);
    isCleared_ = true;
    hasFrame_ = false;
}

/// Locks the last frame, unless it is one that was to be forgotten.
std::unique_lock<std::mutex> RenderLoop::lockFrame() const {
    const std::lock_guard lock(mutex_);
    return isCleared_ ? std::unique_lock<std::mutex>() : std::unique_lock(frameMutex_);
}

std::vector<std::vector<int>> RenderLoop::intensitiesAt(const std::vector<QPoint>& pixels,
                                                        const DisplaySettings& settings) const {
    std::vector<std::vector<int>> intensities(pixels.size());
    std::vector<cv::Mat> parts;
    const auto lock = lockFrame();
    if (!lock)
        return intensities;
    try {
        for (const cv::Mat& plane : ofChannels(settings, frame_.planes)) {
            const auto part = shownPart(settings, plane.size(), parts.size());
            parts.push_back(part ? plane(*part) : cv::Mat());
        }
    } catch (const Error&) { // a frame of a camera that has lost a channel
        parts.clear();
    }
    for (std::size_t i = 0; i < pixels.size(); ++i)
        for (const cv::Mat& part : parts) {
            const cv::Point at(pixels[i].x(), pixels[i].y());
            if (cv::Rect({0, 0}, part.size()).contains(at))
                intensities[i].push_back(part.depth() == CV_8U ? part.at<unsigned char>(at)
                                                               : part.at<std::uint16_t>(at));
        }
    return intensities;
}

std::vector<cv::Mat> RenderLoop::planes() const {
    std::vector<cv::Mat> copies;
    const auto lock = lockFrame();
    if (!lock)
        return copies;
    for (const cv::Mat& plane : frame_.planes)
        copies.push_back(plane.clone());
    return copies;
}

bool RenderLoop::waitForWork(DisplaySettings& settings, bool& isNewFrame) {
    std::unique_lock lock(mutex_);
    work_.wait(lock, [&] { return quitting_ || hasFrame_ || hasSettings_; });
    if (quitting_)
        return false;
    settings = settings_;
    hasSettings_ = hasFrame_ = false;
    const bool isCleared = std::exchange(isCleared_, false);

    const std::lock_guard frameLock(frameMutex_);
    lock.unlock(); // only now, so that nobody sees an old frame as the new one
    if (isCleared) {
        frame_ = {};
        statistics_.clear();
    }
    isNewFrame = frames_.take(frame_);
    if (isCleared || isNewFrame)
        drawn_.reset();
    return true;
}

void RenderLoop::measure(DisplaySettings& settings, bool isNewFrame) {
    const auto& planes = frame_.planes;
    const MeasureOptions& wanted = settings.measuring;
    const bool countsMore = measured_.isLive && !wanted.isLive;
    measured_.isLive = wanted.isLive; // to count fewer pixels of the same frame changes nothing
    if (isNewFrame || statistics_.size() != planes.size() || countsMore || !(measured_ == wanted)) {
        statistics_.resize(planes.size());
        for (std::size_t i = 0; i < planes.size(); ++i)
            meter_.measure(planes[i], frame_.bits, wanted, statistics_[i]);
        measured_ = wanted;
    }
    rendered_.statistics = ofChannels(settings, statistics_);
    rendered_.levels.clear();
    for (std::size_t i = 0; i < settings.channels.size(); ++i) {
        auto& levels = settings.channels[i].levels;
        if (!levels)
            levels = rendered_.statistics[i].automatic;
        rendered_.levels.push_back(*levels);
    }
}

void RenderLoop::publish(const DisplaySettings& settings) {
    rendered_.frame = frame_.number;
    rendered_.position = frame_.position;
    rendered_.revision = settings.revision;
    const std::uint64_t published = rendered_.frame;
    if (!images_.put(rendered_))
        emit ready();
    else if (rendered_.frame != published) // what came back was never seen
        ++dropped_;
}

void RenderLoop::run() {
    DisplaySettings settings;
    bool isNewFrame = false;
    while (waitForWork(settings, isNewFrame)) {
        if (frame_.planes.empty() || (drawn_ && *drawn_ == settings))
            continue;
        rendered_.problem.clear();
        try {
            measure(settings, isNewFrame);
            renderForScreen(renderer_, ofChannels(settings, frame_.planes), settings,
                            rendered_.statistics, rendered_.screens, rendered_.problem);
        } catch (...) {
            rendered_.problem = currentExceptionText();
            rendered_.screens.clear();
        }
        drawn_ = settings; // with the levels that were measured
        publish(settings);
    }
}

} // namespace lumetra
