#include "apps/viewer/file_opener.h"

#include "apps/common/error.h"
#include "apps/common/settings.h"

#include <QFileInfo>

#include <algorithm>

namespace lumetra {

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
    source_.reset();
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
    const bool adds = request.adds && source_;
    std::vector<ChannelFile> files = adds ? shownFiles() : std::vector<ChannelFile>();
    const auto more = parsed(withoutSettings(request.texts));
    files.insert(files.end(), more.begin(), more.end());
    if (more.empty())
        return;
    worker_.run([this, files, adds, dyes = model_.dyes(), turn = turn_]() -> Worker::Outcome {
        auto source = std::make_shared<FileSource>(files, dyes);
        Frame first;
        source->grab(first); // throws before anything changes
        std::vector<int> bits;
        for (const cv::Mat& plane : first.planes)
            bits.push_back(plane.depth() == CV_8U ? 8 : 16);
        return [this, source, bits, adds, turn] {
            if (turn == turn_)
                finish(source, bits, adds);
            openNext();
        };
    });
}

/// What is open, without the channels that were removed.
std::vector<ChannelFile> FileOpener::shownFiles() const {
    std::vector<ChannelFile> files;
    for (const std::size_t plane : model_.planes())
        files.push_back(source_->channels().at(plane).input);
    return files;
}

void FileOpener::finish(const std::shared_ptr<FileSource>& source, const std::vector<int>& bits,
                        bool adds) {
    const std::vector<Channel> channels = channelsFor(*source, bits, adds);
    pendingSettings_.clear();
    source_ = source;
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
        files.back().file = QFileInfo(files.back().file).absoluteFilePath();
    }
    return files;
}

/// Whether files say of their channels what those say that are open.
bool FileOpener::isLike(const FileSource& source) const {
    const auto isAlike = [](const FileSource::FileChannel& a, const FileSource::FileChannel& b) {
        return a.described.name == b.described.name && a.described.dye == b.described.dye;
    };
    const auto& channels = source.channels();
    return source_ && std::equal(channels.begin(), channels.end(), source_->channels().begin(),
                                 source_->channels().end(), isAlike);
}

/// What the texts say; otherwise settings that came with them, what the channel was before, or what
/// the file says.
std::vector<Channel> FileOpener::channelsFor(const FileSource& source, const std::vector<int>& bits,
                                             bool adds) const {
    const std::vector<ChannelRow>& rows = model_.rows();
    const bool keeps = keepsSettings_ && isLike(source);
    std::vector<Channel> channels;
    for (std::size_t i = 0; i < source.channels().size(); ++i) {
        const FileSource::FileChannel& opened = source.channels()[i];
        const auto before =
            adds ? std::next(rows.begin(), static_cast<std::ptrdiff_t>(std::min(i, rows.size())))
                 : std::find_if(rows.begin(), rows.end(),
                                [&](const ChannelRow& row) { return keeps && row.plane == i; });
        Channel channel = opened.described;
        if (i < pendingSettings_.size())
            channel = pendingSettings_[i];
        else if (before != rows.end())
            channel = before->channel;
        if (i >= pendingSettings_.size() && channel.levelsBits != bits[i]) {
            channel.levels.reset();
            channel.levelsBits = 0;
        }
        if (opened.isNamed && !(adds && before != rows.end())) {
            channel.dye = opened.input.channel.dye;
            channel.colour = opened.input.channel.colour;
            channel.offset = opened.input.channel.offset;
        }
        channels.push_back(channel);
    }
    return channels;
}

} // namespace lumetra
