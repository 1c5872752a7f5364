#include "apps/common/messages.h"

#include "apps/common/error.h"
#include "platform/platform.h"

#include <opencv2/core.hpp>
#include <opencv2/core/utils/logger.hpp>

#include <QByteArray>
#include <QtGlobal>

#include <cstdio>

namespace lumetra {
namespace {

/// What Qt says before it ends the program, and nothing else.
void printFatal(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
    if (type == QtFatalMsg)
        printError(message);
}

} // namespace

void silenceLibraries() {
    cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
    cv::redirectError([](int, const char*, const char*, const char*, int, void*) { return 0; });
    qInstallMessageHandler(printFatal);
}

bool printsToTerminal() { return isTerminal(stderr); }

bool writesToTerminal() { return isTerminal(stdout); }

void printStatus(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stderr);
    std::fflush(stderr);
}

void printError(const QString& message) {
    printStatus(QStringLiteral("lumetra: %1\n").arg(escaped(message)));
}

} // namespace lumetra
