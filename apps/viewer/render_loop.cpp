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

std::vector<int> RenderLoop::intensitiesAt(QPoint pixel, const DisplaySettings& settings) const {
    const std::lock_guard lock(frameMutex_);
    std::vector<int> intensities;
    if (frame_.planes.size() != settings.channels.size())
        return intensities;
    for (std::size_t i = 0; i < settings.channels.size(); ++i) {
        const cv::Mat& plane = frame_.planes[i];
        const auto part = shownPart(settings, plane.size(), i);
        if (!part)
            return {};
        const cv::Point at = part->tl() + cv::Point(pixel.x(), pixel.y());
        if (!part->contains(at))
            return {};
        intensities.push_back(plane.depth() == CV_8U ? plane.at<unsigned char>(at)
                                                     : plane.at<std::uint16_t>(at));
    }
    return intensities;
}

std::vector<cv::Mat> RenderLoop::planes() const {
    const std::lock_guard lock(frameMutex_);
    std::vector<cv::Mat> copies;
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
    lock.unlock();

    const std::lock_guard frameLock(frameMutex_);
    if (isCleared)
        frame_ = {};
    isNewFrame = frames_.take(frame_);
    if (isCleared || isNewFrame)
        drawn_.reset();
    return true;
}

void RenderLoop::measure(DisplaySettings& settings, bool isNewFrame) {
    const auto& planes = frame_.planes;
    if (isNewFrame || statistics_.size() != planes.size() || (measuredLive_ && !settings.isLive)) {
        statistics_.resize(planes.size());
        for (std::size_t i = 0; i < planes.size(); ++i)
            meter_.measure(planes[i], settings.isLive, statistics_[i]);
        measuredLive_ = settings.isLive;
    }
    rendered_.levels.resize(settings.channels.size());
    for (std::size_t i = 0; i < std::min(planes.size(), settings.channels.size()); ++i) {
        auto& levels = settings.channels[i].levels;
        if (!levels)
            levels = statistics_[i].automatic;
        rendered_.levels[i] = *levels;
    }
}

void RenderLoop::draw(const DisplaySettings& settings) {
    renderForScreen(renderer_, frame_.planes, settings, statistics_, rendered_.screen);
    try {
        annotateImage(settings, rendered_.screen);
    } catch (...) {
        rendered_.problem = currentExceptionText();
    }
}

void RenderLoop::publish(const DisplaySettings& settings) {
    rendered_.statistics = statistics_;
    rendered_.frame = frame_.number;
    rendered_.page = frame_.page;
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
            draw(settings);
        } catch (...) {
            rendered_.problem = currentExceptionText();
            rendered_.screen.release();
        }
        drawn_ = settings; // with the levels that were measured
        publish(settings);
    }
}

} // namespace lumetra
