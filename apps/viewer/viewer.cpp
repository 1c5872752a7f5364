#include "apps/viewer/viewer.h"

#include "apps/common/colour_table.h"
#include "apps/common/failure.h"
#include "apps/common/settings.h"

#include <QFileInfo>

#include <algorithm>

namespace apps {
namespace {

bool isChannelWords(const QString& words) {
    return words.contains(QLatin1Char('=')) && !QFileInfo::exists(words);
}

} // namespace

Channel guessedChannel(const QString& file, int number, const DyeList& dyes) {
    constexpr int shortestName = 3;
    const QString name = QFileInfo(file).completeBaseName();
    Channel channel;
    for (const Dye& dye : dyes.all())
        if (dye.name.size() >= std::max<qsizetype>(shortestName, channel.dye.size() + 1) &&
            name.contains(dye.name, Qt::CaseInsensitive))
            std::tie(channel.dye, channel.colour) = std::tie(dye.name, dye.colour);
    if (channel.dye.isEmpty()) {
        static const char* const usual[] = {"DAPI", "FITC", "TRITC", "Cy5"};
        const Dye& dye = dyes.at(QString::fromLatin1(usual[number % 4]));
        std::tie(channel.dye, channel.colour) = std::tie(dye.name, dye.colour);
    }
    return channel;
}

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

/// Opens the settings among dropped files; they are for the channels that come with them.
QStringList Viewer::withoutSettings(const QStringList& words) {
    QStringList pictures, settings;
    for (const QString& word : words)
        (word.endsWith(QLatin1String(".json"), Qt::CaseInsensitive) ? settings : pictures) << word;
    for (const QString& file : settings) {
        const auto channels = readSettings(file, model_.dyes()).channels;
        if (hasSource() && pictures.isEmpty())
            model_.applySettings(channels);
        else
            pendingSettings_ = channels;
        emit said(QStringLiteral("%1: settings of %2 channels")
                      .arg(apps::shown(QFileInfo(file).fileName()))
                      .arg(channels.size()));
    }
    return pictures;
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

std::vector<ChannelFile> Viewer::parsed(const QStringList& words) const {
    std::vector<ChannelFile> files;
    for (const QString& word : words) {
        files.push_back(isChannelWords(word) ? parseChannelFile(word, model_.dyes())
                                             : parseFile(word));
        files.back().file = QFileInfo(files.back().file).absoluteFilePath();
        if (!isChannelWords(word))
            files.back().channel = Channel{};
    }
    return files;
}

void Viewer::open(const QStringList& words, bool adds) {
    openings_.push_back({words, adds});
    openNext();
}

/// Each may add to what the one before it opens, so it waits until that is done.
void Viewer::openNext() {
    while (jobs_ == 0 && !openings_.empty()) {
        const Opening next = openings_.front();
        openings_.pop_front();
        beginToOpen(next.words, next.adds);
    }
}

void Viewer::beginToOpen(const QStringList& words, bool adds) {
    try {
        std::vector<ChannelFile> files =
            adds && stack_ ? stack_->files() : std::vector<ChannelFile>();
        const auto more = parsed(withoutSettings(words));
        files.insert(files.end(), more.begin(), more.end());
        if (more.empty())
            return;
        inBackground([this, files, adds]() -> std::function<void()> {
            auto stack = std::make_shared<StackSource>(files);
            Frame first;
            stack->grab(first); // says what is wrong before anything changes
            stack->seek(1);
            return [this, stack, adds] { setStack(stack, adds); };
        });
    } catch (const Failure& failure) {
        emit problem(failure.text());
    }
}

/// What the words say; where they name no dye, what the channel in this place was before.
std::vector<Channel> Viewer::channelsFor(const std::vector<ChannelFile>& files, bool adds) const {
    const bool keeps = adds || (keepsSettings_ && model_.channels().size() == files.size());
    std::vector<Channel> channels;
    for (std::size_t i = 0; i < files.size(); ++i) {
        const Channel& named = files[i].channel;
        Channel channel = guessedChannel(files[i].file, static_cast<int>(i), model_.dyes());
        const bool isNamed = !named.dye.isEmpty() || named.colour != Channel{}.colour;
        if (i < pendingSettings_.size())
            channel = pendingSettings_[i];
        else if (keeps && i < model_.channels().size())
            channel = model_.channels()[i];
        if (isNamed && !(adds && i < model_.channels().size())) {
            channel.dye = named.dye;
            channel.colour = named.colour;
            channel.offset = named.offset;
        }
        channels.push_back(channel);
    }
    return channels;
}

void Viewer::setStack(const std::shared_ptr<StackSource>& stack, bool adds) {
    const std::vector<Channel> channels = channelsFor(stack->files(), adds && stack_);
    pendingSettings_.clear();
    setSource(stack, channels);
    stack_ = stack;
    updateView();
    emit sourceChanged();
    feed_->single();
}

void Viewer::connectCamera(std::shared_ptr<FrameSource> camera,
                           const std::vector<Channel>& channels) {
    setSource(std::move(camera), channels);
    emit sourceChanged();
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
    openings_.clear();
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
