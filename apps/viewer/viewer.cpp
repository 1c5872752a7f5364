#include "apps/viewer/viewer.h"

#include "apps/common/error.h"
#include "apps/common/lut_file.h"
#include "apps/common/settings.h"
#include "apps/common/shell.h"
#include "apps/common/text.h"
#include "apps/viewer/simulated_camera.h"
#include "imageio/image_writer.h"
#include "imageio/output_conflicts.h"
#include "imageio/output_format.h"
#include "render/colormaps.h"
#include "render/palette.h"

#include <QFileInfo>
#include <QLocale>

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
                pixelSize_ = files->pixelSize();
                emit sourceChanged();
                emit filesOpened();
                setPosition({1, 1, projection_});
            });
    connect(&opener_, &FileOpener::statusMessage, this, &Viewer::statusMessage);
    connect(&opener_, &FileOpener::errorOccurred, this, &Viewer::errorOccurred);
    connect(&saver_, &Worker::failed, this, &Viewer::errorOccurred);
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
    options.images = snapshot().planes;
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
    pixelSize_.reset();
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
    for (const QString& file : inputs())
        names << QFileInfo(file).fileName();
    return names.join(QStringLiteral(", "));
}

QStringList Viewer::inputs() const {
    QStringList inputs;
    for (const std::size_t plane : model_.planes())
        if (files_ && !inputs.contains(files_->channels()[plane].input.file))
            inputs << files_->channels()[plane].input.file;
    return inputs;
}

void Viewer::setPixelSize(double micrometres) {
    pixelSize_ = micrometres;
    emit sourceChanged();
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

void Viewer::setPosition(const StackPosition& position) {
    if (!files_)
        return;
    projection_ = axes().slices > 1 ? position.projection : projection_;
    files_->setPosition(position);
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
    const std::vector<Colour> safe = safePalette(channels.size());
    for (std::size_t i = 0; options_.safeColours && i < channels.size(); ++i)
        channels[i].colour = safe[i];
    if (options_.graySingle && std::count_if(channels.begin(), channels.end(), isVisible) == 1)
        std::find_if(channels.begin(), channels.end(), isVisible)->colour = Channel{}.colour;
    for (Channel& channel : channels)
        channel.name.clear(); // panels have the names of the legend, as the command has them
    DisplaySettings settings;
    settings.channels = std::move(channels);
    settings.planes = model_.planes();
    if (options_.lut && options_.pseudoChannel >= 0 && options_.pseudoChannel < model_.size())
        settings.pseudo = PseudoColour{static_cast<std::size_t>(options_.pseudoChannel), lut_};
    settings.annotation = options_.annotation;
    settings.marksSaturated = options_.marksSaturated;
    settings.panels = options_.panels;
    settings.measuring = {isRunning(), options_.saturatedPercent, options_.showsDataRange};
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

std::vector<std::vector<int>> Viewer::intensitiesAt(const std::vector<QPoint>& pixels) const {
    return loop_.intensitiesAt(pixels, settings(model_.channels()));
}

QImage Viewer::image() const {
    if (rendered_.screens.empty())
        return {};
    const cv::Mat& screen = rendered_.screens.back();
    return QImage(screen.data, screen.cols, screen.rows, static_cast<int>(screen.step),
                  QImage::Format_RGB32)
        .copy();
}

Snapshot Viewer::snapshot() const {
    const DisplaySettings settings = shownSettings();
    const std::vector<cv::Mat> planes = loop_.planes();
    if (planes.empty())
        throw Error(tr("There is no image yet"));
    return {ofChannels(settings, planes), settings, inputs(), pixelSize_};
}

void Viewer::save(const QString& file, const QStringList& inputs,
                  const std::function<void()>& write) {
    saver_.run([this, file, inputs, write]() -> Worker::Outcome {
        checkOutput(file, inputs, Existing::replace);
        write();
        return [this, file] { emit statusMessage(tr("Saved %1").arg(file)); };
    });
}

void Viewer::saveImage(const QString& file, const Snapshot& snapshot) {
    save(file, snapshot.inputs, [file, snapshot] {
        static_cast<void>(outputFormat(file)); // refuses unknown ones before there is work
        Renderer renderer;
        cv::Mat image;
        renderForFile(renderer, snapshot.planes, snapshot.settings, image);
        writeImage(file, image, Existing::replace, snapshot.pixelSize);
    });
}

void Viewer::saveSettings(const QString& file, const std::vector<Channel>& channels) {
    const QByteArray json = settingsJson({channels, std::nullopt});
    save(file, inputs(), [file, json] { writeBytes(file, json, Existing::replace); });
}

BatchCommand Viewer::batchCommand() const {
    if (!files_)
        throw Error(tr("There is no command for camera images: they are not in files"));
    const DisplaySettings settings = shownSettings();
    return lumetra::batchCommand(*files_, settings, rendered_.position);
}

QString Viewer::command() const {
    if (!files_)
        throw Error(hasSource() ? tr("There is no command for camera images: they are not in files")
                                : tr("There are no channels"));
    const DisplaySettings settings = shownSettings();
    std::vector<ChannelFile> channels = ofChannels(settings, files_->filesAt(rendered_.position));
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
        if (settings.panels)
            arguments << (*settings.panels == PanelColours::gray
                              ? QStringLiteral("--panels")
                              : QStringLiteral("--panels=colour"));
    }
    if (rendered_.position.projection)
        arguments << QStringLiteral("--project")
                  << toQt(projectionText(*rendered_.position.projection));
    if (pixelSize_ && pixelSize_ != files_->pixelSize() && !settings.annotation.scaleBar)
        arguments << QStringLiteral("--pixel-size")
                  << QString::number(*pixelSize_, 'g', QLocale::FloatingPointShortest);
    return shellLine(arguments + QStringList{QStringLiteral("-o"), QStringLiteral("image.png")});
}

} // namespace lumetra
