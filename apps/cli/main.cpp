// The command `lumetra`.

#include "apps/cli/command_line.h"
#include "apps/cli/commands.h"
#include "apps/cli/print.h"
#include "apps/cli/signals.h"
#include "apps/common/error.h"
#include "apps/common/messages.h"

#include <opencv2/core.hpp>

#include <QByteArray>

#include <clocale>
#include <cstring>
#include <langinfo.h>
#include <malloc.h>

namespace lumetra {
namespace {

/// Names of files are UTF-8 here, whatever language the user has set, none included.
void useUtf8() {
    std::setlocale(LC_CTYPE, "");
    if (std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0) {
        qputenv("LC_ALL", "C.UTF-8");
        std::setlocale(LC_CTYPE, "C.UTF-8");
    }
}

/// Keeps the memory of planes for the next ones, where the C library would give it back and take it
/// anew, cleared page by page, for every image.
void keepMemory() {
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    mallopt(M_TRIM_THRESHOLD, 256 << 20);
}

int refuse(const QString& reason, int status) {
    printError(reason);
    return status;
}

int run(int argc, char** argv) {
    try {
        return parseCommandLine(argc, argv)();
    } catch (const Interrupted& interrupted) {
        if (!interrupted.howFar.isEmpty())
            printError(interrupted.howFar);
        return 128 + caughtSignal();
    } catch (const UsageError& usage) {
        return refuse(usage.text(), badUsage);
    } catch (...) {
        return refuse(currentErrorText(), failed);
    }
}

} // namespace
} // namespace lumetra

int main(int argc, char** argv) {
    lumetra::keepMemory();
    lumetra::useUtf8();
    lumetra::silenceLibraries();
    lumetra::catchSignals();
    cv::setNumThreads(1); // whole images are what runs side by side
    return lumetra::run(argc, argv);
}
