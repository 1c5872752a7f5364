// Which files are opened, and as which channels.

#include "apps/common/failure.h"
#include "apps/common/settings.h"
#include "apps/viewer/viewer.h"

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
        inBackground([this, files, adds, turn = turn_]() -> std::function<void()> {
            try {
                auto stack = std::make_shared<StackSource>(files);
                Frame first;
                stack->grab(first); // says what is wrong before anything changes
                stack->seek(1);
                return [this, stack, adds, turn] {
                    if (turn == turn_)
                        setStack(stack, adds);
                };
            } catch (...) {
                return [this, reason = currentReason()] { giveUp(reason); };
            }
        });
    } catch (const Failure& failure) {
        giveUp(failure.text());
    }
}

/// Settings that came with files that cannot be opened are for no others.
void Viewer::giveUp(const QString& reason) {
    pendingSettings_.clear();
    emit problem(reason);
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

} // namespace apps
