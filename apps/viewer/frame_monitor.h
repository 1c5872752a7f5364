// How frames come.
#pragma once

#include "apps/viewer/viewer.h"

#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace lumetra {

/// Counts the frames that are shown, and notices when a camera has stopped sending them.
class FrameMonitor : public QObject {
    Q_OBJECT
public:
    explicit FrameMonitor(const Viewer& viewer) : viewer_(viewer) {
        connect(&viewer, &Viewer::imageChanged, this, &FrameMonitor::countFrame);
        connect(&viewer, &Viewer::sourceChanged, this, &FrameMonitor::reset);
        connect(&second_, &QTimer::timeout, this, &FrameMonitor::tick);
        second_.start(1000);
        sinceTick_.start();
        sinceFrame_.start();
    }

signals:
    /// Once a second.
    /// @param framesPerSecond  That were shown; none while there is no camera running.
    /// @param dropped          Since the source was opened.
    void measured(std::optional<double> framesPerSecond, std::uint64_t dropped);

    /// No frame has come for so long; again every second.
    void stalled(double seconds);

    /// Frames come again, or are not waited for any more.
    void resumed();

private:
    void countFrame() {
        forgetSilence();
        const std::uint64_t frame = viewer_.rendered().frame;
        frames_ += frame != lastFrame_ ? 1 : 0; // the same one may be shown in another way
        lastFrame_ = frame;
    }

    /// The source is another one, or has been started or stopped.
    void reset() {
        forgetSilence();
        if (viewer_.rendered().frame == 0)
            droppedBefore_ = viewer_.dropped();
        if (!viewer_.isRunning())
            emit measured(std::nullopt, 0);
    }

    void forgetSilence() {
        sinceFrame_.start();
        if (std::exchange(isStalled_, false))
            emit resumed();
    }

    void tick() {
        const double seconds = std::max(double(sinceTick_.restart()) / 1000, 0.001);
        const int frames = std::exchange(frames_, 0);
        const auto rate = viewer_.isRunning() ? std::optional(frames / seconds) : std::nullopt;
        emit measured(rate, viewer_.dropped() - droppedBefore_);

        const double patience = std::max(2.0, 3 / viewer_.rate());
        const double silence = double(sinceFrame_.elapsed()) / 1000;
        isStalled_ = viewer_.isRunning() && silence > patience;
        if (isStalled_)
            emit stalled(silence);
    }

    const Viewer& viewer_;
    QTimer second_;
    QElapsedTimer sinceTick_, sinceFrame_;
    std::uint64_t lastFrame_ = 0, droppedBefore_ = 0;
    int frames_ = 0;
    bool isStalled_ = false;
};

} // namespace lumetra
