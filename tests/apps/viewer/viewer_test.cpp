// Sources, threads and results: files good and bad, cameras on good and bad days.

#include "tests/apps/viewer/stage.h"

#include "apps/common/error.h"
#include "apps/common/lut_file.h"
#include "apps/common/settings.h"
#include "apps/viewer/mailbox.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>

#include <atomic>
#include <chrono>
#include <thread>

namespace lumetra {

class ViewerTest : public QObject {
    Q_OBJECT
private slots:
    void theNewestWinsAndNothingIsTakenTwice();
    void badFilesAreNamedAndChangeNothing_data();
    void badFilesAreNamedAndChangeNothing();
    void stacksGoRound();
    void filesHaveAxes();
    void settingsAreKeptForFilesAlike();
    void nothingIsRenderedWhereNothingChanges();
    void imagesAreWhatSettingsSay();
    void aSavedImageEqualsTheCommands_data();
    void aSavedImageEqualsTheCommands();
    void aFolderIsRenderedLikeOneField_data();
    void aFolderIsRenderedLikeOneField();
    void commandsTakeNoNameForAnOption();
    void aSlowWindowDropsFramesAndShowsTheNewest();
    void aLateCameraDoesNotCatchUp();
    void theSourceBeforeIsNeverShown();
    void camerasMayFail_data();
    void camerasMayFail();
    void aCameraMayChangeItsSize();
    void closingNeverWaitsForAStalledCamera();
    void intensitiesAreThoseBelowTheImage();
    void settingsGoOutAndIn();
    void theSimulatedCameraDriftsAndHasHotPixels();
    void theSimulatedCameraIsNotWaitedFor();
};

namespace {

QByteArray settingsOf(const Viewer& viewer) {
    return settingsJson({viewer.model().channels(), std::nullopt});
}

/// Runs a line of the program's in a folder, and gives what it has to complain about.
QByteArray runInShell(QString line, const QString& folder = {}) {
    QProcess shell;
    shell.setWorkingDirectory(folder);
    if (!line.startsWith("lumetra "))
        return "not a line for the command";
    const QFileInfo command(qEnvironmentVariable("LUMETRA")); // may lack a drive
    line.replace(0, 7, QDir::toNativeSeparators(command.absoluteFilePath()));
#ifdef Q_OS_WIN
    shell.setProgram("cmd");
    shell.setNativeArguments("/d /s /c \"" + line + '"');
    shell.start();
#else
    shell.start("/bin/sh", {"-c", line});
#endif
    shell.waitForFinished();
    return shell.exitCode() == 0 ? QByteArray() : shell.readAllStandardError() + "failed";
}

} // namespace

void ViewerTest::theNewestWinsAndNothingIsTakenTwice() {
    Mailbox<int> box;
    int mine = 1, taken = 0;
    QVERIFY(!box.take(taken));
    QVERIFY(!box.put(mine));
    mine = 2;
    QVERIFY(box.put(mine));
    QCOMPARE(mine, 1); // what was lost comes back for its memory
    QVERIFY(box.take(taken));
    QCOMPARE(taken, 2);
    QVERIFY(!box.take(taken));
}

void ViewerTest::badFilesAreNamedAndChangeNothing_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("not there") << "missing.tif"
                               << "missing.tif";
    QTest::newRow("no image") << "text.tif"
                              << "text.tif";
    QTest::newRow("cut short") << "cut.tif"
                               << "cut.tif";
    QTest::newRow("colour") << "colour.png"
                            << "must be gray";
    QTest::newRow("another size") << "small.tif"
                                  << "32 x 20";
    QTest::newRow("unknown dye") << "good.tif=DAPPI"
                                 << "\"DAPI\"";
    QTest::newRow("no such page") << "good.tif[3]"
                                  << "page 3";
    QTest::newRow("another number of pages") << "three.tif"
                                             << "good.tif has 2, ";
    QTest::newRow("broken settings") << "broken.json"
                                     << "broken.json";
    QTest::newRow("a folder") << "."
                              << "not a file";
}

void ViewerTest::badFilesAreNamedAndChangeNothing() {
    QFETCH(QString, text);
    QFETCH(QString, expected);
    const Folder folder;
    const cv::Mat plane = noisePlane({40, 20}, CV_16UC1, 1);
    const QString good = folder.writeStack("good.tif", {plane, plane});
    folder.writeStack("three.tif", {plane, plane, plane});
    folder.write("small.tif", noisePlane({32, 20}, CV_16UC1, 2));
    folder.write("colour.png", cv::Mat(20, 40, CV_8UC3, cv::Scalar(1, 2, 3)));
    folder.writeBytes("text.tif", "no image");
    folder.writeBytes("cut.tif", folder.read("good.tif").left(600));
    folder.writeBytes("broken.json", "{\"channels\": [");
    Viewer viewer;
    viewer.open({good});
    QVERIFY(waitForImage(viewer));
    const auto channels = settingsOf(viewer);
    const QSignalSpy problems(&viewer, &Viewer::errorOccurred);
    viewer.open({folder.path(text)}, true);
    QTRY_COMPARE(problems.size(), 1);
    QVERIFY2(problems[0][0].toString().contains(expected), qPrintable(problems[0][0].toString()));
    QVERIFY(!problems[0][0].toString().contains('\n'));
    QCOMPARE(settingsOf(viewer), channels);
    QCOMPARE(viewer.title(), QStringLiteral("good.tif"));
}

void ViewerTest::stacksGoRound() {
    const Folder folder;
    std::vector<cv::Mat> pages;
    for (int i = 1; i <= 3; ++i)
        pages.emplace_back(8, 8, CV_8UC1, cv::Scalar::all(i));
    const QString stack = folder.writeStack("stack.tif", pages);
    const QString still = folder.write("still.tif", pages[1]);
    FileSource source({parseFile(stack), parseFile(still), parseFile(stack + "[3]")}, DyeList());
    QCOMPARE(source.axes().slices, 3);
    QVERIFY(source.hasPages());
    Frame frame;
    const auto values = [&] {
        QString text;
        source.grab(frame);
        for (const cv::Mat& plane : frame.planes)
            text += QString::number(plane.at<unsigned char>(0, 0));
        return text;
    };
    for (const char* const expected : {"123", "223", "323", "123"})
        QCOMPARE(values(), QString(expected));
    source.setPosition({99, 1, {}});
    QCOMPARE(values(), QStringLiteral("323"));
    source.setPosition({2, 1, ProjectionMethod::mean});
    QCOMPARE(values(), QStringLiteral("223"));
    source.setPosition({1, 1, ProjectionMethod::max});
    QCOMPARE(values(), QStringLiteral("323"));
    QCOMPARE(values(), QStringLiteral("323")); // there is nothing to go on to
    QCOMPARE(fileSpec(source.filesAt({2, 1, {}})[0]), stack + "[2]");
    QCOMPARE(fileSpec(source.filesAt({2, 1, {}})[1]), still);
    QCOMPARE(fileSpec(source.filesAt({2, 1, ProjectionMethod::max})[0]), stack);
}

/// A file of two channels, three z-slices and two time points: as it says, and with parts named.
void ViewerTest::filesHaveAxes() {
    const Folder folder;
    const QString file = folder.writeHyperstack("cells.tif");
    Viewer viewer;
    viewer.open({file});
    QVERIFY(waitForImage(viewer));
    const ChannelModel& model = viewer.model();
    QCOMPARE(model.size(), 2);
    QCOMPARE(toQt(model.channel(0).name), QStringLiteral("DAPI"));
    QCOMPARE(toQt(model.channel(0).dye), QStringLiteral("DAPI"));
    QCOMPARE(toQt(model.channel(1).name), QStringLiteral("Membrane"));
    QCOMPARE(toQt(model.channel(1).colour), QColor("#ff8000"));
    QCOMPARE(viewer.axes().slices, 3);
    QCOMPARE(viewer.axes().frames, 2);
    QCOMPARE(viewer.pixelSize(), std::optional(0.25));
    const auto values = [&] { return viewer.intensitiesAt({{1, 1}}).front(); };
    QCOMPARE(values(), (std::vector<int>{111, 211})); // channel, z-slice, time point
    viewer.setPosition({3, 2, {}});
    QTRY_COMPARE(values(), (std::vector<int>{132, 232}));
    QTRY_VERIFY(viewer.command().contains("cells.tif[c2,z3,t2]=Membrane#ff8000"));
    viewer.setPosition({1, 2, ProjectionMethod::max});
    QTRY_VERIFY(viewer.command().contains("--project max"));
    QCOMPARE(values(), (std::vector<int>{132, 232}));
    QVERIFY(viewer.command().contains("cells.tif[c1,t2]=DAPI"));
    viewer.setPosition({1, 2, ProjectionMethod::mean});
    QTRY_COMPARE(values(), (std::vector<int>{122, 222}));

    viewer.setPosition({1, 1, {}});
    viewer.open({file + "[c2,z2-3]=FITC", file + "[c1,z1,t2]"});
    QTRY_COMPARE(viewer.axes().slices, 2);
    QTRY_COMPARE(values(), (std::vector<int>{221, 112}));
    QCOMPARE(toQt(model.channel(0).dye), QStringLiteral("FITC"));
    const QSignalSpy problems(&viewer, &Viewer::errorOccurred);
    for (const char* const wrong : {"=FITC", "[c3]", "[z4]", "[t3]", "[c1-2]=FITC"}) {
        const auto before = problems.size();
        viewer.open({file + wrong});
        QTRY_COMPARE(problems.size(), before + 1);
        QVERIFY2(problems.back()[0].toString().contains("cells.tif"), wrong);
    }
}

/// Levels are kept for files alike: of equal channels and, for the levels, equal bit depth.
void ViewerTest::settingsAreKeptForFilesAlike() {
    const Folder folder;
    const auto file = [&](const QString& name, int type) {
        return folder.write(name, noisePlane({20, 20}, type, 3));
    };
    Viewer viewer;
    ChannelModel& model = viewer.model();
    const auto levelsAfter = [&](const QString& name) {
        viewer.open({name});
        return QTest::qWaitFor([&] {
            return !viewer.isBusy() && viewer.inputs() == QStringList{name} &&
                   model.channel(0).levelsBits > 0;
        })
                   ? *model.channel(0).levels
                   : ContrastLimits{};
    };
    levelsAfter(file("a1.tif", CV_16UC1));
    model.setLevels(0, {1000, 2000});
    model.setGamma(0, 0.5);
    QVERIFY((levelsAfter(file("a2.tif", CV_16UC1)) == ContrastLimits{1000, 2000}));
    const ContrastLimits of8Bits = levelsAfter(file("a3.png", CV_8UC1));
    QVERIFY(of8Bits.high <= 255);
    QCOMPARE(model.channel(0).gamma, 0.5);                       // is for any bit depth
    QVERIFY(levelsAfter(file("a4.tif", CV_16UC1)).high > 10000); // and the other way round
    model.setLevels(0, {1000, 2000});
    QVERIFY(levelsAfter(file("x_Cy5.tif", CV_16UC1)).high > 10000); // another channel
    QCOMPARE(model.channel(0).gamma, 1.0);
}

void ViewerTest::nothingIsRenderedWhereNothingChanges() {
    const Folder folder;
    const QStringList files{folder.write("a.tif", noisePlane({64, 48}, CV_16UC1, 1)),
                            folder.write("b.tif", noisePlane({64, 48}, CV_16UC1, 2))};
    Viewer viewer;
    const QSignalSpy images(&viewer, &Viewer::imageChanged);
    const auto renders = [&](int expected, auto change) {
        const auto before = images.size();
        change();
        return QTest::qWaitFor([&] { return images.size() >= before + expected; }) &&
               !QTest::qWaitFor([&] { return images.size() > before + expected; }, 50);
    };
    ViewOptions options;
    ChannelModel& model = viewer.model();
    QVERIFY(renders(1, [&] { viewer.open(files); }));
    QVERIFY(renders(0, [&] { viewer.setOptions(options); }));
    options.pseudoChannel = 1; // the selected row, which matters with a LUT only
    QVERIFY(renders(0, [&] { viewer.setOptions(options); }));
    options.lut = LutChoice{};
    QVERIFY(renders(1, [&] { viewer.setOptions(options); }));
    options.pseudoChannel = 0;
    QVERIFY(renders(1, [&] { viewer.setOptions(options); }));
    QVERIFY(renders(0, [&] { model.setLevels(0, *model.channel(0).levels); }));
    QVERIFY(renders(0, [&] { model.showAll(); }));
    QVERIFY(renders(1, [&] { model.setVisible(1, false); }));
    QVERIFY(renders(1, [&] { model.setContinuousLevels(true); }));
    QVERIFY(renders(0, [&] { viewer.setOptions(options); })); // whose levels are unknown before
    model.setContinuousLevels(false);
    QVERIFY(renders(1, [&] { viewer.open(files); }));
}

/// With colours that were calculated by hand: nothing is compared with the renderer itself.
void ViewerTest::imagesAreWhatSettingsSay() {
    const Folder folder;
    const QPoint plain(5, 5), hot16(20, 9), hot8(12, 6);
    cv::Mat deep(30, 40, CV_16UC1, cv::Scalar::all(400)), flat(30, 40, CV_8UC1, cv::Scalar(51));
    deep.at<std::uint16_t>(hot16.y(), hot16.x()) = 65535;
    flat.at<unsigned char>(hot8.y(), hot8.x()) = 255;
    Viewer viewer;
    viewer.open(
        {folder.write("a.tif", deep) + "=#ff8000", folder.write("b.png", flat) + "=#0000ff"});
    QVERIFY(waitForImage(viewer));
    ChannelModel& model = viewer.model();
    ViewOptions options;
    const auto seen = [&](QPoint at) { return viewer.image().pixelColor(at).name(); };
    const QString red = "#ff0000", bright16 = "#ff8033", bright8 = "#6633ff";
    model.setLevels(0, {0, 1000});
    model.setLevels(1, {0, 255});
    QTRY_COMPARE(seen(plain), QString("#663333")); // 0.4 and 0.2 of the colours
    QCOMPARE(seen(hot16), bright16);
    options.marksSaturated = true;
    viewer.setOptions(options);
    QTRY_COMPARE(seen(hot16), red);
    QCOMPARE(seen(hot8), red);
    QCOMPARE(seen(plain), QString("#663333"));
    model.nudge(0, {-2, -3}); // and with the channel its marks
    QTRY_COMPARE(seen(hot16 - QPoint(2, 3)), red);
    QCOMPARE(seen(hot8), red);
    QCOMPARE(seen(hot16), QString("#663333"));
    model.resetOffsets();
    model.setVisible(1, false);
    QTRY_COMPARE(seen(hot8), QString("#663300")); // a hidden channel has none
    model.setVisible(1, true);
    viewer.saveImage(folder.path("saved.png"), viewer.snapshot());
    QTRY_VERIFY(!viewer.isBusy());
    const QImage image(folder.path("saved.png"));
    const auto savedAt = [&](QPoint at) { return image.pixelColor(at).name(); };
    QCOMPARE(savedAt(plain), QString("#663333"));
    QCOMPARE(savedAt(hot16), bright16); // as it is without marks
    QCOMPARE(savedAt(hot8), bright8);
    // 0.4 becomes 0.16, then 0.632: of 255 steps of a colour, and of the 256 colours of a LUT
    for (const auto& [gamma, level, entry] : {std::tuple(2.0, 41, 40), std::tuple(0.5, 161, 161)}) {
        model.setGamma(0, gamma);
        QTRY_COMPARE(viewer.image().pixelColor(plain).red(), level);
        options.lut = LutChoice{"magma", false};
        viewer.setOptions(options);
        QTRY_COMPARE(seen(plain), toQt(namedLut("magma")[static_cast<std::size_t>(entry)]).name());
        QCOMPARE(seen(hot16), red);
        options.lut.reset();
        viewer.setOptions(options);
    }
}

void ViewerTest::aSavedImageEqualsTheCommands_data() {
    QTest::addColumn<int>("variant");
    QTest::newRow("composite") << 0;
    QTest::newRow("offsets, gamma and a hidden channel") << 1;
    QTest::newRow("legend, scale bar, custom dye, one in gray") << 2;
    QTest::newRow("pseudo-colour") << 3;
    QTest::newRow("page of a stack") << 4;
    QTest::newRow("panels of channels moved and removed") << 5;
    QTest::newRow("projection in safe colours, with a pixel size") << 6;
}

void ViewerTest::aSavedImageEqualsTheCommands() {
    QFETCH(int, variant);
    const Folder folder;
    const cv::Size size(320, 200);
    QStringList files{folder.write("it's one.tif", noisePlane(size, CV_16UC1, 1)),
                      folder.write("zwei ü.png", noisePlane(size, CV_8UC1, 2)),
                      folder.write("3.tif", noisePlane(size, CV_16UC1, 3))};
    if (variant == 4 || variant == 6)
        files[0] = folder.writeStack(
            "stack.tif", {noisePlane(size, CV_16UC1, 4), noisePlane(size, CV_16UC1, 5)});
    Viewer viewer;
    viewer.model().setCustomDyes(asDyes({{"Custom dye", QColor("#9f3b77")}}));
    viewer.open(files);
    QVERIFY(waitForImage(viewer));
    ChannelModel& model = viewer.model();
    ViewOptions options;
    if (variant == 1) {
        model.nudge(0, {7, -3});
        model.nudge(1, {-2, 4});
        model.setGamma(2, 0.45);
        model.setVisible(1, false);
        model.setLevels(0, {1000, 30000});
    } else if (variant == 2) {
        options.annotation.legend = true;
        options.annotation.scaleBar = ScaleBar{5, 0.1};
        viewer.setPixelSize(0.1);
        options.graySingle = true;
        model.setDye(2, "Custom dye");
        model.solo(2);
    } else if (variant == 3) {
        options.lut = LutChoice{"magma", true};
        options.pseudoChannel = 2;
        model.setGamma(2, 1.5);
    } else if (variant == 4) {
        viewer.setPosition({2, 1, {}});
        QTRY_COMPARE(viewer.rendered().position.slice, 2);
    } else if (variant == 5) {
        options.panels = PanelColours::colour;
        options.annotation.scaleBar = ScaleBar{5, 0.1};
        viewer.setPixelSize(0.1);
        model.move(0, 2);
        model.remove(1);
        model.setName(0, "Nuclei");
    } else if (variant == 6) {
        viewer.setPosition({1, 1, ProjectionMethod::mean});
        QTRY_VERIFY(viewer.rendered().position.projection);
        viewer.setPixelSize(0.3);
        options.safeColours = true;
    }
    viewer.setOptions(options);
    const QSignalSpy saved(&viewer, &Viewer::statusMessage);
    viewer.saveImage(folder.path("viewer.png"), viewer.snapshot());
    QTRY_COMPARE_WITH_TIMEOUT(saved.size(), 1, 20000);

    QCOMPARE(runInShell(viewer.command(), folder.path(".")), QByteArray());
    QVERIFY(!folder.read("viewer.png").isEmpty());
    QVERIFY(folder.read("viewer.png") == folder.read("image.png"));
}

void ViewerTest::commandsTakeNoNameForAnOption() {
    const ChannelFile file{{"-a.tif", 2}, channelOf(Qt::red)};
    QVERIFY(mergeArguments({file}, {"0:9"}, {}, DyeList()).contains("./-a.tif[2]=#ff0000"));
    const LutChoice choice{"-b.lut", false};
    const QStringList pseudo = pseudoArguments(file, "0:9", choice, {});
    QVERIFY(pseudo.contains("./-a.tif[2]") && pseudo.contains("./-b.lut"));
}

void ViewerTest::aSlowWindowDropsFramesAndShowsTheNewest() {
    RenderLoop loop;
    DisplaySettings settings;
    settings.channels = {channelOf(Qt::white, ContrastLimits{0, 65535})};
    loop.setSettings(settings);
    std::atomic<int> signalled{0};
    connect(
        &loop, &RenderLoop::ready, &loop, [&] { ++signalled; }, Qt::DirectConnection);
    Frame frame;
    constexpr int frames = 50;
    for (int i = 1; i <= frames; ++i) {
        frame.planes = flatPlanes(1, {4, 4}, i * 257);
        frame.number = static_cast<std::uint64_t>(i);
        loop.offer(frame);
        QTest::qSleep(1);
    }
    RenderedFrame rendered;
    QTRY_VERIFY((loop.take(rendered), rendered.frame == frames));
    QCOMPARE(int(rendered.screens[0].at<cv::Vec4b>(0, 0)[0]), frames);
    QVERIFY(signalled <= 2); // signals do not pile up
    QVERIFY(loop.dropped() >= frames - 2 && loop.dropped() < frames);
}

/// Three frames may come at once, more would be too fast for the window.
void ViewerTest::aLateCameraDoesNotCatchUp() {
    constexpr int lateFrame = 3, after = 20, period = 10; // milliseconds
    QElapsedTimer sinceLate;
    std::atomic<qint64> elapsed{-1};
    FrameFeed feed(std::make_shared<ScriptedCamera>([&](int exposure, Frame&) {
                       if (exposure == lateFrame) {
                           QTest::qSleep(400); // 40 frames
                           sinceLate.start();
                       } else if (exposure == lateFrame + after) {
                           elapsed = sinceLate.elapsed();
                       }
                   }),
                   [](Frame&) {});
    feed.start(1000.0 / period);
    QTRY_VERIFY(elapsed >= 0);
    QVERIFY2(elapsed >= (after - 3) * period, qPrintable(QString::number(elapsed)));
}

/// Neither an image that waits to be taken, nor one that is made of the frame before.
void ViewerTest::theSourceBeforeIsNeverShown() {
    std::atomic<int> exposures{0};
    const auto camera = std::make_shared<ScriptedCamera>([&](int exposure, Frame& frame) {
        frame.planes = flatPlanes(1, {16, 16}, 1000);
        exposures = exposure;
    });
    const auto silent = std::make_shared<ScriptedCamera>([](int, Frame&) {});
    Viewer viewer;
    viewer.setRate(200);
    for (const bool isTaken : {false, true}) {
        viewer.connectCamera(camera, {channelOf(Qt::red)});
        const int before = exposures;
        viewer.start();
        if (isTaken)
            QVERIFY(waitForImage(viewer));
        while (exposures < before + 20) // images wait in the meantime
            QTest::qSleep(1);
        viewer.connectCamera(silent, {channelOf(Qt::green)});
        QVERIFY(viewer.image().isNull());
        QVERIFY(!QTest::qWaitFor([&] { return !viewer.image().isNull(); }, 100));
        QCOMPARE(viewer.intensitiesAt({{1, 1}}).front(), std::vector<int>());
        try {
            static_cast<void>(viewer.snapshot());
            QFAIL("there is no image to save");
        } catch (const Error&) { // as it should be
        }
    }
}

void ViewerTest::camerasMayFail_data() {
    QTest::addColumn<int>("fault");
    QTest::addColumn<QString>("expected");
    QTest::newRow("stops") << 0 << "the cable";
    QTest::newRow("unknown exception") << 1 << "out of luck";
    QTest::newRow("planes of unlike sizes") << 2 << "different sizes";
    QTest::newRow("a channel fewer") << 3 << "expected: 2";
    QTest::newRow("pixels of another type") << 4 << "plane";
}

void ViewerTest::camerasMayFail() {
    QFETCH(int, fault);
    QFETCH(QString, expected);
    auto camera = std::make_shared<ScriptedCamera>([fault](int exposure, Frame& frame) {
        frame.planes = flatPlanes(2, {16, 16}, 100 * exposure);
        if (exposure < 3)
            return;
        if (fault == 0)
            throw Error("the cable was pulled out");
        if (fault == 1)
            throw std::runtime_error("out of luck");
        if (fault == 2)
            frame.planes[1] = flatPlanes(1, {15, 16}, 1)[0];
        if (fault == 3)
            frame.planes.pop_back();
        if (fault == 4)
            frame.planes[0] = cv::Mat(16, 16, CV_32FC1, cv::Scalar::all(0));
    });
    Viewer viewer;
    QString problem;
    connect(&viewer, &Viewer::errorOccurred, [&](const QString& reason) { problem = reason; });
    connect(&viewer, &Viewer::imageChanged, [&] { problem += viewer.rendered().problem; });
    viewer.connectCamera(camera, {channelOf(Qt::red), channelOf(Qt::green)});
    viewer.setRate(200);
    viewer.start();
    QTRY_VERIFY2(problem.contains(expected), qPrintable(problem));
    QCOMPARE(viewer.isRunning(), fault > 1); // it goes on as soon as frames are right again
}

void ViewerTest::aCameraMayChangeItsSize() {
    std::atomic<int> width{32};
    const auto camera = std::make_shared<ScriptedCamera>(
        [&](int, Frame& frame) {
            frame.planes = flatPlanes(2, {width, 16}, 900);
        },
        12);
    Viewer viewer;
    viewer.connectCamera(camera, {channelOf(Qt::red), channelOf(Qt::green)});
    viewer.setRate(200);
    viewer.start();
    for (const int next : {32, 64, 8, 33}) {
        width = next;
        QTRY_COMPARE(shownSize(viewer).width, next);
        QVERIFY(viewer.rendered().problem.isEmpty());
    }
    QCOMPARE(viewer.model().statistics(0).largest, 4095); // as the camera says, not its pixels
    viewer.close();                                       // before what the camera refers to goes
}

void ViewerTest::closingNeverWaitsForAStalledCamera() {
    std::atomic<bool> isStalled{false};
    ScriptedCamera* self = nullptr;
    auto camera = std::make_shared<ScriptedCamera>([&](int exposure, Frame& frame) {
        frame.planes = flatPlanes(1, {16, 16}, 7);
        isStalled = exposure == 2;
        if (exposure == 2)
            self->stall();
        isStalled = false;
    });
    self = camera.get();
    auto viewer = std::make_unique<Viewer>();
    viewer->connectCamera(camera, {channelOf(Qt::red)});
    viewer->start();
    QTRY_VERIFY(isStalled);
    viewer->stop(); // none of these may hang
    viewer->snap();
    QVERIFY(isStalled);
    viewer.reset();
    QVERIFY(!isStalled);
}

void ViewerTest::intensitiesAreThoseBelowTheImage() {
    const Folder folder;
    cv::Mat plane(30, 40, CV_16UC1);
    for (int y = 0; y < plane.rows; ++y)
        for (int x = 0; x < plane.cols; ++x)
            plane.at<std::uint16_t>(y, x) = static_cast<std::uint16_t>(100 * y + x);
    const QString file = folder.write("a.tif", plane);
    Viewer viewer;
    viewer.open({file + "=DAPI", file + "=FITC+3-2"}); // FITC: 3 to the left, 2 down
    QVERIFY(waitForImage(viewer));
    QCOMPARE(shownSize(viewer), cv::Size(37, 28));
    const std::vector<std::vector<int>> expected{{1205, 1008}, {}, {}};
    QVERIFY(viewer.intensitiesAt({{5, 10}, {-1, 0}, {37, 0}}) == expected);
    viewer.model().move(0, 1);
    QCOMPARE(viewer.intensitiesAt({{5, 10}}).front(), (std::vector<int>{1008, 1205}));
    viewer.model().remove(0);
    QCOMPARE(viewer.intensitiesAt({{5, 10}}).front(), std::vector<int>{1005});
}

void ViewerTest::settingsGoOutAndIn() {
    const Folder folder;
    const QString file = folder.write("a.tif", noisePlane({20, 20}, CV_16UC1, 1));
    {
        Viewer viewer;
        viewer.open({file + "=Cy5", file + "=FITC"});
        QVERIFY(waitForImage(viewer));
        viewer.model().setLevels(0, {11, 2222});
        viewer.model().setGamma(1, 2);
        const QSignalSpy saved(&viewer, &Viewer::statusMessage);
        viewer.saveSettings(folder.path("s.json"), viewer.model().channels());
        QTRY_COMPARE(saved.size(), 1);
    }
    Viewer viewer;
    viewer.open({folder.path("s.json"), file, file});
    QVERIFY(waitForImage(viewer));
    QCOMPARE(viewer.model().channel(0).dye, std::string("Cy5"));
    QVERIFY((viewer.model().channel(0).levels == ContrastLimits{11, 2222}));
    QCOMPARE(viewer.model().channel(1).gamma, 2.0);
    const QSignalSpy problems(&viewer, &Viewer::errorOccurred);
    viewer.saveImage(file, viewer.snapshot()); // would replace what is looked at
    QTRY_COMPARE(problems.size(), 1);
    viewer.saveSettings(folder.path("no/such/folder/s.json"), {});
    QTRY_COMPARE(problems.size(), 2);
}

void ViewerTest::theSimulatedCameraDriftsAndHasHotPixels() {
    SimulatedCamera camera({3, 128, {}});
    Frame frame;
    camera.grab(frame);
    QCOMPARE(frame.planes.size(), size_t(3));
    QCOMPARE(frame.planes[2].size(), cv::Size(128, 128));
    const void* const memory = frame.planes[0].data;
    const cv::Mat first = frame.planes[0].clone();
    QVERIFY(cv::countNonZero(first == 65535) > 10);
    for (int i = 0; i < 30; ++i)
        camera.grab(frame);
    QCOMPARE(static_cast<const void*>(frame.planes[0].data), memory); // used again
    QVERIFY(cv::norm(first, frame.planes[0], cv::NORM_L1) > 128 * 128 * 100.0);
    SimulatedCamera filming({2, 64, {noisePlane({20, 20}, CV_8UC1, 1)}});
    filming.grab(frame);
    QCOMPARE(frame.planes.size(), size_t(1));
}

void ViewerTest::theSimulatedCameraIsNotWaitedFor() {
    SimulatedCamera camera({4, 512, {}});
    std::atomic<bool> hasFrame{false}, isCancelled{false};
    std::thread exposing([&] {
        try {
            Frame frame;
            camera.grab(frame);
            hasFrame = true;
        } catch (const Error&) {
            isCancelled = true;
        }
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20)); // it has begun to draw cells
    camera.cancel();
    exposing.join();
    QVERIFY(isCancelled && !hasFrame);
}

/// The line renders every field of the folder as this one looks, this one to the same bytes.
void ViewerTest::aFolderIsRenderedLikeOneField_data() {
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("pattern");
    QTest::newRow("field before") << QStringList{"A1_s1_w1.tif", "A1_s1_w2.tif", "B2_s1_w1.tif",
                                                 "B2_s1_w2.tif"}
                                  << "{field}_w{channel}.tif";
    QTest::newRow("channel before")
        << QStringList{"DAPI-1 {a}.tif", "red-1 {a}.tif", "DAPI-2 {a}.tif", "red-2 {a}.tif"}
        << "{channel}-{field}.tif";
}

void ViewerTest::aFolderIsRenderedLikeOneField() {
    QFETCH(QStringList, names);
    QFETCH(QString, pattern);
    const Folder folder;
    for (int i = 0; i < names.size(); ++i)
        names[i] = folder.write(names[i], noisePlane({60, 40}, CV_16UC1, i));
    Viewer viewer;
    viewer.open({names[0] + "=DAPI", names[1] + "=Cy5+2-1"});
    QVERIFY(waitForImage(viewer));
    viewer.model().setLevels(0, {500, 40000});
    viewer.saveImage(folder.path("one.png"), viewer.snapshot());
    QTRY_VERIFY(!viewer.isBusy());
    const BatchCommand batch = viewer.batchCommand();
    QCOMPARE(batch.arguments.front(), folder.path(pattern));
    viewer.saveSettings(folder.path("s.json"), batch.channels);
    QTRY_VERIFY(!viewer.isBusy());
    QCOMPARE(runInShell(batch.line(folder.path("s.json"))), QByteArray());
    const QDir out(folder.path("out"), "*.png");
    QCOMPARE(int(out.count()), 2);
    QCOMPARE(folder.read("out/" + out.entryList().front()), folder.read("one.png"));
}

std::unique_ptr<QObject> makeSuite() { return std::make_unique<ViewerTest>(); }

} // namespace lumetra

#ifndef __clang_analyzer__ // what the compiler of signals writes is not ours to lint
#include "viewer_test.moc"
#endif
