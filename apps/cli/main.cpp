// The command `lumetra`.

#include "apps/cli/command_line.h"
#include "apps/cli/commands.h"
#include "apps/cli/print.h"
#include "apps/cli/signals.h"
#include "apps/common/error.h"
#include "apps/common/messages.h"
#include "platform/platform.h"

#include <opencv2/core.hpp>

#include <algorithm>

namespace lumetra {
namespace {

int refuse(const QString& reason, int status) {
    printError(reason);
    return status;
}

int run(int argc, char** argv) {
    try {
        const std::vector<std::string> words = commandLine(argc, argv);
        std::vector<const char*> pointers(words.size());
        std::transform(words.begin(), words.end(), pointers.begin(),
                       [](const std::string& word) { return word.c_str(); });
        return parseCommandLine(static_cast<int>(pointers.size()), pointers.data())();
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
    lumetra::prepareCommand();
    lumetra::silenceLibraries();
    lumetra::catchSignals();
    cv::setNumThreads(1); // whole images are what runs side by side
    return lumetra::run(argc, argv);
}
