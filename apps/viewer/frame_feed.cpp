#include "apps/viewer/frame_feed.h"

#include "apps/common/error.h"

#include <algorithm>
#include <utility>

namespace lumetra {

FrameFeed::FrameFeed(std::shared_ptr<FrameSource> source, Deliver deliver)
    : source_(std::move(source)), deliver_(std::move(deliver)), thread_([this] { run(); }) {}

FrameFeed::~FrameFeed() {
    {
        const std::lock_guard lock(mutex_);
        quitting_ = true;
    }
    changed_.notify_all();
    source_->cancel();
    thread_.join();
}

void FrameFeed::start(double framesPerSecond) {
    const std::lock_guard lock(mutex_);
    const std::chrono::duration<double> period(framesPerSecond > 0 ? 1 / framesPerSecond : 0);
    period_ = std::chrono::duration_cast<Clock::duration>(period);
    next_ = Clock::now();
    running_ = true;
    changed_.notify_all();
}

void FrameFeed::stop() {
    const std::lock_guard lock(mutex_);
    running_ = false;
}

void FrameFeed::snap() {
    const std::lock_guard lock(mutex_);
    snaps_ = true; // impatience does not pile up
    changed_.notify_all();
}

bool FrameFeed::isRunning() const {
    const std::lock_guard lock(mutex_);
    return running_;
}

bool FrameFeed::waitForTurn() {
    std::unique_lock lock(mutex_);
    while (!quitting_ && !snaps_ && !(running_ && Clock::now() >= next_)) {
        if (running_)
            changed_.wait_until(lock, std::min(next_, Clock::now() + std::chrono::seconds(1)));
        else
            changed_.wait(lock);
    }
    if (!std::exchange(snaps_, false)) // a source that is late does not catch up in a burst
        next_ = std::max(next_ + period_, Clock::now() - period_);
    return !quitting_;
}

void FrameFeed::grabOne() {
    try {
        source_->grab(frame_);
    } catch (...) {
        const QString reason = currentExceptionText();
        {
            const std::lock_guard lock(mutex_);
            running_ = false;
            if (quitting_)
                return;
        }
        emit failed(reason);
        return;
    }
    frame_.number = ++frames_;
    frame_.bits = source_->bitDepth();
    deliver_(frame_);
}

void FrameFeed::run() {
    while (waitForTurn())
        grabOne();
}

} // namespace lumetra
