// The window: every action with its keys, files dropped onto it, closing while frames come.

#include "tests/apps/viewer/stage.h"

#include "apps/viewer/canvas.h"
#include "apps/viewer/channel_panel.h"
#include "apps/viewer/custom_dyes_dialog.h"
#include "apps/viewer/dye_box.h"
#include "apps/viewer/level_editor.h"
#include "apps/viewer/lut_bar.h"
#include "apps/viewer/lut_box.h"
#include "apps/viewer/message_bar.h"
#include "apps/viewer/stack_bar.h"
#include "apps/viewer/status_line.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QColorDialog>
#include <QCompleter>
#include <QDropEvent>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QMouseEvent>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QSet>
#include <QSettings>
#include <QSlider>
#include <QSpinBox>
#include <QTableView>
#include <QTimer>
#include <QToolButton>
#include <QTranslator>

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
    void dyesAreChosenAndTyped();
    void handlesMoveLevels();
    void gammaIsTheSameEverywhere();
    void theTableShowsAndHidesChannels();
    void theImageFitsZoomsAndPans();
    void oneToOneIsCrisp_data();
    void oneToOneIsCrisp();
    void droppedFilesReplaceOrAreAdded();
    void dropsInQuickSuccessionAreAllTaken();
    void whatIsAskedForLastIsShown();
    void offsetsAreWrittenInFields();
    void lutsComeFromFiles();
    void aStalledCameraIsReported();
    void closesWhileFramesCome();
    void customDyesAreKept();
    void choicesAreKeptBetweenRuns();
    void choicesAreKeptWithoutAClose();
    void scaleBarsAreRoundAndOfTheirSource();
    void messagesAreSeen();
    void messagesSpeakTheUsersLanguage();
    void noButtonTakesAMenusLetter();
    void smallScreensCutNothing();
    void aFrameIsSavedAsItWas();
    void panelsShareScaleAndPosition();
    void valuesAreCopiedAsATable();

private:
    void openTwo();
    QAction& act(ActionId id) { return window_->actions()[id]; }
    template<class Part>
    Part* part() {
        return window_->findChild<Part*>();
    }
    QString message() { return part<MessageBar>()->message(); }
    QStringList statusTexts() {
        QStringList texts;
        for (const auto* label : part<StatusLine>()->findChildren<QLabel*>())
            texts << label->text();
        return texts;
    }
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

void turnWheel(QWidget& widget, QPoint at, int notches) {
    for (int i = 0; i < notches; ++i) {
        QWheelEvent wheel(at, widget.mapToGlobal(at), {}, {0, 120}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&widget, &wheel);
    }
}

/// Answers the next dialog of a kind, once it is there, as a user does who then accepts it.
template<class Dialog, class Answer>
void whenAsked(const Answer& answer) {
    auto* timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, answer] {
        auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        timer->deleteLater();
        timer->stop();
        answer(*dialog);
        static_cast<QDialog*>(dialog)->accept(); // which a file dialog hides
    });
    timer->start(10);
}

void drop(Window& window, const QStringList& files, Qt::KeyboardModifiers keys = {}) {
    QMimeData data;
    QList<QUrl> urls;
    for (const QString& file : files)
        urls << QUrl::fromLocalFile(file);
    data.setUrls(urls);
    QDragEnterEvent enter({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent event(QPointF(9, 9), Qt::CopyAction, &data, Qt::LeftButton, keys);
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
        QTRY_VERIFY(!window_->viewer().isBusy());
    };
    useAll(); // without an image, then with files and with a camera
    window_->viewer().close();
    openTwo();
    useAll();
    QVERIFY(window_->viewer().isCamera()); // one of the actions was its start
    auto idle = std::make_shared<ScriptedCamera>([](int, Frame&) {});
    window_->viewer().connectCamera(idle, {channelOf(Qt::red)});
    act(ActionId::saveImage).trigger(); // before there is a frame
    QCOMPARE(message(), QStringLiteral("There is no image yet"));
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
    QTRY_COMPARE(shownSize(window_->viewer()), cv::Size(63, 38));
    press(Qt::Key_Backspace, Qt::ControlModifier);
    QCOMPARE(model().channel(1).offset, cv::Point());
    press(Qt::Key_3, Qt::AltModifier);
    QVERIFY((model().channel(1).levels == ContrastLimits{0, 255})); // 12 bits of a channel of 8
    press(Qt::Key_2);
    press(Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(model().channel(0).visible);
    press(Qt::Key_Down, Qt::ControlModifier);
    QVERIFY((model().planes() == std::vector<size_t>{0, 1})); // it was the last one
    press(Qt::Key_Up, Qt::ControlModifier);
    QCOMPARE(part<ChannelPanel>()->currentRow(), 0);
    QVERIFY((model().planes() == std::vector<size_t>{1, 0}));
    press(Qt::Key_Delete, Qt::ControlModifier);
    QCOMPARE(model().size(), 1);
    press(Qt::Key_Z, Qt::ControlModifier);
    press(Qt::Key_Z, Qt::ControlModifier);
    QVERIFY((model().planes() == std::vector<size_t>{0, 1}));
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
    QCOMPARE(model().channel(0).levels->low, 130); // in steps that suit the number
    QVERIFY(model().channel(0).offset == cv::Point());
    QTest::keyClick(black, Qt::Key_Tab); // to the fields in the order that is seen
    QTest::keyClicks(window_->focusWidget(), "4000");
    QTest::keyClick(window_->focusWidget(), Qt::Key_Tab);
    QVERIFY((model().channel(0).levels == ContrastLimits{130, 4000}));
    QCOMPARE(qobject_cast<QCheckBox*>(window_->focusWidget()), part<QCheckBox>());
    part<Canvas>()->setFocus();
    turnWheel(*black, {3, 3}, 1); // scrolls a small window
    QCOMPARE(model().channel(0).levels->low, 130);
}

void WindowTest::dyesAreChosenAndTyped() {
    openTwo();
    auto* box = part<DyeBox>();
    const auto dye = [this] { return toQt(model().channel(0).dye); };
    const auto type = [&](const QString& text) {
        window_->activateWindow(); // popups were active
        static_cast<void>(QTest::qWaitForWindowActive(window_.get()));
        box->setFocus();
        box->lineEdit()->selectAll();
        QTest::keyClicks(box->lineEdit(), text);
    };
    QAbstractItemView* popup = box->completer()->popup();
    const auto choose = [&](const QString& name) {
        for (int row = 0; row < popup->model()->rowCount(); ++row)
            if (popup->model()->index(row, 0).data().toString() == name)
                popup->setCurrentIndex(popup->model()->index(row, 0));
    };
    type("green 48"); // anywhere in the name
    QTRY_VERIFY(popup->isVisible());
    choose("Oregon Green 488");
    QTest::keyClick(popup, Qt::Key_Return);
    QCOMPARE(dye(), QStringLiteral("Oregon Green 488"));
    type("cy");
    QTRY_VERIFY(popup->isVisible());
    choose("Cy5");
    popup->scrollTo(popup->currentIndex());
    QTest::mouseClick(popup->viewport(), Qt::LeftButton, {},
                      popup->visualRect(popup->currentIndex()).center());
    QCOMPARE(dye(), QStringLiteral("Cy5"));
    box->showPopup(); // the list of all
    const int row = box->findText("FITC");
    QVERIFY(box->itemData(row, Qt::DecorationRole).value<QColor>().isValid());
    box->view()->setCurrentIndex(box->model()->index(row, 0));
    QTest::keyClick(box->view(), Qt::Key_Return);
    QCOMPARE(dye(), QStringLiteral("FITC"));
    type("af488"); // another name, and nothing that contains it
    QTest::keyClick(box->lineEdit(), Qt::Key_Return);
    QCOMPARE(dye(), QStringLiteral("Alexa 488"));
    QCOMPARE(box->currentText(), dye());
    type("nonsense");
    QTest::keyClick(box->lineEdit(), Qt::Key_Tab);
    QCOMPARE(dye(), QStringLiteral("Alexa 488"));
    QVERIFY(message().contains("nonsense"));
    type("tritc");
    QTRY_VERIFY(popup->isVisible());
    QTest::keyClick(popup, Qt::Key_Tab);
    QCOMPARE(dye(), QStringLiteral("TRITC"));
    QVERIFY(message().isEmpty()); // the fault is mended
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

/// In the field, the image's LUT, the line above the histogram, and the numbers beside the LUT.
void WindowTest::gammaIsTheSameEverywhere() {
    openTwo();
    model().setColour(0, {}); // so that the line alone is bright
    model().setLevels(0, {10000, 50000});
    const auto fields = part<ChannelPanel>()->findChildren<QDoubleSpinBox*>();
    const auto gamma = std::find_if(fields.begin(), fields.end(), [](const auto* field) {
        return field->accessibleName() == "Gamma";
    });
    part<QCheckBox>()->click();
    QCOMPARE(model().channel(0).gamma, 0.6);
    (*gamma)->setValue(0.5); // a quarter of the way becomes a half
    QCOMPARE(model().channel(0).gamma, 0.5);
    act(ActionId::pseudo).setChecked(true);
    QCOMPARE(part<LutBar>()->valueAt(0.5), 20000.0);
    auto* editor = part<LevelEditor>();
    const QImage seen = editor->grab().toImage();
    const auto brightRow = [&](int value) {
        int best = 3; // within the frame, and above the handles
        const int x = qRound(editor->xOf(value));
        for (int y = best; y < seen.height() - 16; ++y)
            best = qGray(seen.pixel(x, y)) > qGray(seen.pixel(x, best)) ? y : best;
        return best;
    };
    const double rise = brightRow(10200) - brightRow(20000),
                 all = brightRow(10200) - brightRow(49000);
    QVERIFY2(std::abs(rise / all - 0.5) < 0.1, qPrintable(QString::number(rise / all)));
    part<QCheckBox>()->click();
    QCOMPARE(model().channel(0).gamma, 1.0);
}

void WindowTest::theTableShowsAndHidesChannels() {
    const QSignalSpy images(&window_->viewer(), &Viewer::imageChanged);
    openTwo();
    part<ChannelPanel>()->setCurrentRow(1); // on which the image does not depend
    QVERIFY(!QTest::qWaitFor([&] { return images.size() > 1; }, 50));
    auto* table = part<ChannelPanel>()->findChild<QTableView*>();
    const auto centre = [&](int row, int column) {
        return table->visualRect(model().index(row, column)).center();
    };
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, centre(1, ChannelModel::colourColumn));
    QVERIFY(!model().channel(0).visible && model().channel(1).visible);
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, centre(1, ChannelModel::colourColumn));
    QVERIFY(model().channel(0).visible && model().channel(1).visible);
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, centre(0, ChannelModel::limitsColumn));
    QVERIFY(model().channel(1).visible); // selected, and nothing else
    table->setCurrentIndex(model().index(1, ChannelModel::visibleColumn));
    QTest::keyClick(table, Qt::Key_Space);
    QVERIFY(model().channel(0).visible && !model().channel(1).visible);

    const QPoint swatch = centre(1, ChannelModel::colourColumn);
    whenAsked<QColorDialog>([](QColorDialog& dialog) { dialog.setCurrentColor("#123456"); });
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease,
                            QEvent::MouseButtonDblClick, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, swatch, table->viewport()->mapToGlobal(swatch), Qt::LeftButton,
                          Qt::LeftButton, {});
        QApplication::sendEvent(table->viewport(), &event);
    }
    QTRY_COMPARE(toQt(model().channel(1).colour), QColor("#123456"));
    QVERIFY(model().channel(0).visible && !model().channel(1).visible); // as it was

    window_->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window_.get()));
    const auto rename = [&] { // again, if a window that comes to the front takes the focus
        act(ActionId::rename).trigger();
        if (auto* field = table->findChild<QLineEdit*>()) {
            field->setText("Nuclei");
            QTest::keyClick(field, Qt::Key_Return);
        }
        return model().channel(1).name == "Nuclei";
    };
    QTRY_VERIFY(rename());
    act(ActionId::continuous).setChecked(true);
    model().setLevels(0, {1, 99}); // by hand
    QCOMPARE(model().index(0, ChannelModel::limitsColumn).data().toString(),
             QStringLiteral("1 – 99 fixed"));
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
    turnWheel(canvas, point, 15); // until it is larger than the widget
    QVERIFY(canvas.scale() > 28);
    const QPoint pixel = canvas.pixelAt(point);
    turnWheel(canvas, point, 2);
    const QPoint left = canvas.pixelAt(point);
    QCOMPARE(left, pixel);
    QTest::mousePress(&canvas, Qt::LeftButton, {}, {100, 100});
    moveMouse(canvas, {100 + qRound(3 * canvas.scale()), 100}, Qt::LeftButton);
    QTest::mouseRelease(&canvas, Qt::LeftButton, {}, {100, 100});
    QCOMPARE(canvas.pixelAt(point), left - QPoint(3, 0));
    QTest::keyClick(&canvas, Qt::Key_0);
    QCOMPARE(canvas.scale(), fitted);
    const QSignalSpy hovered(&canvas, &Canvas::hovered);
    moveMouse(canvas, centre.toPoint() + QPoint(2, 2), Qt::NoButton); // within a large pixel
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

void WindowTest::droppedFilesReplaceOrAreAdded() {
    openTwo();
    const QString file = folder_->write("c.tif", noisePlane({64, 48}, CV_16UC1, 3));
    drop(*window_, {file}, Qt::ShiftModifier);
    QTRY_COMPARE(model().size(), 3);
    QCOMPARE(model().channel(0).dye, std::string("DAPI")); // what was there stays as it was
    drop(*window_, {folder_->write("d.tif", noisePlane({65, 48}, CV_16UC1, 3))}, Qt::ShiftModifier);
    QTRY_VERIFY(message().contains("65 x 48"));
    QVERIFY(message().contains("64 x 48"));
    QCOMPARE(model().size(), 3);
    QVERIFY(!QApplication::activeModalWidget()); // a word in the window, never a box
    model().remove(0);
    drop(*window_, {file}, Qt::ShiftModifier); // beside what is left
    QTRY_COMPARE(window_->viewer().title(), QStringLiteral("b.png, c.tif"));
    QTRY_COMPARE(model().size(), 3);
    QCOMPARE(model().channel(0).dye, std::string("FITC"));
    drop(*window_, {file});
    QTRY_COMPARE(window_->viewer().title(), QStringLiteral("c.tif"));
    QCOMPARE(model().size(), 1);
}

void WindowTest::dropsInQuickSuccessionAreAllTaken() {
    const auto file = [&](const QString& name, int width) {
        return folder_->write(name, noisePlane({width, 48}, CV_16UC1, width));
    };
    openTwo();
    drop(*window_, {file("c.tif", 64)}, Qt::ShiftModifier);
    drop(*window_, {file("odd.tif", 65)}, Qt::ShiftModifier); // refused, and nothing else is
    drop(*window_, {file("d.tif", 64)}, Qt::ShiftModifier);
    QTRY_COMPARE(model().size(), 4);
    QVERIFY(waitForImage(window_->viewer()));
    QCOMPARE(window_->viewer().title(), QStringLiteral("a.tif, b.png, c.tif, d.tif"));
    window_->viewer().open({file("e.tif", 32)}); // what is added next belongs to this one
    drop(*window_, {file("f.tif", 32)}, Qt::ShiftModifier);
    QTRY_COMPARE(window_->viewer().title(), QStringLiteral("e.tif, f.tif"));
}

void WindowTest::whatIsAskedForLastIsShown() {
    openTwo();
    Viewer& viewer = window_->viewer();
    const QString file = folder_->write("c.tif", noisePlane({64, 48}, CV_16UC1, 3));
    drop(*window_, {file}, Qt::ShiftModifier); // and closed before it is there
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
    QTRY_COMPARE(shownSize(window_->viewer()), cv::Size(52, 45));
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
    QCOMPARE(statusTexts().filter("frames/s").size(), 1);
    window_->viewer().stop();
    QVERIFY(message().isEmpty());
    QVERIFY(statusTexts().filter("frames/s").isEmpty());
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

void WindowTest::scaleBarsAreRoundAndOfTheirSource() {
    QCOMPARE(roundLength(100), 20.0);
    QCOMPARE(roundLength(249), 20.0);
    QCOMPARE(roundLength(250), 50.0);
    QCOMPARE(roundLength(0.0499), 0.005);
    Viewer& viewer = window_->viewer();
    const auto bar = [&] { return viewer.options().annotation.scaleBar; };
    openTwo();
    const auto answer = [](const QString& text) {
        whenAsked<QInputDialog>([text](QInputDialog& dialog) {
            QVERIFY(dialog.textValue().isEmpty());
            dialog.setTextValue(text);
        });
    };
    answer("no number");
    act(ActionId::scaleBar).trigger();
    QVERIFY(!act(ActionId::scaleBar).isChecked());
    QVERIFY(message().contains("no number"));
    answer("0.5");
    act(ActionId::scaleBar).trigger();
    QCOMPARE(bar()->micrometres, 5.0); // of 32
    QCOMPARE(bar()->pixelSize, 0.5);
    QVERIFY(statusTexts().contains("0.5 µm/pixel"));

    viewer.open({folder_->writeHyperstack("cells.tif")}); // says it itself
    QTRY_COMPARE(shownSize(viewer).width, 32);
    QTRY_COMPARE(bar()->pixelSize, 0.25);
    viewer.connectCamera(std::make_shared<ScriptedCamera>([](int, Frame&) {}), {Channel()});
    QVERIFY(!viewer.pixelSize());
    viewer.open({folder_->write("c.tif", noisePlane({64, 48}, CV_16UC1, 3))});
    QTRY_COMPARE(shownSize(viewer).width, 64);
    QVERIFY(!bar() && !act(ActionId::scaleBar).isChecked()); // asked for again
    QVERIFY(statusTexts().contains("pixel size unknown"));
}

void WindowTest::messagesAreSeen() {
    openTwo();
    auto* line = part<StatusLine>();
    moveMouse(*part<Canvas>(), part<Canvas>()->rect().center(), Qt::NoButton);
    const QImage before = line->grab().toImage();
    line->showMessage("Saved something");
    QVERIFY(!line->findChild<QLabel*>()->isVisible()); // which it would lie below
    QTRY_VERIFY(line->grab().toImage() != before);
    line->clearMessage();
    QVERIFY(line->findChild<QLabel*>()->isVisible());
}

void WindowTest::messagesSpeakTheUsersLanguage() {
    QTranslator german;
    if (!german.load(qEnvironmentVariable("LUMETRA_GERMAN"))) {
        qWarning("built without translations");
        return;
    }
    QCoreApplication::installTranslator(&german);
    const cv::Mat colour(9, 9, CV_8UC3, cv::Scalar(1, 2, 3)), real(9, 9, CV_32FC1, cv::Scalar(0.5));
    const std::pair<QString, const char*> files[] = {
        {folder_->path("none: at all.tif"), "none: at all.tif: die Datei gibt es nicht"},
        {folder_->path("."), "ist keine Datei"},
        {folder_->writeBytes("empty.tif", ""), "ist leer"},
        {folder_->writeBytes("text.tif", "text"), "ist keine TIFF-"},
        {folder_->write("colour.png", colour), "hat Farben"},
        {folder_->write("real.tif", real), "'lumetra merge'"}};
    for (const auto& [file, expected] : files) {
        part<MessageBar>()->hide();
        window_->viewer().open({file});
        QTRY_VERIFY(!message().isEmpty());
        QVERIFY2(message().contains(expected), qPrintable(message()));
    }
    QCoreApplication::removeTranslator(&german);
}

/// A letter after Alt belongs to a menu, if to anything.
void WindowTest::noButtonTakesAMenusLetter() {
    QSet<QChar> letters;
    for (const QAction* menu : window_->menuBar()->actions()) {
        const QChar letter = menu->text().section('&', 1, 1).at(0).toUpper();
        QVERIFY2(!letters.contains(letter), qPrintable(menu->text()));
        letters << letter;
    }
    for (const auto* widget : window_->findChildren<QWidget*>())
        QVERIFY2(!QString(widget->property("text").toString()).contains('&') ||
                     qobject_cast<const QToolButton*>(widget),
                 qPrintable(widget->property("text").toString()));
    const QSize room = window_->screen()->availableSize();
    QVERIFY(window_->width() <= room.width() && window_->height() <= room.height());
}

void WindowTest::smallScreensCutNothing() {
    openTwo();
    window_->resize(800, 600);
    act(ActionId::profile).setChecked(true); // which leaves the panel so little that it scrolls
    model().nudge(0, {-12, 34});
    model().setLevels(1, {100, 250});
    const auto* scroll = part<QScrollArea>();
    QTRY_VERIFY(scroll->verticalScrollBar()->maximum() > 0);
    QCOMPARE(scroll->horizontalScrollBar()->maximum(), 0);
    const auto* table = part<QTableView>();
    QCOMPARE(table->horizontalScrollBar()->maximum(), 0);
    for (const QAction* action : window_->menuBar()->actions()) {
        QMenu* menu = action->menu();
        menu->popup({0, 0});
        const auto left = [&](QAction* entry) { return menu->actionGeometry(entry).left(); };
        QCOMPARE(left(menu->actions().back()), left(menu->actions().front())); // in one column
        menu->hide();
    }
}

/// While the dialog is open, the camera goes on; what is saved is the frame that was there before.
void WindowTest::aFrameIsSavedAsItWas() {
    std::atomic<int> value{1000};
    auto camera = std::make_shared<ScriptedCamera>([&](int, Frame& frame) {
        frame.planes = flatPlanes(1, {16, 16}, value);
    });
    Viewer& viewer = window_->viewer();
    viewer.connectCamera(camera, {channelOf(Qt::white, ContrastLimits{0, 65535})});
    viewer.setRate(100);
    viewer.start();
    const auto shown = [&] { return viewer.intensitiesAt({{1, 1}}).front(); };
    QTRY_COMPARE(shown(), std::vector<int>{1000});
    const QString name = folder_->path("frame"); // without an extension
    whenAsked<QFileDialog>([&](QFileDialog& dialog) {
        value = 50000;
        QVERIFY(QTest::qWaitFor([&] { return shown() == std::vector<int>{50000}; }));
        dialog.findChild<QLineEdit*>("fileNameEdit")->setText(name);
    });
    act(ActionId::saveImage).trigger();
    QTRY_VERIFY(!folder_->read("frame.png").isEmpty());
    const cv::Mat saved = cv::imread(folder_->path("frame.png").toStdString());
    QCOMPARE(int(saved.at<cv::Vec3b>(1, 1)[0]), 4); // 1000 of 65535
    viewer.close();
}

void WindowTest::panelsShareScaleAndPosition() {
    openTwo();
    Canvas& canvas = *part<Canvas>();
    act(ActionId::panels).setChecked(true);
    QTRY_COMPARE(int(window_->viewer().rendered().screens.size()), 3);
    const auto middle = [&](int cell) {
        const double share = (2 * cell + 1) / 6.0;
        const bool isRow = canvas.width() > canvas.height();
        return QPointF(canvas.width() * (isRow ? share : 0.5),
                       canvas.height() * (isRow ? 0.5 : share));
    };
    QCOMPARE(canvas.pixelAt(middle(0)), canvas.pixelAt(middle(2)));
    const QPoint fixed = middle(2).toPoint() + QPoint(20, 20);
    turnWheel(canvas, fixed, 8); // until the image is larger than its cell
    const QPoint pixel = canvas.pixelAt(fixed);
    turnWheel(canvas, fixed, 2);
    QCOMPARE(canvas.pixelAt(fixed), pixel);
    QVERIFY(canvas.pixelAt({3, 3}).x() > 5);
    const QImage seen = canvas.grab().toImage();
    const QImage merged = window_->viewer().image();
    QCOMPARE(seen.pixelColor(canvas.width() - 5, canvas.height() - 5),
             merged.pixelColor(canvas.pixelAt({canvas.width() - 5.0, canvas.height() - 5.0})));
    const QColor gray = seen.pixelColor(3, 3); // the first channel, in gray
    QVERIFY(gray.red() == gray.green() && gray.red() == gray.blue());
}

void WindowTest::valuesAreCopiedAsATable() {
    window_->viewer().open({folder_->writeHyperstack("cells.tif")});
    QVERIFY(waitForImage(window_->viewer()));
    Canvas& canvas = *part<Canvas>();
    QSlider* slices = part<StackBar>()->findChild<QSlider*>();
    slices->setValue(3);
    QTRY_COMPARE(window_->viewer().rendered().position.slice, 3);
    const auto at = [&](QPoint pixel) {
        QPoint point = canvas.rect().center();
        while (canvas.pixelAt(point).x() < pixel.x())
            point.rx() += 1;
        while (canvas.pixelAt(point).y() < pixel.y())
            point.ry() += 1;
        return point;
    };
    const auto copied = [&] {
        act(ActionId::copyValues).trigger();
        return QApplication::clipboard()->text();
    };
    canvas.actualSize();
    canvas.zoom(8);
    const QPoint corner = canvas.pixelAt(canvas.rect().center());
    moveMouse(canvas, at(corner), Qt::NoButton);
    QCOMPARE(
        copied(),
        QStringLiteral("x\ty\tDAPI\tMembrane\n%1\t%2\t131\t231\n").arg(corner.x()).arg(corner.y()));
    act(ActionId::profile).setChecked(true);
    QTest::mousePress(&canvas, Qt::LeftButton, {}, at(corner));
    moveMouse(canvas, at(corner + QPoint(3, 1)), Qt::LeftButton);
    QTest::mouseRelease(&canvas, Qt::LeftButton, {}, at(corner + QPoint(3, 1)));
    const QStringList lines = copied().split('\n', Qt::SkipEmptyParts);
    QCOMPARE(int(lines.size()), 5);
    QCOMPARE(lines[4], QStringLiteral("%1\t%2\t131\t231").arg(corner.x() + 3).arg(corner.y() + 1));
}

/// Preferences outlive a program that is killed.
void WindowTest::choicesAreKeptWithoutAClose() {
    QTRY_VERIFY(QSettings().contains("geometry")); // of the start
    act(ActionId::safeColours).setChecked(true);
    QTRY_VERIFY(QSettings().value("safeColours").toBool());
    act(ActionId::keepSettings).setChecked(false); // which changes no image
    QTRY_VERIFY(!QSettings().value("keepSettings", true).toBool());
    openTwo();
    window_ = std::make_unique<Window>();
    QVERIFY(act(ActionId::safeColours).isChecked());
    QVERIFY(window_->viewer().options().safeColours);
    QMenu* recent = act(ActionId::recent).menu();
    QCOMPARE(recent->actions().front()->text(), QStringLiteral("a.tif, b.png"));
    recent->actions().front()->trigger();
    QVERIFY(waitForImage(window_->viewer()));
    QCOMPARE(model().size(), 2);
}

std::unique_ptr<QObject> makeSuite() { return std::make_unique<WindowTest>(); }

} // namespace lumetra

#ifndef __clang_analyzer__ // what the compiler of signals writes is not ours to lint
#include "window_test.moc"
#endif
