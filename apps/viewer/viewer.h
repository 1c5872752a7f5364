// The viewer without its window: where frames come from, how they are shown, where images go.
#pragma once

#include "apps/common/command_line.h"
#include "apps/viewer/batch_command.h"
#include "apps/viewer/channel_model.h"
#include "apps/viewer/file_opener.h"
#include "apps/viewer/frame_feed.h"
#include "apps/viewer/render_loop.h"
#include "apps/viewer/worker.h"

#include <QElapsedTimer>
#include <QImage>

#include <memory>
#include <optional>

namespace lumetra {

/// What the user chooses for all channels.
struct ViewOptions {
    Annotation annotation;
    bool marksSaturated = false;
    bool graySingle = false;      ///< A channel that is alone is shown in gray.
    bool safeColours = false;     ///< That everybody can tell apart, in place of the channels'.
    std::optional<LutChoice> lut; ///< Pseudo-colour, if it is on.
    int pseudoChannel = 0;
    std::optional<PanelColours> panels; ///< Each channel is shown beside all of them.
    double saturatedPercent = 0.1;      ///< By auto-contrast, at each end.
    bool showsDataRange = false;        ///< As `MeasureOptions` has it.
};

/// What is to be saved: an image of it can be made later.
struct Snapshot {
    std::vector<cv::Mat> planes;     ///< One for each channel; nobody else may write to them.
    DisplaySettings settings;        ///< All channels have levels.
    QStringList inputs;              ///< Files that must not be replaced.
    std::optional<double> pixelSize; ///< In µm.
};

/// Connects source, rendering and results; lives in the window's thread and never waits there.
class Viewer : public QObject {
    Q_OBJECT
public:
    Viewer();

    ChannelModel& model() { return model_; }
    const ChannelModel& model() const { return model_; }

    /// Opens files as `FileOpener::open` does; if one cannot be read, everything stays as it was.
    void open(const QStringList& texts, bool adds = false) { opener_.open(texts, adds); }
    void keepSettings(bool on) { opener_.keepSettings(on); }

    /// Shows the frames of a camera.
    void connectCamera(std::shared_ptr<FrameSource> camera, const std::vector<Channel>& channels);

    /// Shows a simulated camera of so many channels, or one that sees the images that are shown.
    void simulateCamera(int channels, int side = 2048);
    /// @throws Error if there are none.
    void simulateCameraFromImages();

    void close();

    bool hasSource() const { return feed_ != nullptr; }
    bool isCamera() const { return hasSource() && !files_; }
    bool isRunning() const { return feed_ && feed_->isRunning(); }
    Axes axes() const { return files_ ? files_->axes() : Axes{}; }
    bool hasPages() const { return files_ && files_->hasPages(); }
    QString title() const;

    /// The files that are shown, each once.
    QStringList inputs() const;

    /// The side of a pixel in µm, as the files say or the user; for a camera, or files that do not
    /// say it, none until the user does.
    std::optional<double> pixelSize() const { return pixelSize_; }
    void setPixelSize(double micrometres);

    void start();
    void stop();
    void snap();
    void setRate(double framesPerSecond);
    double rate() const { return rate_; }
    void setPosition(const StackPosition& position);

    const ViewOptions& options() const { return options_; }
    void setOptions(const ViewOptions& options);

    /// The newest image.
    const RenderedFrame& rendered() const { return rendered_; }
    QImage image() const;
    /// The pixel values of all channels below pixels, as `RenderLoop` gives them.
    std::vector<std::vector<int>> intensitiesAt(const std::vector<QPoint>& pixels) const;

    /// The colours of the LUT that was chosen; none without pseudo-colour.
    const Colormap& lut() const { return lut_; }

    /// Frames that were not shown, because a newer one was there before.
    std::uint64_t dropped() const { return loop_.dropped(); }

    /// What is shown now.
    /// @throws Error if there is no image yet.
    Snapshot snapshot() const;

    /// Saves in another thread; `statusMessage` or `errorOccurred` gives the outcome.
    void saveImage(const QString& file, const Snapshot& snapshot);
    void saveSettings(const QString& file, const std::vector<Channel>& channels);

    /// The line for the shell that makes the same bytes of the files as `saveImage` saves.
    /// @throws Error for frames that are in no file.
    QString command() const;

    /// What renders all fields of the folder as this one is shown.
    /// @throws Error for frames that are in no file, or files whose names do not tell fields.
    BatchCommand batchCommand() const;

    /// Whether files are being opened or saved.
    bool isBusy() const { return opener_.isBusy() || saver_.isBusy(); }

signals:
    void imageChanged();
    void sourceChanged();
    void filesOpened();
    void statusMessage(const QString& text);
    void errorOccurred(const QString& reason);

private:
    void takeImage();
    void updateSettings();
    void setSource(std::shared_ptr<FrameSource> source, const std::vector<Channel>& channels);
    void closeSource();
    void save(const QString& file, const QStringList& inputs, const std::function<void()>& write);
    DisplaySettings settings(std::vector<Channel> channels) const;
    DisplaySettings shownSettings() const;

    ChannelModel model_;
    FileOpener opener_{model_};
    Worker saver_;
    ViewOptions options_;
    Colormap lut_{};
    RenderedFrame rendered_;
    double rate_ = 30;

    std::optional<DisplaySettings> requested_; // of the loop, for this source
    int revision_ = 0, adopted_ = -1, oldest_ = 0;
    QElapsedTimer sinceAdoption_;
    std::optional<double> pixelSize_;
    std::optional<ProjectionMethod> projection_; // stays from stack to stack

    RenderLoop loop_;
    std::shared_ptr<FileSource> files_; // the source, if it is files
    std::unique_ptr<FrameFeed> feed_;   // gone before the loop that it feeds
};

} // namespace lumetra
