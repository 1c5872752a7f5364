// The program lumetra-viewer.

#include "apps/common/failure.h"
#include "apps/common/messages.h"
#include "apps/viewer/measuring.h"
#include "apps/viewer/window.h"

#include <opencv2/core.hpp>

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>

namespace {

const QString channelsHelp =
    QStringLiteral("Channels: FILE, or FILE[PAGE]=DYE+X+Y as for 'lumetra merge'; settings end in "
                   ".json.");

struct Options {
    QCommandLineOption settings{QStringLiteral("settings"),
                                QStringLiteral("Shows the channels as a settings file says."),
                                QStringLiteral("FILE")};
    QCommandLineOption custom{QStringLiteral("custom"), QStringLiteral("Adds a file of own dyes."),
                              QStringLiteral("FILE")};
    QCommandLineOption camera{QStringLiteral("camera"),
                              QStringLiteral("Starts a simulated camera of N channels, 2 to 4."),
                              QStringLiteral("N")};
    QCommandLineOption rate{QStringLiteral("rate"), QStringLiteral("Frames a second."),
                            QStringLiteral("NUMBER"), QStringLiteral("30")};
    QCommandLineOption measure{QStringLiteral("measure"), QString(), QStringLiteral("SECONDS")};
};

/// A number between two others, or the end of the program with a word.
double numberOf(const QCommandLineParser& parser, const QCommandLineOption& option, double least,
                double most) {
    bool isNumber = false;
    const double number = parser.value(option).toDouble(&isNumber);
    if (isNumber && number >= least && number <= most)
        return number;
    apps::tell(QStringLiteral("lumetra-viewer: --%1 takes a number from %2 to %3\n")
                   .arg(option.names().constFirst())
                   .arg(least)
                   .arg(most));
    std::exit(2);
}

void openWhatWasNamed(apps::Window& window, const QCommandLineParser& parser,
                      const Options& options) {
    apps::Viewer& viewer = window.viewer();
    if (parser.isSet(options.custom)) {
        try {
            viewer.model().setCustomDyes(apps::readCustomDyes(parser.value(options.custom)));
        } catch (const apps::Failure& failure) {
            emit viewer.problem(failure.text());
        }
    }
    QStringList words = parser.positionalArguments();
    if (parser.isSet(options.settings))
        words.prepend(parser.value(options.settings));
    viewer.open(words);
}

int run(QApplication& application) {
    QCommandLineParser parser;
    Options options;
    options.measure.setFlags(QCommandLineOption::HiddenFromHelp);
    parser.setApplicationDescription(
        QStringLiteral("Looks at the channels of fluorescence microscopes, live and in files."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions(
        {options.settings, options.custom, options.camera, options.rate, options.measure});
    parser.addPositionalArgument(QStringLiteral("CHANNEL"), channelsHelp,
                                 QStringLiteral("[CHANNEL...]"));
    if (!parser.parse(QApplication::arguments())) {
        apps::tell(QStringLiteral("lumetra-viewer: %1\n").arg(apps::shown(parser.errorText())));
        return 2;
    }
    parser.process(application);

    apps::Window window;
    const double rate = numberOf(parser, options.rate, 0, 1000);
    window.show();
    if (parser.isSet(options.measure)) {
        apps::measureAndQuit(window, numberOf(parser, options.measure, 1, 1e6), rate);
    } else if (parser.isSet(options.camera)) {
        window.viewer().setRate(rate);
        window.startCamera(static_cast<int>(numberOf(parser, options.camera, 2, 4)));
    } else {
        openWhatWasNamed(window, parser, options);
    }
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
#endif
    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("lumetra"));
    QApplication::setApplicationName(QStringLiteral("lumetra-viewer"));
    QApplication::setApplicationVersion(QStringLiteral(LUMETRA_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("lumetra-viewer"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("lumetra-viewer")));
    apps::silenceLibraries();
    cv::setNumThreads(1); // one core is for the camera
    return run(application);
}
