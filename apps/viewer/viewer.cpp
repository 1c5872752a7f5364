#include "apps/viewer/viewer.h"

#include "apps/common/error.h"
#include "apps/common/lut_file.h"
#include "apps/common/shell.h"
#include "apps/viewer/simulated_camera.h"
#include "render/colormaps.h"

#include <QFileInfo>

#include <algorithm>

namespace lumetra {

Viewer::Viewer() {
    connect(&model_, &ChannelModel::edited, this, &Viewer::updateSettings);
    connect(&model_, &ChannelModel::refused, this, &Viewer::errorOccurred);
    connect(&loop_, &RenderLoop::ready, this, &Viewer::takeImage, Qt::QueuedConnection);
    connect(&opener_, &FileOpener::opened, this,
            [this](const std::shared_ptr<FileSource>& files, const std::vector<Channel>& channels) {
                setSource(files, channels);
                files_ = files;
                emit sourceChanged();
                feed_->snap();
            });
    connect(&opener_, &FileOpener::statusMessage, this, &Viewer::statusMessage);
    connect(&opener_, &FileOpener::errorOccurred, this, &Viewer::errorOccurred);
    connect(&saver_, &ImageSaver::statusMessage, this, &Viewer::statusMessage);
    connect(&saver_, &ImageSaver::errorOccurred, this, &Viewer::errorOccurred);
}

void Viewer::connectCamera(std::shared_ptr<FrameSource> camera,
                           const std::vector<Channel>& channels) {
    opener_.clear();
    setSource(std::move(camera), channels);
    emit sourceChanged();
}

void Viewer::simulateCamera(int channels, int side) {
    std::vector<Channel> guessed;
    guessed.reserve(static_cast<std::size_t>(channels));
    for (int i = 0; i < channels; ++i)
        guessed.push_back(guessedChannel({}, i, model_.dyes()));
    connectCamera(std::make_shared<SimulatedCamera>(SimulatedCameraOptions{channels, side, {}}),
                  guessed);
    start();
}

void Viewer::simulateCameraFromImages() {
    SimulatedCameraOptions options;
    options.images = loop_.planes();
    if (options.images.empty()) {
        emit errorOccurred(tr("Open the images first that the camera is to show"));
        return;
    }
    std::vector<Channel> channels = model_.channels();
    for (Channel& channel : channels)
        channel.levels.reset(); // the camera has a bit depth of its own
    connectCamera(std::make_shared<SimulatedCamera>(options), channels);
    start();
}

void Viewer::closeSource() {
    feed_.reset();
    files_.reset();
    loop_.clear();
    rendered_ = {};
    requested_.reset();
}

void Viewer::setSource(std::shared_ptr<FrameSource> source, const std::vector<Channel>& channels) {
    closeSource();
    options_.pseudoChannel =
        std::min(options_.pseudoChannel, static_cast<int>(channels.size()) - 1);
    model_.setChannels(channels);
    oldest_ = revision_;
    feed_ = std::make_unique<FrameFeed>(std::move(source),
                                        [this](Frame& frame) { loop_.offer(frame); });
    connect(feed_.get(), &FrameFeed::failed, this, [this](const QString& reason) {
        updateSettings();
        emit sourceChanged();
        emit errorOccurred(reason);
    });
}

void Viewer::close() {
    opener_.clear();
    closeSource();
    model_.setChannels({});
    emit sourceChanged();
    emit imageChanged();
}

QString Viewer::title() const {
    if (!hasSource())
        return {};
    if (!files_)
        return tr("Camera");
    QStringList names;
    for (const ChannelFile& file : files_->files())
        names << QFileInfo(file.file).fileName();
    return names.join(QStringLiteral(", "));
}

void Viewer::start() {
    if (!feed_)
        return;
    feed_->start(rate_);
    updateSettings();
    emit sourceChanged();
}

void Viewer::stop() {
    if (!feed_)
        return;
    feed_->stop();
    updateSettings(); // all pixels of the last frame are counted now
    emit sourceChanged();
}

void Viewer::snap() {
    if (feed_)
        feed_->snap();
}

void Viewer::setRate(double framesPerSecond) {
    rate_ = framesPerSecond;
    if (isRunning())
        feed_->start(rate_);
}

void Viewer::setPage(int page) {
    if (!files_)
        return;
    files_->setPage(page);
    feed_->snap();
}

void Viewer::setOptions(const ViewOptions& options) {
    Colormap lut{};
    try {
        if (options.lut) {
            const Colormap colours = namedLut(options.lut->lut);
            lut = options.lut->inverted ? reversed(colours) : colours;
        }
    } catch (const std::runtime_error&) {
        emit errorOccurred(currentExceptionText());
        return;
    }
    options_ = options;
    lut_ = lut;
    updateSettings();
}

DisplaySettings Viewer::settings(std::vector<Channel> channels) const {
    const auto isVisible = [](const Channel& channel) { return channel.visible; };
    if (options_.graySingle && std::count_if(channels.begin(), channels.end(), isVisible) == 1)
        std::find_if(channels.begin(), channels.end(), isVisible)->colour = Channel{}.colour;
    DisplaySettings settings;
    settings.channels = std::move(channels);
    if (options_.lut && options_.pseudoChannel >= 0 && options_.pseudoChannel < model_.size())
        settings.pseudo = PseudoColour{static_cast<std::size_t>(options_.pseudoChannel), lut_};
    settings.annotation = options_.annotation;
    settings.marksSaturated = options_.marksSaturated;
    settings.isLive = isRunning();
    return settings;
}

/// With the numbers of all levels.
DisplaySettings Viewer::shownSettings() const {
    std::vector<Channel> channels = model_.channels();
    for (Channel& channel : channels)
        channel.levels = channel.levels.value_or(ContrastLimits{});
    return settings(std::move(channels));
}

void Viewer::updateSettings() {
    DisplaySettings wanted = settings(model_.requested());
    if (requested_ && *requested_ == wanted)
        return;
    wanted.revision = ++revision_;
    requested_ = wanted;
    loop_.setSettings(wanted);
}

void Viewer::takeImage() {
    if (!loop_.take(rendered_))
        return;
    if (!hasSource() || rendered_.revision < oldest_) { // of what was shown before
        rendered_ = {};
        return;
    }
    constexpr int often = 100; // milliseconds: numbers that change faster cannot be read
    const bool isDue = !isRunning() || revision_ != adopted_ || sinceAdoption_.hasExpired(often);
    if (rendered_.revision == revision_ && isDue) {
        adopted_ = revision_;
        sinceAdoption_.start();
        if (model_.adopt(rendered_.levels, rendered_.statistics))
            updateSettings();
    }
    emit imageChanged();
}

std::vector<int> Viewer::intensitiesAt(QPoint pixel) const {
    return loop_.intensitiesAt(pixel, settings(model_.channels()));
}

QImage Viewer::image() const {
    const cv::Mat& screen = rendered_.screen;
    if (screen.empty())
        return {};
    return QImage(screen.data, screen.cols, screen.rows, static_cast<int>(screen.step),
                  QImage::Format_RGB32)
        .copy();
}

QStringList Viewer::inputs() const {
    QStringList inputs;
    if (files_)
        for (const ChannelFile& input : files_->files())
            inputs << input.file;
    return inputs;
}

void Viewer::saveImage(const QString& file) {
    saver_.saveImage(file, inputs(), loop_.planes(), shownSettings());
}

void Viewer::saveSettings(const QString& file) {
    saver_.saveSettings(file, inputs(), model_.channels());
}

QString Viewer::command() const {
    if (!files_)
        throw Error(hasSource() ? tr("There is no command for camera images: they are not in files")
                                : tr("There are no channels"));
    const DisplaySettings settings = shownSettings();
    std::vector<ChannelFile> channels = files_->filesAt(std::max(rendered_.page, 1));
    std::vector<QString> levels;
    for (std::size_t i = 0; i < channels.size(); ++i) {
        channels[i].channel = settings.channels[i];
        levels.push_back(levelsText(*settings.channels[i].levels));
    }
    QStringList arguments{QStringLiteral("lumetra")};
    if (settings.pseudo) {
        const std::size_t i = settings.pseudo->channel;
        arguments << pseudoArguments(channels[i], levels[i], *options_.lut, settings.annotation);
    } else {
        arguments << mergeArguments(channels, levels, settings.annotation, DyeList());
    }
    return shellLine(arguments + QStringList{QStringLiteral("-o"), QStringLiteral("image.png")});
}

} // namespace lumetra
