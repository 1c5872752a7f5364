#include "apps/cli/progress.h"

#include "apps/common/error.h"
#include "apps/common/messages.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace lumetra {
namespace {

constexpr qint64 terminalPeriod = 200, linePeriod = 10000; // milliseconds

QString clockText(double seconds) {
    const auto whole = static_cast<qint64>(std::ceil(std::min(seconds, 359999.0)));
    return QStringLiteral("%1:%2:%3")
        .arg(whole / 3600)
        .arg(whole / 60 % 60, 2, 10, QLatin1Char('0'))
        .arg(whole % 60, 2, 10, QLatin1Char('0'));
}

QString bar(int done, int total) {
    constexpr int width = 16;
    const int filled = total > 0 ? static_cast<int>(qint64{width} * done / total) : 0;
    return QStringLiteral("[%1%2]").arg(QString(filled, QLatin1Char('#')),
                                        QString(width - filled, QLatin1Char('.')));
}

} // namespace

Progress::Progress(QString work, int total, bool quiet, const QString& file, bool isLast)
    : work_(std::move(work)), total_(total), quiet_(quiet), terminal_(printsToTerminal()),
      isLast_(isLast) {
    timer_.start();
    if (file.isEmpty())
        return;
    file_.setFileName(file);
    if (!file_.open(QIODevice::WriteOnly | QIODevice::Append))
        throw Error(QStringLiteral("%1: %2").arg(file, file_.errorString()));
    writeFile("continue");
}

Progress::~Progress() {
    const std::lock_guard lock(mutex_);
    if (onScreen_)
        printStatus(QStringLiteral("\r\033[K"));
    writeFile(isLast_ && done_ + failed_ == total_ ? "end" : "continue");
}

double Progress::perSecond() const {
    return 1000.0 * (done_ + failed_) / static_cast<double>(std::max<qint64>(timer_.elapsed(), 1));
}

double Progress::secondsLeft() const {
    const double rate = perSecond();
    return rate > 0 ? (total_ - done_ - failed_) / rate : 0;
}

QString Progress::line() const {
    const QString failed = failed_ > 0 ? QStringLiteral(", %1 failed").arg(failed_) : QString();
    return QStringLiteral("%1 of %2 fields%3, %4 a second, %5 left")
        .arg(done_ + failed_)
        .arg(total_)
        .arg(failed)
        .arg(perSecond(), 0, 'f', 1)
        .arg(clockText(secondsLeft()));
}

void Progress::show() {
    const qint64 now = timer_.elapsed();
    if (quiet_ || now - shownAt_ < (terminal_ ? terminalPeriod : linePeriod))
        return;
    shownAt_ = now;
    onScreen_ = terminal_;
    printStatus(terminal_
                    // Without a line break at the right edge: a second line would stay for good.
                    ? QStringLiteral("\r\033[K\033[?7l%1 %2 %3\033[?7h")
                          .arg(work_, bar(done_ + failed_, total_), line())
                    : QStringLiteral("lumetra: %1: %2\n").arg(work_, line()));
}

void Progress::writeFile(const char* state) {
    if (!file_.isOpen())
        return;
    const QString text = QStringLiteral("work=%1\ntotal=%2\ndone=%3\nfailed=%4\nper_second=%5\n"
                                        "seconds_left=%6\nprogress=%7\n")
                             .arg(work_)
                             .arg(total_)
                             .arg(done_)
                             .arg(failed_)
                             .arg(perSecond(), 0, 'f', 2)
                             .arg(secondsLeft(), 0, 'f', 1)
                             .arg(QLatin1String(state));
    file_.write(text.toUtf8());
    file_.flush();
}

void Progress::restart() {
    const std::lock_guard lock(mutex_);
    done_ = failed_ = 0;
    timer_.restart();
    shownAt_ = 0;
}

void Progress::fieldDone() {
    const std::lock_guard lock(mutex_);
    ++done_;
    writeFile("continue");
    show();
}

void Progress::fieldFailed() {
    const std::lock_guard lock(mutex_);
    ++failed_;
    writeFile("continue");
    show();
}

QString Progress::reached() {
    const std::lock_guard lock(mutex_);
    return QStringLiteral("%1 of %2")
        .arg(done_ + failed_)
        .arg(plural(static_cast<std::size_t>(total_), QStringLiteral("field")));
}

void Progress::tick() {
    const std::lock_guard lock(mutex_);
    show();
}

} // namespace lumetra
