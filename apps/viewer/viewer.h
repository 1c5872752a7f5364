// The viewer without its window: where frames come from, how they are shown, where pictures go.
#pragma once

#include "apps/viewer/channel_model.h"
#include "apps/viewer/command_line.h"
#include "apps/viewer/frame_feed.h"
#include "apps/viewer/render_loop.h"
#include "apps/viewer/stack_source.h"

#include <QElapsedTimer>
#include <QImage>
#include <QThreadPool>

#include <deque>
#include <memory>
#include <optional>

namespace apps {

/// What the user chooses for all channels.
struct ViewOptions {
    Annotation annotation;
    bool marksSaturated = false;
    bool graySingle = false;          ///< A channel that is alone is shown in gray.
    std::optional<TableChoice> table; ///< Pseudo-colour, if it is on.
    int pseudoChannel = 0;
};

/// Connects source, rendering and results; lives in the window's thread and never waits there.
class Viewer : public QObject {
    Q_OBJECT
public:
    Viewer();
    ~Viewer() override;

    ChannelModel& model() { return model_; }
    const ChannelModel& model() const { return model_; }

    /// Opens `FILE[PAGE]=DYE+X+Y` words, or plain names of files, in place of what is there or
    /// beside it. The files are read in another thread, after those that are still being read; if
    /// one cannot be, everything stays as it was. Settings (`.json`) are for the channels that come
    /// with them, or those that are there.
    void open(const QStringList& words, bool adds = false);

    /// Shows the frames of a camera.
    void connectCamera(std::shared_ptr<FrameSource> camera, const std::vector<Channel>& channels);

    void close();

    void saveSettings(const QString& file);

    bool hasSource() const { return feed_ != nullptr; }
    bool isCamera() const { return hasSource() && !stack_; }
    bool isRunning() const { return feed_ && feed_->isRunning(); }
    int pages() const { return stack_ ? stack_->pages() : 1; }
    QString title() const;

    void start();
    void stop();
    void single();
    void setRate(double framesPerSecond);
    double rate() const { return rate_; }
    void turnTo(int page);

    const ViewOptions& options() const { return options_; }
    void setOptions(const ViewOptions& options);
    void keepSettings(bool on) { keepsSettings_ = on; }

    /// The newest picture.
    const Shown& shown() const { return shown_; }
    std::vector<int> samplesAt(QPoint pixel) const;
    std::vector<cv::Mat> planes() const { return loop_.planes(); }
    const QVector<QColor>& slotColours() const { return slotColours_; }

    /// How things are shown, with the numbers of all levels.
    View view() const;

    /// Makes and writes the picture in another thread; `said` or `problem` tells the outcome.
    void save(const QString& file);
    QImage picture() const;

    /// @throws Failure for frames that are in no file.
    QString command() const;

    std::uint64_t framesOfSource() const { return feed_ ? feed_->frames() : 0; }
    std::int64_t processorTimeOfSource() const { return feed_ ? feed_->processorTime() : 0; }
    std::uint64_t dropped() const { return loop_.dropped(); }

    /// Whether a picture is being opened or saved.
    bool isBusy() const { return jobs_ > 0; }

signals:
    void pictureChanged();
    void sourceChanged();
    void problem(const QString& reason);
    void said(const QString& words);

    /// Work in another thread has come to an end, of which this is to be done here.
    void done(const std::function<void()>& outcome);

private:
    void takePicture();
    void updateView();
    void setSource(std::shared_ptr<FrameSource> source, const std::vector<Channel>& channels);
    void setStack(const std::shared_ptr<StackSource>& stack, bool adds);
    void openNext();
    void forgetOpenings();
    void giveUp(const QString& reason);
    bool mayReplace(const QString& file);
    void beginToOpen(const QStringList& words, bool adds);
    QStringList withoutSettings(const QStringList& words);
    std::vector<ChannelFile> parsed(const QStringList& words) const;
    std::vector<Channel> channelsFor(const std::vector<ChannelFile>& files, bool adds) const;
    void inBackground(const std::function<std::function<void()>()>& work);

    ChannelModel model_;
    ViewOptions options_;
    struct Opening {
        QStringList words;
        bool adds = false;
    };
    std::deque<Opening> openings_; // that wait for their turn
    int turn_ = 0;                 // rises when what is being opened is not wanted any more
    int jobs_ = 0;                 // in the background, until their outcome is known here
    std::vector<Channel> pendingSettings_;
    QVector<QColor> slotColours_;
    Shown shown_;
    double rate_ = 30;
    int revision_ = 0, adopted_ = -1, oldest_ = 0;
    QElapsedTimer sinceAdoption_;
    bool keepsSettings_ = true;

    QThreadPool pool_;
    RenderLoop loop_;
    std::shared_ptr<StackSource> stack_; // the source, if it is files
    std::unique_ptr<FrameFeed> feed_;    // gone before the loop that it feeds
};

/// Names of the built-in dyes and colours for channels whose file names none: one that its name
/// holds, otherwise one that tells it from the others.
Channel guessedChannel(const QString& file, int number, const DyeList& dyes);

} // namespace apps
