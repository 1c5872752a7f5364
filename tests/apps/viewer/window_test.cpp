// The window: every action with its keys, files dropped onto it, closing while frames come.

#include "tests/apps/viewer/stage.h"

#include "apps/viewer/canvas.h"
#include "apps/viewer/channel_panel.h"
#include "apps/viewer/custom_dyes_dialog.h"
#include "apps/viewer/dye_controls.h"
#include "apps/viewer/level_editor.h"
#include "apps/viewer/lut_box.h"
#include "apps/viewer/message_bar.h"

#include <QApplication>
#include <QClipboard>
#include <QCompleter>
#include <QDropEvent>
#include <QInputDialog>
#include <QLabel>
#include <QMenuBar>
#include <QMimeData>
#include <QMouseEvent>
#include <QSet>
#include <QSettings>
#include <QSpinBox>
#include <QTableView>

namespace lumetra {

class WindowTest : public QObject {
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void everyActionIsInAMenuAndNoKeyIsTakenTwice();
    void everyActionCanBeUsedAtAnyTime();
    void keysSwitchAndMoveChannels();
    void fieldsKeepTheirKeys();
    void dyesAreFoundAsTheyAreTyped();
    void handlesMoveLevels();
    void theTableShowsAndHidesChannels();
    void theImageFitsZoomsAndPans();
    void oneToOneIsCrisp_data();
    void oneToOneIsCrisp();
    void droppedFilesAreAddedOrRefused();
    void dropsInQuickSuccessionAreAllTaken();
    void whatIsAskedForLastIsShown();
    void offsetsAreWrittenInFields();
    void lutsComeFromFiles();
    void aStalledCameraIsReported();
    void closesWhileFramesCome();
    void customDyesAreKept();
    void choicesAreKeptBetweenRuns();
    void scaleBarsAreRound();

private:
    void openTwo();
    QAction& act(ActionId id) { return window_->actions()[id]; }
    template<class Part>
    Part* part() {
        return window_->findChild<Part*>();
    }
    QString message() { return part<MessageBar>()->message(); }
    ChannelModel& model() { return window_->viewer().model(); }

    std::unique_ptr<Folder> folder_;
    std::unique_ptr<Window> window_;
};

namespace {

/// Closes whatever dialog an action opens.
class DialogCloser : public QObject {
public:
    DialogCloser() { startTimer(10); }

protected:
    void timerEvent(QTimerEvent* /*event*/) override {
        if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget()))
            dialog->reject();
    }
};

/// A move that does not depend on where the platform has its cursor.
void moveMouse(QWidget& widget, QPoint to, Qt::MouseButtons buttons) {
    QMouseEvent move(QEvent::MouseMove, to, widget.mapToGlobal(to), Qt::NoButton, buttons, {});
    QApplication::sendEvent(&widget, &move);
}

void drop(Window& window, const QStringList& files) {
    QMimeData data;
    QList<QUrl> urls;
    for (const QString& file : files)
        urls << QUrl::fromLocalFile(file);
    data.setUrls(urls);
    QDragEnterEvent enter({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent event(QPointF(9, 9), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window, &event);
}

} // namespace

void WindowTest::init() {
    QSettings().clear();
    folder_ = std::make_unique<Folder>();
    window_ = std::make_unique<Window>();
    window_->show();
    QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
}

void WindowTest::cleanup() { window_.reset(); }

void WindowTest::openTwo() {
    window_->viewer().open({folder_->write("a.tif", noisePlane({64, 48}, CV_16UC1, 1)) + "=DAPI",
                            folder_->write("b.png", noisePlane({64, 48}, CV_8UC1, 2)) + "=FITC"});
    QVERIFY(waitForImage(window_->viewer()));
}

void WindowTest::everyActionIsInAMenuAndNoKeyIsTakenTwice() {
    QSet<QString> keys;
    int actions = 0;
    for (const QAction* menu : window_->menuBar()->actions())
        for (const QAction* action : menu->menu()->actions()) {
            actions += action->isSeparator() ? 0 : 1;
            for (const QKeySequence& key : action->shortcuts()) {
                QVERIFY2(!keys.contains(key.toString()), qPrintable(key.toString()));
                keys << key.toString();
            }
        }
    QCOMPARE(actions, int(ActionId::about) + 1);
    for (const char* key : {"0", "1", "9", "Ctrl+,", "Ctrl+.", "Shift+C", "Shift+Z", "Shift+Left"})
        QVERIFY2(keys.contains(key), key);
}

void WindowTest::everyActionCanBeUsedAtAnyTime() {
    const DialogCloser closer;
    const auto useAll = [this] {
        for (int i = 0; i <= int(ActionId::about); ++i)
            if (ActionId(i) != ActionId::quit && ActionId(i) != ActionId::closeAll)
                act(ActionId(i)).trigger();
        QTest::qWait(50);
    };
    useAll(); // without an image, then with files and with a camera
    window_->viewer().close();
    openTwo();
    useAll();
    QVERIFY(window_->viewer().isCamera()); // one of the actions was its start
    act(ActionId::closeAll).trigger();
    QVERIFY(!window_->viewer().hasSource());
    QVERIFY(!act(ActionId::saveImage).isEnabled());
}

void WindowTest::keysSwitchAndMoveChannels() {
    openTwo();
    Canvas& canvas = *part<Canvas>();
    canvas.setFocus();
    const auto press = [&](Qt::Key key, Qt::KeyboardModifiers with = Qt::NoModifier) {
        QTest::keyClick(&canvas, key, with);
    };
    press(Qt::Key_2);
    QVERIFY(model().channel(0).visible && !model().channel(1).visible);
    press(Qt::Key_2);
    QVERIFY(model().channel(1).visible);
    press(Qt::Key_9); // there is none
    part<ChannelPanel>()->setCurrentRow(1);
    press(Qt::Key_Left); // the channel moves to the left, which are positive offsets
    press(Qt::Key_Up, Qt::ShiftModifier);
    QCOMPARE(model().channel(1).offset, cv::Point(1, 10));
    QTRY_COMPARE(window_->viewer().rendered().screen.size(), cv::Size(63, 38));
    press(Qt::Key_Backspace, Qt::ControlModifier);
    QCOMPARE(model().channel(1).offset, cv::Point());
    press(Qt::Key_3, Qt::AltModifier);
    QVERIFY((model().channel(1).levels == ContrastLimits{0, 255})); // 12 bits of a channel of 8
    press(Qt::Key_C, Qt::ShiftModifier);
    QCOMPARE(window_->focusWidget()->accessibleName(), QStringLiteral("Black level"));
    press(Qt::Key_Z, Qt::ShiftModifier);
    QCOMPARE(window_->focusWidget()->accessibleName(), QStringLiteral("Channels"));
}

void WindowTest::fieldsKeepTheirKeys() {
    openTwo();
    act(ActionId::goToLevels).trigger();
    auto* black = qobject_cast<QSpinBox*>(window_->focusWidget());
    QVERIFY(black);
    black->selectAll();
    QTest::keyClicks(black, "120");
    QTest::keyClick(black, Qt::Key_Return);
    QCOMPARE(model().channel(0).levels->low, 120);
    QVERIFY(model().channel(0).visible); // 1 was a digit
    QTest::keyClick(black, Qt::Key_Up);
    QCOMPARE(model().channel(0).levels->low, 121);
    QVERIFY(model().channel(0).offset == cv::Point());
}

void WindowTest::dyesAreFoundAsTheyAreTyped() {
    openTwo();
    auto* field = part<DyeField>();
    field->setFocus();
    field->selectAll();
    QTest::keyClicks(field, "oregon");
    QCompleter* completer = field->completer();
    QVERIFY(completer->completionCount() > 1);
    QVERIFY(completer->currentCompletion().contains("Oregon Green"));
    field->selectAll();
    QTest::keyClicks(field, "cy5");
    completer->popup()->hide();
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(model().channel(0).dye, std::string("Cy5"));
    field->selectAll();
    QTest::keyClicks(field, "nonsense");
    completer->popup()->hide();
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(model().channel(0).dye, std::string("Cy5"));
    QVERIFY(message().contains("nonsense"));
    auto* slider = part<DyeSlider>();
    slider->setValue(20);
    QCOMPARE(model().channel(0).dye, slider->dye().name);
}

void WindowTest::handlesMoveLevels() {
    openTwo();
    auto* editor = part<LevelEditor>();
    model().setLevels(0, {10000, 50000});
    const int y = editor->height() - 5;
    const auto drag = [&](int from, int to) {
        const QPoint start(qRound(editor->xOf(from)), y), end(qRound(editor->xOf(to)), y);
        QTest::mousePress(editor, Qt::LeftButton, {}, start);
        moveMouse(*editor, end, Qt::LeftButton);
        QTest::mouseRelease(editor, Qt::LeftButton, {}, end);
    };
    const int pixel = editor->valueAt(100) - editor->valueAt(99) + 1;
    drag(10000, 20000);
    QVERIFY(std::abs(model().channel(0).levels->low - 20000) <= pixel);
    drag(50000, 1000); // not beyond the other
    QCOMPARE(model().channel(0).levels->high, model().channel(0).levels->low + 1);
}

void WindowTest::theTableShowsAndHidesChannels() {
    const QSignalSpy images(&window_->viewer(), &Viewer::imageChanged);
    openTwo();
    part<ChannelPanel>()->setCurrentRow(1);
    QTest::qWait(50);
    QCOMPARE(int(images.size()), 1); // the image does not depend on the row
    auto* table = part<ChannelPanel>()->findChild<QTableView*>();
    const auto centre = [&](int row, int column) {
        return table->visualRect(model().index(row, column)).center();
    };
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, centre(1, ChannelModel::colourColumn));
    QVERIFY(!model().channel(0).visible && model().channel(1).visible);
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, centre(1, ChannelModel::colourColumn));
    QVERIFY(model().channel(0).visible && model().channel(1).visible);
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, centre(0, ChannelModel::dyeColumn));
    QVERIFY(model().channel(1).visible); // selected, and nothing else
    table->setCurrentIndex(model().index(1, ChannelModel::visibleColumn));
    QTest::keyClick(table, Qt::Key_Space);
    QVERIFY(model().channel(0).visible && !model().channel(1).visible);
}

void WindowTest::theImageFitsZoomsAndPans() {
    openTwo();
    Canvas& canvas = *part<Canvas>();
    const double fitted = canvas.scale();
    canvas.actualSize();
    QCOMPARE(canvas.scale(), 1.0);
    const QPointF centre = QRectF(canvas.rect()).center();
    QCOMPARE(canvas.pixelAt(centre + QPointF(0.5, 0.5)), QPoint(32, 24));
    QCOMPARE(canvas.pixelAt({0, 0}), QPoint(-1, -1));
    const QPoint point = centre.toPoint() + QPoint(10, -5);
    const auto turnWheel = [&](int notches) {
        for (int i = 0; i < notches; ++i) {
            QWheelEvent wheel(point, canvas.mapToGlobal(point), {}, {0, 120}, Qt::NoButton,
                              Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(&canvas, &wheel);
        }
    };
    turnWheel(15); // until it is larger than the widget
    QVERIFY(canvas.scale() > 28);
    const QPoint pixel = canvas.pixelAt(point);
    turnWheel(2);
    const QPoint left = canvas.pixelAt(point);
    QCOMPARE(left, pixel);
    QTest::mousePress(&canvas, Qt::LeftButton, {}, {100, 100});
    moveMouse(canvas, {100 + qRound(3 * canvas.scale()), 100}, Qt::LeftButton);
    QTest::mouseRelease(&canvas, Qt::LeftButton, {}, {100, 100});
    QCOMPARE(canvas.pixelAt(point), left - QPoint(3, 0));
    QTest::keyClick(&canvas, Qt::Key_0);
    QCOMPARE(canvas.scale(), fitted);
    const QSignalSpy hovered(&canvas, &Canvas::hovered);
    moveMouse(canvas, centre.toPoint() + QPoint(5, 5), Qt::NoButton); // within a large pixel
    QCOMPARE(hovered[0][0].toPoint(), QPoint(32, 24));
}

void WindowTest::oneToOneIsCrisp_data() {
    QTest::addColumn<int>("side");
    QTest::newRow("smaller than the widget") << 64;
    QTest::newRow("by half a pixel") << 65;
    QTest::newRow("larger") << 2047;
}

/// Every pixel of the screen is one of the image; also run with two of them for a widget's unit.
void WindowTest::oneToOneIsCrisp() {
    QFETCH(int, side);
    const QString file = folder_->write("a.png", noisePlane({side, side}, CV_8UC1, side));
    window_->viewer().open({file});
    QVERIFY(waitForImage(window_->viewer()));
    Canvas& canvas = *part<Canvas>();
    canvas.actualSize();
    QTest::qWait(50);
    QImage seen = canvas.grab().toImage();
    seen.setDevicePixelRatio(1);
    const QImage image = window_->viewer().image();
    const double unit = canvas.devicePixelRatioF();
    QPoint first; // of the screen, with a pixel of the image below
    const auto below = [&](QPoint at) { return canvas.pixelAt((at + QPointF(0.5, 0.5)) / unit); };
    while (below(first).x() < 0)
        first += below({first.x(), seen.height() / 2}).x() < 0 ? QPoint(1, 0) : QPoint(0, 1);
    const QPoint corner = below(first);
    const QSize size = image.size().boundedTo(seen.size());
    QVERIFY(size.height() >= 64);
    QCOMPARE(seen.copy({first, size}).convertToFormat(image.format()), image.copy({corner, size}));
}

void WindowTest::droppedFilesAreAddedOrRefused() {
    openTwo();
    drop(*window_, {folder_->write("c.tif", noisePlane({64, 48}, CV_16UC1, 3))});
    QTRY_COMPARE(model().size(), 3);
    QCOMPARE(model().channel(0).dye, std::string("DAPI")); // what was there stays as it was
    drop(*window_, {folder_->write("d.tif", noisePlane({65, 48}, CV_16UC1, 3))});
    QTRY_VERIFY(message().contains("65 x 48"));
    QVERIFY(message().contains("64 x 48"));
    QCOMPARE(model().size(), 3);
    QVERIFY(!QApplication::activeModalWidget()); // a word in the window, never a box
}

void WindowTest::dropsInQuickSuccessionAreAllTaken() {
    const auto file = [&](const QString& name, int width) {
        return folder_->write(name, noisePlane({width, 48}, CV_16UC1, width));
    };
    openTwo();
    drop(*window_, {file("c.tif", 64)});
    drop(*window_, {file("odd.tif", 65)}); // refused, and nothing else is
    drop(*window_, {file("d.tif", 64)});
    QTRY_COMPARE(model().size(), 4);
    QVERIFY(waitForImage(window_->viewer()));
    QVERIFY(message().contains("65 x 48"));
    QCOMPARE(window_->viewer().title(), QStringLiteral("a.tif, b.png, c.tif, d.tif"));
    window_->viewer().open({file("e.tif", 32)}); // what is added next belongs to this one
    drop(*window_, {file("f.tif", 32)});
    QTRY_COMPARE(window_->viewer().title(), QStringLiteral("e.tif, f.tif"));
}

void WindowTest::whatIsAskedForLastIsShown() {
    openTwo();
    Viewer& viewer = window_->viewer();
    const QString file = folder_->write("c.tif", noisePlane({64, 48}, CV_16UC1, 3));
    drop(*window_, {file}); // and closed before it is there
    viewer.close();
    QTRY_VERIFY(!viewer.isBusy());
    QVERIFY(!viewer.hasSource());
    viewer.open({file});
    viewer.simulateCamera(2);
    QTRY_VERIFY(!viewer.isBusy());
    QCOMPARE(viewer.title(), QStringLiteral("Camera"));
}

void WindowTest::offsetsAreWrittenInFields() {
    openTwo();
    part<ChannelPanel>()->setCurrentRow(1);
    QSpinBox* fields[2] = {};
    for (auto* field : part<ChannelPanel>()->findChildren<QSpinBox*>())
        if (field->accessibleName().startsWith("Pixels"))
            fields[field->accessibleName() == "Pixels up"] = field;
    fields[0]->setFocus();
    fields[0]->selectAll();
    QTest::keyClicks(fields[0], "-12");
    QTest::keyClick(fields[0], Qt::Key_Return);
    fields[1]->stepBy(3);
    QCOMPARE(model().channel(1).offset, cv::Point(-12, 3));
    QVERIFY(model().channel(0).offset == cv::Point());
    QTRY_COMPARE(window_->viewer().rendered().screen.size(), cv::Size(52, 45));
    part<ChannelPanel>()->setCurrentRow(0);
    QCOMPARE(fields[0]->value(), 0);
    model().nudge(0, {-5, 0});
    QCOMPARE(fields[0]->value(), 5);
}

void WindowTest::lutsComeFromFiles() {
    openTwo();
    QByteArray colours(768, '\0');
    colours.replace(0, 256, QByteArray(256, '\x40')); // red
    const QString file = folder_->writeBytes("dim red.lut", colours);
    const auto useLut = [this](const QString& chosen) {
        part<LutBox>()->setLut(chosen);
        emit part<LutBox>()->lutChosen();
    };
    act(ActionId::pseudo).setChecked(true);
    useLut(file);
    const auto pixel = [this] { return window_->viewer().image().pixelColor(9, 9); };
    QTRY_COMPARE(pixel(), QColor(0x40, 0, 0));
    useLut(folder_->writeBytes("bad.lut", "no LUT"));
    QVERIFY(message().contains("bad.lut"));
    QCOMPARE(window_->viewer().options().lut->lut, file);
    window_->close();
    window_ = std::make_unique<Window>();
    act(ActionId::pseudo).setChecked(true);
    QCOMPARE(window_->viewer().options().lut->lut, file); // kept
}

void WindowTest::aStalledCameraIsReported() {
    ScriptedCamera* self = nullptr;
    auto camera = std::make_shared<ScriptedCamera>([&self](int exposure, Frame& frame) {
        frame.planes = flatPlanes(1, {16, 16}, 9);
        if (exposure == 3)
            self->stall();
    });
    self = camera.get();
    window_->viewer().connectCamera(camera, {channelOf(Qt::red)});
    window_->viewer().start();
    QTRY_VERIFY_WITH_TIMEOUT(message().contains("No frame"), 6000);
    window_->viewer().stop();
    QVERIFY(message().isEmpty());
}

void WindowTest::closesWhileFramesCome() {
    for (int i = 0; i < 3; ++i) {
        window_->viewer().simulateCamera(3, 256);
        QTRY_VERIFY(window_->viewer().rendered().frame > 1);
        window_->setAttribute(Qt::WA_DeleteOnClose, false);
        window_->close();
        init();
    }
}

void WindowTest::customDyesAreKept() {
    CustomDyesDialog dialog({{"One", QColor("#111111")}});
    const QSignalSpy changed(&dialog, &CustomDyesDialog::changed);
    dialog.add("One", Qt::red);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(dialog.dyes().size(), 2);
    QCOMPARE(dialog.dyes()["One 2"], QColor(Qt::red));
    dialog.save(folder_->path("dyes.ini"));
    dialog.removeCurrent();
    QCOMPARE(dialog.dyes().keys(), QStringList{"One"});
    dialog.load(folder_->path("dyes.ini"));
    QCOMPARE(dialog.dyes().size(), 2);

    const QByteArray before = folder_->read("dyes.ini");
    dialog.load(folder_->path("missing.ini"));
    QVERIFY(dialog.findChild<QLabel*>()->text().contains("missing.ini"));
    dialog.load(
        folder_->writeBytes("odd.ini", "[General]\nNumber=1\n[DyeType1]\nName=x\nColor=9\n"));
    QVERIFY(dialog.findChild<QLabel*>()->text().contains("cannot be understood"));
    dialog.save(folder_->path("dyes.ini/below_a_file.ini"));
    QVERIFY(dialog.findChild<QLabel*>()->text().contains("cannot be written"));
    QCOMPARE(dialog.dyes().size(), 2);
    QCOMPARE(folder_->read("dyes.ini"), before);

    window_->setCustomDyes(dialog.dyes());
    window_ = std::make_unique<Window>();
    QVERIFY(model().dyes().find("one 2"));
    window_->setCustomDyes({});
}

void WindowTest::choicesAreKeptBetweenRuns() {
    act(ActionId::legend).setChecked(true);
    window_->resize(1000, 700);
    window_->close();
    window_ = std::make_unique<Window>();
    QVERIFY(act(ActionId::legend).isChecked());
    QVERIFY(window_->viewer().options().annotation.legend);
    QCOMPARE(window_->width(), 1000);
}

void WindowTest::scaleBarsAreRound() {
    QCOMPARE(roundLength(100), 20.0);
    QCOMPARE(roundLength(249), 20.0);
    QCOMPARE(roundLength(250), 50.0);
    QCOMPARE(roundLength(0.0499), 0.005);
    openTwo();
    QTimer::singleShot(100, [] {
        auto* dialog = qobject_cast<QInputDialog*>(QApplication::activeModalWidget());
        dialog->setDoubleValue(0.5);
        dialog->accept();
    });
    act(ActionId::scaleBar).trigger();
    QCOMPARE(window_->viewer().options().annotation.scaleBar->micrometres, 5.0); // of 32
    QCOMPARE(window_->viewer().options().annotation.scaleBar->pixelSize, 0.5);
}

std::unique_ptr<QObject> makeSuite() { return std::make_unique<WindowTest>(); }

} // namespace lumetra

#ifndef __clang_analyzer__ // what the compiler of signals writes is not ours to lint
#include "window_test.moc"
#endif
