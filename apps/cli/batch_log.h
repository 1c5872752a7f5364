// What has become of the fields of a batch.
#pragma once

#include "apps/cli/field.h"
#include "apps/cli/render_spec.h"

#include <QFile>
#include <QJsonObject>

#include <functional>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace lumetra {

/// A file of JSON, one line for each field that was done or failed. Safe from any thread, and for
/// several programs at once, which wait for each other at every line.
class BatchLog {
public:
    /// @param file    May be empty: then nothing is kept.
    /// @param resume  Whether to read what earlier runs have done.
    /// @throws Error with the file's name, as all of this class; also if the file is there and no
    ///         log, to which lines would be added.
    BatchLog(const QString& file, bool resume);

    /// Whether an earlier run has done exactly this, and its image is there.
    bool isDone(const QJsonObject& work);

    void addDone(QJsonObject work, qint64 milliseconds);
    void addFailed(QJsonObject work, qint64 milliseconds, const QString& reason);

private:
    void add(const QJsonObject& line);
    void readEarlier();
    QJsonObject earlierLine(const QString& output);

    std::mutex mutex_;
    QFile file_;
    QFile earlier_; ///< The same, for reading.
    /// Where the latest line of each image begins that is done, by a hash of the output's name. A
    /// million of them take little memory; the line itself is read when it is asked for.
    std::unordered_map<std::size_t, qint64> doneByOutput_;
};

/// Everything that the bytes of a field's image depend on.
QJsonObject workOf(const Field& field, const RenderSpec& rendering);

/// The same with the contrast limits that were used.
QJsonObject withLevels(QJsonObject work, const std::vector<Channel>& channels);

/// Whether a log's word for how contrast limits were found says that they are an image's own.
bool isMeasuredMethod(const QString& method);

/// The channels of an image as a log has them.
struct LoggedChannels {
    std::vector<Channel> channels; ///< With the contrast limits that were used.
    QStringList methods;           ///< How the contrast limits of each channel were found.
};

/// What a log says of an image.
struct LoggedImage {
    QString output;
    QString reason;                                 ///< Why it failed; empty if it is done.
    std::shared_ptr<const LoggedChannels> channels; ///< The same for lines that say the same.
};

/// Gives what a log says, in the order of its lines. What is no line of a log is skipped, since a
/// program that was killed may have left a part of one.
/// @throws Error with the file's name if it cannot be read.
void readLog(const QString& file, const std::function<void(LoggedImage)>& add);

} // namespace lumetra
