// The command `lumetra`.

#include "apps/common/failure.h"
#include "apps/common/messages.h"
#include "apps/lumetra/commands.h"
#include "apps/lumetra/signals.h"

#include <opencv2/core.hpp>

#include <QByteArray>

#include <CLI/CLI.hpp>

#include <clocale>
#include <cstring>
#include <langinfo.h>
#include <malloc.h>

namespace apps {
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
/// anew, cleared page by page, for every picture.
void keepMemory() {
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    mallopt(M_TRIM_THRESHOLD, 256 << 20);
}

int refuse(const QString& reason, int status) {
    tell(QStringLiteral("lumetra: %1\n").arg(reason));
    return status;
}

int parseAndRun(int argc, char** argv) {
    CLI::App program("Colours and merges the channels of fluorescence microscopes", "lumetra");
    program.footer("example: lumetra merge nuclei.tif=DAPI actin.tif=FITC+3-2 -o cells.png\n"
                   "'lumetra COMMAND --help' tells more of each command.");
    program.set_version_flag("--version", "lumetra " LUMETRA_VERSION, "Says the version");
    program.set_help_flag("-h,--help", "Says what there is");
    program.require_subcommand(1);
    program.failure_message(CLI::FailureMessage::simple);
    Action action;
    addDyesCommand(program, action);
    addInfoCommand(program, action);
    addDyeCommand(program, action);
    addPseudoCommand(program, action);
    addMergeCommand(program, action);
    addLevelsCommand(program, action);
    addBatchCommand(program, action);
    addGalleryCommand(program, action);
    try {
        program.parse(argc, argv);
    } catch (const CLI::Success& success) { // help or version
        std::ostringstream text;
        program.exit(success, text, text);
        print(QString::fromStdString(text.str()));
        return done;
    } catch (const CLI::ParseError& error) {
        return refuse(shown(QString::fromUtf8(error.what())) +
                          QStringLiteral(" (lumetra --help tells more)"),
                      badUsage);
    }
    return action();
}

int run(int argc, char** argv) {
    try {
        return parseAndRun(argc, argv);
    } catch (const Interrupted&) {
        return 128 + caughtSignal();
    } catch (const BadUsage& usage) {
        return refuse(usage.text(), badUsage);
    } catch (...) {
        return refuse(currentReason(), failed);
    }
}

} // namespace
} // namespace apps

int main(int argc, char** argv) {
    apps::keepMemory();
    apps::useUtf8();
    apps::silenceLibraries();
    apps::catchSignals();
    cv::setNumThreads(1); // whole pictures are what runs side by side
    return apps::run(argc, argv);
}
