// The program lumetra-viewer.

#include "apps/common/custom_dyes.h"
#include "apps/common/error.h"
#include "apps/common/messages.h"
#include "apps/viewer/window.h"
#include "platform/platform.h"

#include <opencv2/core.hpp>

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace {

struct Options {
    QCommandLineOption settings{
        QStringLiteral("settings"),
        QCoreApplication::translate("main", "Show the channels as a settings file says."),
        QStringLiteral("FILE")};
    QCommandLineOption custom{QStringLiteral("custom"),
                              QCoreApplication::translate("main", "Add custom dyes from a file."),
                              QStringLiteral("FILE")};
    QCommandLineOption camera{
        QStringLiteral("camera"),
        QCoreApplication::translate("main", "Start a simulated camera with 1 to 4 channels."),
        QStringLiteral("N")};
    QCommandLineOption rate{QStringLiteral("rate"),
                            QCoreApplication::translate("main", "Frames per second of the camera."),
                            QStringLiteral("NUMBER"), QStringLiteral("30")};
};

/// A number between two others, or the end of the program with a message.
double numberOf(const QCommandLineParser& parser, const QCommandLineOption& option, double least,
                double most) {
    bool isNumber = false;
    const double number = parser.value(option).toDouble(&isNumber);
    if (isNumber && number >= least && number <= most)
        return number;
    lumetra::printStatus(
        QCoreApplication::translate("main", "lumetra-viewer: --%1 takes a number from %2 to %3\n")
            .arg(option.names().constFirst())
            .arg(least)
            .arg(most));
    std::exit(2);
}

void openNamedFiles(lumetra::Window& window, const QCommandLineParser& parser,
                    const Options& options) {
    lumetra::Viewer& viewer = window.viewer();
    if (parser.isSet(options.custom)) {
        try {
            viewer.model().setCustomDyes(
                lumetra::asDyes(lumetra::readCustomDyes(parser.value(options.custom))));
        } catch (const std::runtime_error&) {
            emit viewer.errorOccurred(lumetra::currentExceptionText());
        }
    }
    QStringList texts = parser.positionalArguments();
    if (parser.isSet(options.settings))
        texts.prepend(parser.value(options.settings));
    viewer.open(texts);
}

/// Speaks the user's language, where there is a translation, with the buttons of Qt's own dialogs.
void translate(QTranslator& texts, QTranslator& textsOfQt) {
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    const QString folder = QLibraryInfo::location(QLibraryInfo::TranslationsPath);
#else
    const QString folder = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
#endif
    if (!texts.load(QLocale(), QString(), QString(), QStringLiteral(":/viewer")))
        return;
    QCoreApplication::installTranslator(&texts);
    if (textsOfQt.load(QLocale(), QStringLiteral("qtbase"), QStringLiteral("_"), folder))
        QCoreApplication::installTranslator(&textsOfQt);
}

int run(QApplication& application) {
    QCommandLineParser parser;
    const Options options;
    parser.setApplicationDescription(QCoreApplication::translate(
        "main", "Viewer for multi-channel fluorescence images, live and from "
                "files."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions({options.settings, options.custom, options.camera, options.rate});
    parser.addPositionalArgument(
        QStringLiteral("CHANNEL"),
        QCoreApplication::translate("main", "Channels: FILE, FILE[c1,z3,t2] or FILE[PAGE], "
                                            "with =DYE+X+Y as for 'lumetra merge'; a FILE "
                                            "that ends in .json holds settings."),
        QStringLiteral("[CHANNEL...]"));
    if (!parser.parse(QApplication::arguments())) {
        lumetra::printStatus(QStringLiteral("lumetra-viewer: %1\n").arg(parser.errorText()));
        return 2;
    }
    parser.process(application);

    lumetra::Window window;
    const double rate = numberOf(parser, options.rate, 0, 1000);
    window.show();
    if (parser.isSet(options.camera)) {
        window.viewer().setRate(rate);
        window.viewer().simulateCamera(static_cast<int>(numberOf(parser, options.camera, 1, 4)));
    } else {
        openNamedFiles(window, parser, options);
    }
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
    lumetra::prepareWindows();
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
#endif
    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("lumetra"));
    QApplication::setApplicationName(QStringLiteral("lumetra-viewer"));
    QApplication::setApplicationVersion(QStringLiteral(LUMETRA_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("lumetra-viewer"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("lumetra-viewer"),
                                                 QIcon(QStringLiteral(":/viewer/icon.png"))));
    QTranslator texts, textsOfQt;
    translate(texts, textsOfQt);
    lumetra::silenceLibraries();
    cv::setNumThreads(1); // one core is for the camera
    return run(application);
}
