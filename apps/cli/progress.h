// How far a long work has come.
#pragma once

#include <QElapsedTimer>
#include <QFile>
#include <QString>

#include <mutex>

namespace lumetra {

/// Tells how many fields are done: on a terminal in one line that is written anew, otherwise in a
/// line every ten seconds, and in a file for programs if there is one. Safe from any thread.
class Progress {
public:
    /// @param work   What is done, in a word.
    /// @param total  How many fields.
    /// @param file   Receives `key=value` lines after each field, the last of them `progress=end`
    ///               or `progress=continue`; may be empty.
    /// @param isLast  Whether nothing follows, so that the file may end.
    /// @throws Error with the file's name if it cannot be opened.
    Progress(QString work, int total, bool quiet, const QString& file, bool isLast = true);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Starts anew, for another pass over the same fields.
    void restart();

    void fieldDone();

    void fieldFailed();

    /// "12 of 60 fields", those that failed included.
    QString reached();

    /// To be called a few times a second.
    void tick();

private:
    double perSecond() const;
    double secondsLeft() const;
    QString line() const;
    void show();
    void writeFile(const char* state);

    std::mutex mutex_;
    const QString work_;
    const int total_;
    const bool quiet_, terminal_, isLast_;
    int done_ = 0, failed_ = 0;
    qint64 shownAt_ = 0;
    bool onScreen_ = false;
    QElapsedTimer timer_;
    QFile file_;
};

} // namespace lumetra
