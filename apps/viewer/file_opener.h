// Which files are opened, and as which channels.
#pragma once

#include "apps/viewer/channel_model.h"
#include "apps/viewer/file_source.h"
#include "apps/viewer/worker.h"

#include <deque>
#include <memory>

namespace lumetra {

/// Opens image files in another thread, one request after another, and finds out how their channels
/// are to be shown.
class FileOpener : public QObject {
    Q_OBJECT
public:
    /// @param model  The channels that are shown. Settings without images are applied to them.
    explicit FileOpener(ChannelModel& model);

    /// Opens what `FILE[PAGE]=DYE+X+Y` names, or plain names of files, in place of what is open or
    /// beside it. If a file cannot be read, nothing is opened. Settings (`.json`) are for the
    /// channels that come with them, or those that are there.
    void open(const QStringList& texts, bool adds);

    /// Forgets what is open, and what waits to be opened.
    void clear();

    /// Whether channels take over the settings of those that are there when their number is equal.
    void keepSettings(bool on) { keepsSettings_ = on; }

    bool isBusy() const { return worker_.isBusy() || !requests_.empty(); }

signals:
    void opened(std::shared_ptr<lumetra::FileSource> source,
                std::vector<lumetra::Channel> channels);
    void statusMessage(const QString& text);
    void errorOccurred(const QString& reason);

private:
    struct Request {
        QStringList texts;
        bool adds = false;
    };

    void openNext();
    void begin(const Request& request);
    void finish(const std::shared_ptr<FileSource>& source, bool adds);
    void giveUp(const QString& reason);
    QStringList withoutSettings(const QStringList& texts);
    std::vector<ChannelFile> parsed(const QStringList& texts) const;
    std::vector<Channel> channelsFor(const std::vector<ChannelFile>& files, bool adds) const;

    ChannelModel& model_;
    std::deque<Request> requests_; // that wait for their turn
    int turn_ = 0;                 // rises when what is being opened is not wanted any more
    std::vector<ChannelFile> files_;
    std::vector<Channel> pendingSettings_;
    bool keepsSettings_ = true;
    Worker worker_;
};

/// Dye and colour for a channel whose file names none: a built-in dye that its name holds,
/// otherwise one that tells it from the others.
/// @param number  Counted from 0.
Channel guessedChannel(const QString& file, int number, const DyeList& dyes);

} // namespace lumetra
