// Sources, threads and results: files good and bad, cameras on good and bad days.

#include "tests/apps/viewer/stage.h"

#include "apps/common/error.h"
#include "apps/common/settings.h"
#include "apps/viewer/mailbox.h"

#include <QProcess>

namespace lumetra {

class ViewerTest : public QObject {
    Q_OBJECT
private slots:
    void theNewestWinsAndNothingIsTakenTwice();
    void badFilesAreNamedAndChangeNothing_data();
    void badFilesAreNamedAndChangeNothing();
    void stacksTurnForthAndBack();
    void nothingIsRenderedWhereNothingChanges();
    void aSavedImageEqualsTheCommands_data();
    void aSavedImageEqualsTheCommands();
    void commandsTakeNoNameForAnOption();
    void aSlowWindowDropsFramesAndShowsTheNewest();
    void camerasMayFail_data();
    void camerasMayFail();
    void aCameraMayChangeItsSize();
    void closingNeverWaitsForAStalledCamera();
    void intensitiesAreThoseBelowTheImage();
    void settingsGoOutAndIn();
    void theSimulatedCameraDriftsAndHasHotPixels();
};

namespace {

QByteArray settingsOf(const Viewer& viewer) {
    return settingsJson({viewer.model().channels(), std::nullopt});
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

void ViewerTest::stacksTurnForthAndBack() {
    const Folder folder;
    std::vector<cv::Mat> pages;
    for (int i = 1; i <= 3; ++i)
        pages.emplace_back(8, 8, CV_8UC1, cv::Scalar::all(i));
    const QString stack = folder.writeStack("stack.tif", pages);
    const QString still = folder.write("still.tif", pages[1]);
    FileSource source({parseFile(stack), parseFile(still), parseFile(stack + "[3]")});
    QCOMPARE(source.pages(), 3);
    Frame frame;
    QString order;
    for (int i = 0; i < 7; ++i) {
        source.grab(frame);
        order += QString::number(frame.page);
        QCOMPARE(int(frame.planes[0].at<unsigned char>(0, 0)), frame.page);
        QCOMPARE(int(frame.planes[1].at<unsigned char>(0, 0)), 2);
        QCOMPARE(int(frame.planes[2].at<unsigned char>(0, 0)), 3);
    }
    QCOMPARE(order, QStringLiteral("1232123"));
    source.setPage(99);
    source.grab(frame);
    QCOMPARE(frame.page, 3);
    QCOMPARE(fileSpec(source.filesAt(2)[0]), stack + "[2]");
    QCOMPARE(fileSpec(source.filesAt(2)[1]), still);
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

void ViewerTest::aSavedImageEqualsTheCommands_data() {
    QTest::addColumn<int>("variant");
    QTest::newRow("composite") << 0;
    QTest::newRow("offsets, gamma and a hidden channel") << 1;
    QTest::newRow("legend, scale bar, custom dye, one in gray") << 2;
    QTest::newRow("pseudo-colour") << 3;
    QTest::newRow("page of a stack") << 4;
}

void ViewerTest::aSavedImageEqualsTheCommands() {
    QFETCH(int, variant);
    const Folder folder;
    const cv::Size size(320, 200);
    QStringList files{folder.write("it's one.tif", noisePlane(size, CV_16UC1, 1)),
                      folder.write("zwei ü.png", noisePlane(size, CV_8UC1, 2)),
                      folder.write("3.tif", noisePlane(size, CV_16UC1, 3))};
    if (variant == 4)
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
        options.graySingle = true;
        model.setDye(2, "Custom dye");
        model.solo(2);
    } else if (variant == 3) {
        options.lut = LutChoice{"magma", true};
        options.pseudoChannel = 2;
        model.setGamma(2, 1.5);
    } else if (variant == 4) {
        viewer.setPage(2);
        QTRY_COMPARE(viewer.rendered().page, 2);
    }
    viewer.setOptions(options);
    const QSignalSpy saved(&viewer, &Viewer::statusMessage);
    viewer.saveImage(folder.path("viewer.png"));
    QTRY_COMPARE_WITH_TIMEOUT(saved.size(), 1, 20000);

    QProcess shell;
    shell.setWorkingDirectory(folder.path("."));
    QString line = viewer.command();
    QVERIFY(line.startsWith("lumetra "));
    line.replace(0, 7, qEnvironmentVariable("LUMETRA"));
    shell.start("/bin/sh", {"-c", line});
    QVERIFY(shell.waitForFinished());
    QVERIFY2(shell.exitCode() == 0, shell.readAllStandardError().constData());
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
    QCOMPARE(int(rendered.screen.at<cv::Vec4b>(0, 0)[0]), frames);
    QVERIFY(signalled <= 2); // signals do not pile up
    QVERIFY(loop.dropped() >= frames - 2 && loop.dropped() < frames);
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
    auto camera = std::make_shared<ScriptedCamera>([&](int, Frame& frame) {
        frame.planes = flatPlanes(2, {width, 16}, 5000);
    });
    Viewer viewer;
    viewer.connectCamera(camera, {channelOf(Qt::red), channelOf(Qt::green)});
    viewer.setRate(200);
    viewer.start();
    for (const int next : {32, 64, 8, 33}) {
        width = next;
        QTRY_COMPARE(viewer.rendered().screen.cols, next);
        QVERIFY(viewer.rendered().problem.isEmpty());
    }
    viewer.close(); // before what the camera refers to goes
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
    QCOMPARE(viewer.rendered().screen.size(), cv::Size(37, 28));
    QCOMPARE(viewer.intensitiesAt({5, 10}), (std::vector<int>{1205, 1008}));
    QVERIFY(viewer.intensitiesAt({-1, 0}).empty());
    QVERIFY(viewer.intensitiesAt({37, 0}).empty());
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
        viewer.saveSettings(folder.path("s.json"));
        QTRY_COMPARE(saved.size(), 1);
    }
    Viewer viewer;
    viewer.open({folder.path("s.json"), file, file});
    QVERIFY(waitForImage(viewer));
    QCOMPARE(viewer.model().channel(0).dye, std::string("Cy5"));
    QVERIFY((viewer.model().channel(0).levels == ContrastLimits{11, 2222}));
    QCOMPARE(viewer.model().channel(1).gamma, 2.0);
    const QSignalSpy problems(&viewer, &Viewer::errorOccurred);
    viewer.saveImage(file); // would replace what is looked at
    QTRY_COMPARE(problems.size(), 1);
    viewer.saveSettings(folder.path("no/such/folder/s.json"));
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

std::unique_ptr<QObject> makeSuite() { return std::make_unique<ViewerTest>(); }

} // namespace lumetra

#ifndef __clang_analyzer__ // what the compiler of signals writes is not ours to lint
#include "viewer_test.moc"
#endif
