// How frames come.
#pragma once

#include "apps/viewer/viewer.h"

#include <QElapsedTimer>
#include <QTimer>

namespace lumetra {

/// Counts the frames that are shown, and notices when a camera has stopped sending them.
class FrameMonitor : public QObject {
    Q_OBJECT
public:
    explicit FrameMonitor(const Viewer& viewer);

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
    void countFrame();
    void reset();
    void forgetSilence();
    void tick();

    const Viewer& viewer_;
    QTimer second_;
    QElapsedTimer sinceTick_, sinceFrame_;
    std::uint64_t lastFrame_ = 0, droppedBefore_ = 0;
    int frames_ = 0;
    bool isStalled_ = false;
};

} // namespace lumetra
