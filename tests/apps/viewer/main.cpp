// Runs one suite of the viewer's tests, with settings of its own.

#include "tests/apps/viewer/stage.h"

#include "apps/common/messages.h"

#include <QApplication>
#include <QSettings>

/// Qt's platforms do not release all they hold when the application ends.
extern "C" __attribute__((visibility("default"))) const char*
__lsan_default_suppressions() { // NOLINT(bugprone-reserved-identifier): the sanitizer's name
    return "leak:libqoffscreen.so\nleak:libfontconfig.so";
}

/// The locks of Qt, and of what it draws text with, are not seen: these are within its pool of
/// threads, its queues of events (moved by memmove), its connections, strings and fonts, and the
/// watchdog of the tests (the one thing that is deleted by its size). One image format takes two
/// locks in either order.
extern "C" __attribute__((visibility("default"))) const char*
__tsan_default_suppressions() { // NOLINT(bugprone-reserved-identifier): the sanitizer's name
    return "deadlock:libgdal.so\nrace:tzset_internal\nrace:QThreadPoolPrivate\n"
           "race:QWaitCondition\nrace_top:memmove\nrace_top:^operator delete(void*, unsigned\n"
           "race:QTypedArrayData\nrace:QObjectPrivate::Connection\nrace:libharfbuzz.so\nrace:"
           "libfontconfig.so";
}

int main(int argc, char** argv) {
    const QTemporaryDir settings;
    qputenv("XDG_CONFIG_HOME", settings.path().toLocal8Bit());
    QSettings::setDefaultFormat(QSettings::IniFormat); // and not the registry of Windows
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("lumetra"));
    QApplication::setApplicationName(QStringLiteral("lumetra-viewer-test"));
    return QTest::qExec(lumetra::makeSuite().get(), argc, argv);
}
