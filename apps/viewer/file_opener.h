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

    /// Opens what `FILE[c1,z3]=DYE+X+Y` names, or plain names of files, in place of what is open or
    /// beside it. If a file cannot be read, nothing is opened. Settings (`.json`) are for the
    /// channels that come with them, or those that are there.
    void open(const QStringList& texts, bool adds);

    /// Forgets what is open, and what waits to be opened.
    void clear();

    /// Whether channels take over the settings of those that are there when the files are alike:
    /// they say the same of their channels. Contrast limits are for one bit depth.
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
    void finish(const std::shared_ptr<FileSource>& source, const std::vector<int>& bits, bool adds);
    void giveUp(const QString& reason);
    QStringList withoutSettings(const QStringList& texts);
    std::vector<ChannelFile> parsed(const QStringList& texts) const;
    std::vector<ChannelFile> shownFiles() const;
    bool isLike(const FileSource& source) const;
    std::vector<Channel> channelsFor(const FileSource& source, const std::vector<int>& bits,
                                     bool adds) const;

    ChannelModel& model_;
    std::deque<Request> requests_;       // that wait for their turn
    int turn_ = 0;                       // rises when what is being opened is not wanted any more
    std::shared_ptr<FileSource> source_; // what is open
    std::vector<Channel> pendingSettings_;
    bool keepsSettings_ = true;
    Worker worker_;
};

} // namespace lumetra
