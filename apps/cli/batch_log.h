// What has become of the fields of a batch.
#pragma once

#include "apps/cli/data_set.h"

#include <QFile>
#include <QJsonObject>
#include <QMap>

#include <mutex>

namespace lumetra {

/// A file of JSON, one line for each field that was done or failed. Safe from any thread, and for
/// several programs at once, which wait for each other at every line.
class BatchLog {
public:
    /// @param file    May be empty: then nothing is kept.
    /// @param resume  Whether to read what earlier runs have done.
    /// @throws Error with the file's name, as all of this class.
    BatchLog(const QString& file, bool resume);

    /// Whether an earlier run has done exactly this, and its image is there.
    bool isDone(const QJsonObject& work) const;

    void addDone(QJsonObject work, qint64 milliseconds);
    void addFailed(QJsonObject work, qint64 milliseconds, const QString& reason);

private:
    void add(const QJsonObject& line);

    std::mutex mutex_;
    QFile file_;
    QMap<QString, QJsonObject> doneByOutput_;
};

/// Everything that the bytes of a field's image depend on.
QJsonObject workOf(const Field& field, const RenderSpec& rendering);

/// The same with the contrast limits that were used.
QJsonObject withLevels(QJsonObject work, const std::vector<Channel>& channels);

/// Whether a log's word for how contrast limits were found says that they are an image's own.
bool isMeasuredMethod(const QString& method);

/// What a log says of an image.
struct LoggedImage {
    QString output;
    QString reason;                ///< Why it failed; empty if it is done.
    std::vector<Channel> channels; ///< With the contrast limits that were used.
    QStringList methods;           ///< How the contrast limits of each channel were found.
};

/// What a log says, in the order of its lines. What is no line of a log is skipped, since a program
/// that was killed may have left a part of one.
/// @throws Error with the file's name if it cannot be read.
std::vector<LoggedImage> readLog(const QString& file);

} // namespace lumetra
