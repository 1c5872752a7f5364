// The thread that makes pictures of frames.
#pragma once

#include "apps/common/annotation.h"
#include "apps/common/render.h"
#include "apps/viewer/frame_source.h"
#include "apps/viewer/mailbox.h"
#include "apps/viewer/measure.h"

#include <QObject>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

namespace apps {

/// One channel through a table of colours, in place of the composite.
struct PseudoColour {
    std::size_t channel = 0;
    QVector<QColor> slotColours; ///< 255 colours.
};

/// How frames are to be shown.
struct View {
    std::vector<Channel> channels; ///< Without levels where they are measured in each frame.
    std::optional<PseudoColour> pseudo;
    Annotation annotation;
    bool marksSaturated = false;
    bool isLive = false; ///< Frames come faster than all of their samples can be counted.
    int revision = 0;    ///< Comes back with the picture.
};

/// Makes the picture of a view, as it is shown, saved and copied; `channels` all have levels.
/// @throws Failure as `Renderer::render` and `annotate` do.
void makePicture(Renderer& renderer, const std::vector<cv::Mat>& planes, const View& view,
                 cv::Mat& picture);

/// A picture on its way to the window, and what was seen on the way.
struct Shown {
    cv::Mat screen; ///< CV_8UC4, as QImage::Format_RGB32 has it; empty if nothing can be shown.
    std::vector<Measure> measures;
    std::vector<LevelRange> levels;
    std::uint64_t frame = 0;
    int page = 0, revision = 0;
    QString problem; ///< Why there is no picture, or what is missing in it.

    std::int64_t measuring = 0; ///< Nanoseconds of the thread, as `stages`.
    StageTimes stages;
    std::int64_t processorTime = 0; ///< Of the thread so far.
};

/// Takes the newest frame and the newest view, and leaves a picture for the window to take.
class RenderLoop : public QObject {
    Q_OBJECT
public:
    RenderLoop();
    ~RenderLoop() override;

    /// Leaves a frame and gives an older one in exchange. From any thread.
    void offer(Frame& frame);

    /// Changes how frames are shown, the last one included.
    void setView(const View& view);

    /// Takes the newest picture, if there is one since the last time.
    bool take(Shown& shown) { return pictures_.take(shown); }

    /// How many frames came too late, because a newer one was there before they could be shown.
    std::uint64_t dropped() const { return dropped_; }

    /// The samples of all channels below a pixel of the picture; empty outside.
    std::vector<int> samplesAt(QPoint pixel, const std::vector<Channel>& channels) const;

    /// A copy of the planes that are shown.
    std::vector<cv::Mat> planes() const;

    /// Forgets the last frame.
    void clear();

signals:
    /// There is a picture to take. Emitted in the loop's thread, once until it is taken.
    void ready();

private:
    void run();
    bool waitForWork(View& view, bool& isNewFrame);
    void measure(View& view, bool isNewFrame);
    void draw(const View& view);
    void publish(const View& view);

    Mailbox<Frame> frames_;
    Mailbox<Shown> pictures_;
    std::atomic<std::uint64_t> dropped_{0};

    mutable std::mutex frameMutex_; // held to exchange the frame, not while it is drawn
    Frame frame_;                   // written by the loop's thread only

    std::mutex mutex_;
    std::condition_variable work_;
    View view_;
    bool hasFrame_ = false, hasView_ = false, isCleared_ = false, quitting_ = false;

    // Of the thread alone.
    Renderer renderer_;
    Measurer measurer_;
    std::vector<Measure> measures_;
    bool measuredLive_ = false;
    std::int64_t measuring_ = 0;
    Shown shown_;

    std::thread thread_; // the last to be made, since it uses all of the above
};

} // namespace apps
