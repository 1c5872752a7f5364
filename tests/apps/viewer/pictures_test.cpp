// Screenshots for the documentation, in the folder LUMETRA_PICTURES, and constant memory over many
// frames, for LUMETRA_SOAK seconds.

#include "tests/apps/viewer/stage.h"

#include "apps/viewer/canvas.h"

#include <QApplication>
#include <QSettings>
#include <QStyle>
#include <QStyleFactory>

#include <unistd.h>

namespace lumetra {

class PicturesTest : public QObject {
    Q_OBJECT
private slots:
    void showTheWindow_data();
    void showTheWindow();
    void memoryStaysFlat();
};

namespace {

QPalette darkPalette() {
    QPalette dark(QColor(0x35, 0x36, 0x3a), QColor(0x2b, 0x2c, 0x30));
    dark.setColor(QPalette::Base, QColor(0x22, 0x23, 0x26));
    dark.setColor(QPalette::AlternateBase, QColor(0x28, 0x29, 0x2d));
    return dark;
}

/// The colours that can be told apart in a part of an image.
int coloursIn(const QImage& image) {
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 7)
        for (int x = 0; x < image.width(); x += 7)
            colours << (image.pixel(x, y) & 0xf8f8f8);
    return static_cast<int>(colours.size());
}

double residentMegabytes() {
    QFile file("/proc/self/statm");
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toDouble() * double(sysconf(_SC_PAGESIZE)) / 1048576;
}

} // namespace

void PicturesTest::showTheWindow_data() {
    QTest::addColumn<bool>("isDark");
    QTest::addColumn<bool>("isPseudo");
    QTest::newRow("viewer.png") << false << false;
    QTest::newRow("viewer_dark.png") << true << false;
    QTest::newRow("viewer_pseudo.png") << true << true;
}

void PicturesTest::showTheWindow() {
    QFETCH(bool, isDark);
    QFETCH(bool, isPseudo);
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QApplication::setPalette(isDark ? darkPalette() : QApplication::style()->standardPalette());
    QSettings().clear(); // the window before kept its choices
    Window window;
    window.resize(1280, 820);
    window.show();
    window.actions()[ActionId::legend].setChecked(true);
    window.actions()[ActionId::pseudo].setChecked(isPseudo);
    const QStringList files =
        qEnvironmentVariable("LUMETRA_CHANNELS").split('\n', Qt::SkipEmptyParts);
    if (!isPseudo && !isDark && !files.isEmpty()) {
        window.viewer().open(files);
    } else {
        window.viewer().simulateCamera(3, 1024);
        QVERIFY(waitForImage(window.viewer()));
        window.viewer().stop();
    }
    QVERIFY(waitForImage(window.viewer()));
    const auto* canvas = window.findChild<Canvas*>();
    const auto coloursOnCanvas = [&] {
        const QRect part(canvas->mapTo(&window, canvas->rect().center() / 2), canvas->size() / 2);
        return coloursIn(window.grab().toImage().copy(part));
    };
    QTRY_VERIFY_WITH_TIMEOUT(coloursOnCanvas() > 40, 20000); // once it is painted
    const QPixmap screenshot = window.grab();
    const QString folder = qEnvironmentVariable("LUMETRA_PICTURES");
    if (!folder.isEmpty())
        QVERIFY(screenshot.save(folder + QLatin1Char('/') + QTest::currentDataTag()));
    QApplication::setPalette(QApplication::style()->standardPalette());
}

void PicturesTest::memoryStaysFlat() {
    const int seconds = qEnvironmentVariableIntValue("LUMETRA_SOAK");
    Window window;
    window.show();
    window.viewer().setRate(1000); // as fast as they come
    window.viewer().simulateCamera(3, 1024);
    QVERIFY(waitForImage(window.viewer()));
    QTest::qWait(1000);
    const double before = residentMegabytes();
    const auto frames = window.viewer().rendered().frame;
    QTest::qWait(std::max(seconds, 2) * 1000);
    const double grown = residentMegabytes() - before;
    QVERIFY(window.viewer().rendered().frame > frames + 10);
    QVERIFY2(grown < 30, qPrintable(QString::number(grown))); // one lost frame a second is 6
}

std::unique_ptr<QObject> makeSuite() { return std::make_unique<PicturesTest>(); }

} // namespace lumetra

#ifndef __clang_analyzer__ // what the compiler of signals writes is not ours to lint
#include "pictures_test.moc"
#endif
