// The thread in which a camera delivers its frames.
#pragma once

#include "apps/viewer/frame_source.h"

#include <QObject>

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace lumetra {

/// Asks a source for frames, one by one or in a steady rhythm, and passes them on. Nothing here
/// waits for the source but the destructor, which cancels it first.
class FrameFeed : public QObject {
    Q_OBJECT
public:
    /// Takes a frame and leaves an older one in its place.
    using Deliver = std::function<void(Frame&)>;

    FrameFeed(std::shared_ptr<FrameSource> source, Deliver deliver);
    ~FrameFeed() override;

    /// @param framesPerSecond  0 for as many as the source can give.
    void start(double framesPerSecond);
    void stop();

    /// One frame more, running or not.
    void snap();

    bool isRunning() const;

signals:
    /// The source could not give a frame, and was stopped. Emitted in the feed's thread.
    void failed(const QString& reason);

private:
    using Clock = std::chrono::steady_clock;

    void run();
    bool waitForTurn();
    void grabOne();

    std::shared_ptr<FrameSource> source_;
    Deliver deliver_;

    // Of the thread alone.
    Frame frame_;
    std::uint64_t frames_ = 0;

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    Clock::duration period_{};
    Clock::time_point next_;
    bool snaps_ = false, running_ = false, quitting_ = false;

    std::thread thread_; // the last to be made, since it uses all of the above
};

} // namespace lumetra
