#include "apps/viewer/viewer.h"

#include "apps/common/colour_table.h"
#include "apps/common/failure.h"

#include <QFileInfo>

#include <algorithm>

namespace apps {

Viewer::Viewer() {
    pool_.setMaxThreadCount(1);
    qRegisterMetaType<std::function<void()>>("std::function<void()>");
    connect(
        this, &Viewer::done, this,
        [this](const std::function<void()>& outcome) {
            --jobs_;
            outcome();
            openNext();
        },
        Qt::QueuedConnection);
    connect(&model_, &ChannelModel::edited, this, &Viewer::updateView);
    connect(&model_, &ChannelModel::refused, this, &Viewer::problem);
    connect(&loop_, &RenderLoop::ready, this, &Viewer::takePicture, Qt::QueuedConnection);
}

Viewer::~Viewer() {
    feed_.reset();
    pool_.waitForDone();
}

/// Runs work in the pool, and what it returns in the window's thread.
void Viewer::inBackground(const std::function<std::function<void()>()>& work) {
    ++jobs_;
    pool_.start([this, work] {
        std::function<void()> outcome;
        try {
            outcome = work();
        } catch (...) {
            outcome = [this, reason = currentReason()] { emit problem(reason); };
        }
        emit done(outcome);
    });
}

void Viewer::connectCamera(std::shared_ptr<FrameSource> camera,
                           const std::vector<Channel>& channels) {
    forgetOpenings();
    setSource(std::move(camera), channels);
    emit sourceChanged();
}

/// What is being opened was asked for before what is asked for now.
void Viewer::forgetOpenings() {
    openings_.clear();
    pendingSettings_.clear();
    ++turn_;
}

void Viewer::setSource(std::shared_ptr<FrameSource> source, const std::vector<Channel>& channels) {
    feed_.reset();
    stack_.reset();
    loop_.clear();
    shown_ = {};
    options_.pseudoChannel =
        std::min(options_.pseudoChannel, static_cast<int>(channels.size()) - 1);
    model_.setChannels(channels);
    oldest_ = revision_;
    feed_ = std::make_unique<FrameFeed>(std::move(source),
                                        [this](Frame& frame) { loop_.offer(frame); });
    connect(feed_.get(), &FrameFeed::failed, this, [this](const QString& reason) {
        updateView();
        emit sourceChanged();
        emit problem(reason);
    });
}

void Viewer::close() {
    forgetOpenings();
    feed_.reset();
    stack_.reset();
    loop_.clear();
    shown_ = {};
    model_.setChannels({});
    emit sourceChanged();
    emit pictureChanged();
}

QString Viewer::title() const {
    if (!hasSource())
        return {};
    if (!stack_)
        return QStringLiteral("Camera");
    QStringList names;
    for (const ChannelFile& file : stack_->files())
        names << apps::shown(QFileInfo(file.file).fileName());
    return names.join(QStringLiteral(", "));
}

void Viewer::start() {
    if (!feed_)
        return;
    feed_->start(rate_);
    updateView();
    emit sourceChanged();
}

void Viewer::stop() {
    if (!feed_)
        return;
    feed_->stop();
    updateView(); // the last frame now gets its full attention
    emit sourceChanged();
}

void Viewer::single() {
    if (feed_)
        feed_->single();
}

void Viewer::setRate(double framesPerSecond) {
    rate_ = framesPerSecond;
    if (isRunning())
        feed_->start(rate_);
}

void Viewer::turnTo(int page) {
    if (!stack_)
        return;
    stack_->seek(page);
    feed_->single();
}

void Viewer::setOptions(const ViewOptions& options) {
    QVector<QColor> colours;
    try {
        if (options.table) {
            const auto table = colourTable(options.table->table);
            colours = pseudoSlots(options.table->reversed ? reversedTable(table) : table);
        }
    } catch (const Failure& failure) {
        emit problem(failure.text());
        return;
    }
    options_ = options;
    slotColours_ = colours;
    updateView();
}

View Viewer::view() const {
    View view;
    view.channels = model_.channels();
    for (Channel& channel : view.channels)
        channel.levels = channel.levels.value_or(LevelRange{});
    if (options_.table && options_.pseudoChannel >= 0 && options_.pseudoChannel < model_.size())
        view.pseudo = PseudoColour{static_cast<std::size_t>(options_.pseudoChannel), slotColours_};
    const auto isVisible = [](const Channel& channel) { return channel.visible; };
    if (options_.graySingle &&
        std::count_if(view.channels.begin(), view.channels.end(), isVisible) == 1)
        std::find_if(view.channels.begin(), view.channels.end(), isVisible)->colour = Qt::white;
    view.annotation = options_.annotation;
    view.marksSaturated = options_.marksSaturated;
    view.isLive = isRunning();
    view.revision = revision_;
    return view;
}

void Viewer::updateView() {
    ++revision_;
    View wanted = view();
    const std::vector<Channel> requested = model_.requested();
    for (std::size_t i = 0; i < requested.size(); ++i)
        wanted.channels[i].levels = requested[i].levels;
    loop_.setView(wanted);
}

void Viewer::takePicture() {
    if (!loop_.take(shown_))
        return;
    if (!hasSource() || shown_.revision < oldest_) { // of what was shown before
        shown_ = {};
        return;
    }
    constexpr int often = 100; // milliseconds: numbers that change faster cannot be read
    const bool isDue = !isRunning() || revision_ != adopted_ || sinceAdoption_.hasExpired(often);
    if (shown_.revision == revision_ && isDue) {
        adopted_ = revision_;
        sinceAdoption_.start();
        if (model_.adopt(shown_.levels, shown_.measures))
            updateView();
    }
    emit pictureChanged();
}

std::vector<int> Viewer::samplesAt(QPoint pixel) const {
    std::vector<Channel> channels = model_.channels();
    if (options_.table)
        for (Channel& channel : channels)
            channel.offset = {};
    return loop_.samplesAt(pixel, channels);
}

} // namespace apps
