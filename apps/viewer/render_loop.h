// The thread that makes images of frames.
#pragma once

#include "apps/viewer/display_settings.h"
#include "apps/viewer/frame_source.h"
#include "apps/viewer/mailbox.h"

#include <QObject>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

namespace lumetra {

/// An image on its way to the window, and what was measured on the way.
struct RenderedFrame {
    /// CV_8UC4, as QImage::Format_RGB32 has it: one image, or panels of one size with that of all
    /// channels last; none if nothing can be shown.
    std::vector<cv::Mat> screens;
    std::vector<ChannelStatistics> statistics; ///< Of each channel.
    std::vector<ContrastLimits> levels;        ///< As `statistics`.
    std::uint64_t frame = 0;                   ///< As `Frame::number`.
    StackPosition position;
    int revision = 0;
    QString problem; ///< Why there is no image, or what is missing in it.
};

/// Takes the newest frame and the newest settings, and leaves an image for the window to take.
class RenderLoop : public QObject {
    Q_OBJECT
public:
    RenderLoop();
    ~RenderLoop() override;

    /// Leaves a frame and gives an older one in exchange. From any thread.
    void offer(Frame& frame);

    /// Changes how frames are shown, the last one included. If that makes the same image of it,
    /// nothing is rendered.
    void setSettings(const DisplaySettings& settings);

    /// Takes the newest image, if there is one since the last time.
    bool take(RenderedFrame& frame) { return images_.take(frame); }

    /// How many frames came too late, because a newer one was there before they could be shown.
    std::uint64_t dropped() const { return dropped_; }

    /// The pixel values of all channels below pixels of the image: a list for each pixel, empty
    /// outside of it.
    std::vector<std::vector<int>> intensitiesAt(const std::vector<QPoint>& pixels,
                                                const DisplaySettings& settings) const;

    /// A copy of the last frame's planes.
    std::vector<cv::Mat> planes() const;

    /// Forgets the last frame.
    void clear();

signals:
    /// There is an image to take. Emitted in the loop's thread, once until it is taken.
    void ready();

private:
    std::unique_lock<std::mutex> lockFrame() const;
    void run();
    bool waitForWork(DisplaySettings& settings, bool& isNewFrame);
    void measure(DisplaySettings& settings, bool isNewFrame);
    void publish(const DisplaySettings& settings);

    Mailbox<Frame> frames_;
    Mailbox<RenderedFrame> images_;
    std::atomic<std::uint64_t> dropped_{0};

    mutable std::mutex frameMutex_; // held to exchange the frame, not while it is drawn
    Frame frame_;                   // written by the loop's thread only

    mutable std::mutex mutex_;
    std::condition_variable work_;
    DisplaySettings settings_;
    bool hasFrame_ = false, hasSettings_ = false, isCleared_ = false, quitting_ = false;

    // Of the thread alone.
    Renderer renderer_;
    ChannelMeter meter_;
    std::vector<ChannelStatistics> statistics_; ///< Of each plane of the frame.
    MeasureOptions measured_;                   ///< How they were measured.
    RenderedFrame rendered_;
    std::optional<DisplaySettings> drawn_; ///< What the last frame was drawn with.

    std::thread thread_; // the last to be made, since it uses all of the above
};

} // namespace lumetra
