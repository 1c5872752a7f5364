#include "apps/viewer/file_opener.h"

#include "apps/common/error.h"
#include "apps/common/settings.h"
#include "apps/common/text.h"

#include <QFileInfo>

#include <algorithm>
#include <tuple>

namespace lumetra {
namespace {

/// Whether a word stands in a text without letters beside it: "DIC" is not meant by "indicator".
bool holdsWord(const QString& text, const QString& word) {
    for (auto at = text.indexOf(word, 0, Qt::CaseInsensitive); at >= 0;
         at = text.indexOf(word, at + 1, Qt::CaseInsensitive)) {
        const auto end = at + word.size();
        if ((at == 0 || !text[at - 1].isLetter()) && (end == text.size() || !text[end].isLetter()))
            return true;
    }
    return false;
}

} // namespace

Channel guessedChannel(const QString& file, int number, const DyeList& dyes) {
    constexpr std::size_t shortestName = 3;
    const QString name = QFileInfo(file).completeBaseName();
    Channel channel;
    for (const Dye& dye : dyes.all())
        if (dye.name.size() >= std::max(shortestName, channel.dye.size() + 1) &&
            dye.origin != DyeOrigin::colour && holdsWord(name, toQt(dye.name)))
            std::tie(channel.dye, channel.colour) = std::tie(dye.name, dye.colour);
    if (channel.dye.empty()) {
        static const char* const usual[] = {"DAPI", "FITC", "TRITC", "Cy5"};
        const Dye& dye = dyes.at(usual[number % 4]);
        std::tie(channel.dye, channel.colour) = std::tie(dye.name, dye.colour);
    }
    return channel;
}

FileOpener::FileOpener(ChannelModel& model) : model_(model) {
    connect(&worker_, &Worker::failed, this, [this](const QString& reason) {
        giveUp(reason);
        openNext();
    });
}

void FileOpener::open(const QStringList& texts, bool adds) {
    requests_.push_back({texts, adds});
    openNext();
}

void FileOpener::clear() {
    requests_.clear();
    files_.clear();
    pendingSettings_.clear();
    ++turn_;
}

/// Each may add to what the one before it opens, so it waits until that is done.
void FileOpener::openNext() {
    while (!worker_.isBusy() && !requests_.empty()) {
        const Request next = requests_.front();
        requests_.pop_front();
        try {
            begin(next);
        } catch (const std::runtime_error&) {
            giveUp(currentExceptionText());
        }
    }
}

void FileOpener::begin(const Request& request) {
    const bool adds = request.adds && !files_.empty();
    std::vector<ChannelFile> files = adds ? files_ : std::vector<ChannelFile>();
    const auto more = parsed(withoutSettings(request.texts));
    files.insert(files.end(), more.begin(), more.end());
    if (more.empty())
        return;
    worker_.run([this, files, adds, turn = turn_]() -> Worker::Outcome {
        auto source = std::make_shared<FileSource>(files);
        Frame first;
        source->grab(first); // throws before anything changes
        source->setPage(1);
        return [this, source, adds, turn] {
            if (turn == turn_)
                finish(source, adds);
            openNext();
        };
    });
}

void FileOpener::finish(const std::shared_ptr<FileSource>& source, bool adds) {
    const std::vector<Channel> channels = channelsFor(source->files(), adds);
    pendingSettings_.clear();
    files_ = source->files();
    emit opened(source, channels);
}

/// Settings that came with files that cannot be opened are for no others.
void FileOpener::giveUp(const QString& reason) {
    pendingSettings_.clear();
    emit errorOccurred(reason);
}

/// Reads the settings among the files.
QStringList FileOpener::withoutSettings(const QStringList& texts) {
    QStringList images, settings;
    for (const QString& text : texts)
        (text.endsWith(QLatin1String(".json"), Qt::CaseInsensitive) ? settings : images) << text;
    for (const QString& file : settings) {
        const auto channels = readSettings(file, model_.dyes()).channels;
        if (model_.size() > 0 && images.isEmpty())
            model_.applySettings(channels);
        else
            pendingSettings_ = channels;
        emit statusMessage(tr("Loaded settings %1").arg(QFileInfo(file).fileName()));
    }
    return images;
}

std::vector<ChannelFile> FileOpener::parsed(const QStringList& texts) const {
    std::vector<ChannelFile> files;
    for (const QString& text : texts) {
        files.push_back(isChannelText(text) ? parseChannelFile(text, model_.dyes())
                                            : parseFile(text));
        const InputFile& input = files.back();
        if (input.channels.isNamed() || input.slices.isNamed() || input.frames.isNamed())
            throw Error(tr("%1: the viewer opens pages, as FILE[3]").arg(text));
        files.back().file = QFileInfo(files.back().file).absoluteFilePath();
    }
    return files;
}

/// What the texts say; where they name no dye, what the channel in this place was before.
std::vector<Channel> FileOpener::channelsFor(const std::vector<ChannelFile>& files,
                                             bool adds) const {
    const auto& before = model_.channels();
    const bool keeps = adds || (keepsSettings_ && before.size() == files.size());
    std::vector<Channel> channels;
    for (std::size_t i = 0; i < files.size(); ++i) {
        const Channel& named = files[i].channel;
        Channel channel = guessedChannel(files[i].file, static_cast<int>(i), model_.dyes());
        const bool isNamed = !named.dye.empty() || named.colour != Channel{}.colour;
        if (i < pendingSettings_.size())
            channel = pendingSettings_[i];
        else if (keeps && i < before.size())
            channel = before[i];
        if (isNamed && !(adds && i < before.size())) {
            channel.dye = named.dye;
            channel.colour = named.colour;
            channel.offset = named.offset;
        }
        channels.push_back(channel);
    }
    return channels;
}

} // namespace lumetra
