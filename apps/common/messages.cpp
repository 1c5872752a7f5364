#include "apps/common/messages.h"

#include <opencv2/core.hpp>
#include <opencv2/core/utils/logger.hpp>

#include <QByteArray>
#include <QLoggingCategory>

#include <atomic>
#include <cerrno>

#include <fcntl.h>
#include <tiffio.h>
#include <unistd.h>

namespace apps {
namespace {

std::atomic<int> userOutput{STDERR_FILENO};

} // namespace

void silenceLibraries() {
    cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
    cv::redirectError([](int, const char*, const char*, const char*, int, void*) { return 0; });
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false\ndefault.warning=false"));

    const int kept = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (kept >= 0 && nowhere >= 0 && dup2(nowhere, STDERR_FILENO) == STDERR_FILENO)
        userOutput = kept;
    if (nowhere >= 0)
        close(nowhere);
}

bool isToldToTerminal() { return isatty(userOutput) == 1; }

void tell(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    const char* next = bytes.constData();
    const char* const end = next + bytes.size();
    while (next < end) {
        const auto written = write(userOutput, next, static_cast<size_t>(end - next));
        if (written < 0 && errno != EINTR)
            return; // nobody is left to be told
        next += written > 0 ? written : 0;
    }
}

} // namespace apps
