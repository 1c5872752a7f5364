// Pictures of the window for the documentation, in the folder LUMETRA_PICTURES; and a minute of
// frames under a steady memory, in LUMETRA_SOAK seconds.

#include "tests/apps/viewer/stage.h"

#include "apps/viewer/canvas.h"

#include <QApplication>
#include <QStyle>
#include <QStyleFactory>

#include <unistd.h>

namespace apps {

class PicturesTest : public QObject {
    Q_OBJECT
private slots:
    void showTheWindow_data();
    void showTheWindow();
    void showNothingYet();
    void memoryStaysFlat();
};

namespace {

QPalette darkPalette() {
    QPalette dark(QColor(0x35, 0x36, 0x3a), QColor(0x2b, 0x2c, 0x30));
    dark.setColor(QPalette::Base, QColor(0x22, 0x23, 0x26));
    dark.setColor(QPalette::AlternateBase, QColor(0x28, 0x29, 0x2d));
    return dark;
}

void keepPicture(Window& window, const QString& name) {
    const QPixmap picture = window.grab();
    const QString folder = qEnvironmentVariable("LUMETRA_PICTURES");
    if (!folder.isEmpty())
        QVERIFY(picture.save(folder + QLatin1Char('/') + name));
    QSet<QRgb> colours;
    const QImage image = picture.toImage();
    for (int y = 0; y < image.height(); y += 7)
        for (int x = 0; x < image.width(); x += 7)
            colours << image.pixel(x, y);
    QVERIFY(colours.size() > 300); // a picture, not a blank window
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
    Window window;
    window.resize(1280, 820);
    window.show();
    const QStringList files =
        qEnvironmentVariable("LUMETRA_CHANNELS").split('\n', Qt::SkipEmptyParts);
    if (!isPseudo && !isDark && !files.isEmpty()) {
        window.viewer().open(files);
    } else {
        window.actions()[Act::course].trigger();
        window.startCamera(3, 1024);
        QTest::qWait(4500);
        window.viewer().stop();
    }
    QVERIFY(waitForPicture(window));
    window.actions()[Act::legend].setChecked(true);
    window.actions()[Act::pseudo].setChecked(isPseudo);
    QTest::qWait(300);
    keepPicture(window, QTest::currentDataTag());
    QApplication::setPalette(QApplication::style()->standardPalette());
}

void PicturesTest::showNothingYet() {
    Window window;
    window.show();
    QVERIFY(!window.grab().isNull());
    QVERIFY(window.problem().isEmpty());
}

void PicturesTest::memoryStaysFlat() {
    const int seconds = qEnvironmentVariableIntValue("LUMETRA_SOAK");
    Window window;
    window.show();
    window.viewer().setRate(1000); // as fast as they come
    window.startCamera(3, 1024);
    QTest::qWait(2000);
    const double before = residentMegabytes();
    const auto frames = window.viewer().framesOfSource();
    QTest::qWait(std::max(seconds, 2) * 1000);
    const double grown = residentMegabytes() - before;
    QVERIFY(window.viewer().framesOfSource() > frames + 10);
    QVERIFY2(grown < 30, qPrintable(QString::number(grown))); // one lost frame a second is 6
}

std::unique_ptr<QObject> makeSuite() { return std::make_unique<PicturesTest>(); }

} // namespace apps

#ifndef __clang_analyzer__ // what the compiler of signals writes is not ours to lint
#include "pictures_test.moc"
#endif
