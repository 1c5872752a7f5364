// The channel model, and what is measured of channels.

#include "apps/common/settings.h"
#include "tests/apps/viewer/stage.h"

#include <QAbstractItemModelTester>

namespace lumetra {
namespace {

const std::vector<ChannelStatistics> eightBitStatistics(int count) {
    ChannelStatistics measured;
    measured.bits = 8;
    return std::vector<ChannelStatistics>(static_cast<size_t>(count), measured);
}

} // namespace

class ModelTest : public QObject {
    Q_OBJECT
private slots:
    void isASoundTable();
    void levelsStayInOrder_data();
    void levelsStayInOrder();
    void automaticLevelsAreTakenOnceOrAlways();
    void levelsOfAnotherBitDepthAreMeasuredAgain();
    void aClickShowsOneChannelAndTheNextAll();
    void aNudgeMovesAsFarAsNumbersGo();
    void dyesAreNamedInAnyCaseOrRefused();
    void customDyesColourTheirChannels();
    void levelsAndSettingsAreHandedOn();
    void editsAreUndone();
    void channelsAreMovedAndRemoved();
    void statisticsTellRangeBitDepthAndSaturation_data();
    void statisticsTellRangeBitDepthAndSaturation();
    void liveStatisticsLookAtSomeRowsOnly();
};

void ModelTest::isASoundTable() {
    ChannelModel model;
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    model.setChannels({channelOf(Qt::red), channelOf(Qt::green)});
    model.adopt({{1, 2}, {3, 4}}, eightBitStatistics(2));
    model.solo(1);
    model.setChannels({channelOf(Qt::blue)});
    QCOMPARE(model.rowCount(), 1);
    QCOMPARE(model.index(0, ChannelModel::colourColumn).data(Qt::DecorationRole).value<QColor>(),
             QColor(Qt::blue));
    model.setChannels({});
    QCOMPARE(model.rowCount(), 0);
    model.solo(0); // rows that are not there
    model.setLevels(-1, {0, 1});
    model.nudge(3, {1, 1});
    model.resetContrast(0);
    model.copyLevelsToAll(0);
    model.remove(0);
    model.move(0, 1);
}

void ModelTest::levelsStayInOrder_data() {
    QTest::addColumn<bool>("isWhite");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("low");
    QTest::addColumn<int>("high");
    QTest::newRow("black") << false << 30 << 30 << 200;
    QTest::newRow("black beyond white") << false << 220 << 220 << 221;
    QTest::newRow("black at the end") << false << 255 << 254 << 255;
    QTest::newRow("white below black") << true << 5 << 4 << 5;
    QTest::newRow("white at nothing") << true << 0 << 0 << 1;
    QTest::newRow("white beyond 8 bits") << true << 4095 << 10 << 255;
}

void ModelTest::levelsStayInOrder() {
    QFETCH(bool, isWhite);
    QFETCH(int, value);
    QFETCH(int, low);
    QFETCH(int, high);
    ChannelModel model;
    model.setChannels({channelOf(Qt::red)});
    model.adopt({{10, 200}}, eightBitStatistics(1));
    isWhite ? model.setWhiteLevel(0, value) : model.setBlackLevel(0, value);
    QCOMPARE(model.channel(0).levels->low, low);
    QCOMPARE(model.channel(0).levels->high, high);
}

void ModelTest::automaticLevelsAreTakenOnceOrAlways() {
    ChannelModel model;
    model.setChannels({channelOf(Qt::red), channelOf(Qt::green, ContrastLimits{7, 8})});
    QVERIFY(!model.requested()[0].levels);
    QVERIFY(model.requested()[1].levels);
    QVERIFY(model.adopt({{10, 20}, {30, 40}}, eightBitStatistics(2)));
    QVERIFY((model.channel(0).levels == ContrastLimits{10, 20}));
    QVERIFY((model.channel(1).levels == ContrastLimits{7, 8}));
    QVERIFY(model.requested()[0].levels); // from now on they are the user's

    model.setContinuousLevels(true);
    QVERIFY(!model.adopt({{11, 21}, {31, 41}}, eightBitStatistics(2)));
    QVERIFY((model.channel(1).levels == ContrastLimits{31, 41}));
    QVERIFY(!model.requested()[0].levels && !model.requested()[1].levels);
    model.setLevels(0, {1, 2}); // what is set by hand stays
    model.adopt({{12, 22}, {32, 42}}, eightBitStatistics(2));
    QVERIFY((model.channel(0).levels == ContrastLimits{1, 2}));

    QVERIFY(!model.adopt({{1, 2}}, eightBitStatistics(1))); // of an image before
}

void ModelTest::levelsOfAnotherBitDepthAreMeasuredAgain() {
    Channel deep = channelOf(Qt::red, ContrastLimits{300, 4000});
    deep.levelsBits = 16;
    ChannelModel model;
    const QSignalSpy refused(&model, &ChannelModel::refused);
    model.setChannels({deep, channelOf(Qt::green, ContrastLimits{7, 8})}); // the other one unknown
    std::vector<ChannelStatistics> statistics = eightBitStatistics(2);
    statistics[0].automatic = {5, 99};
    QVERIFY(model.adopt({{300, 4000}, {7, 8}}, statistics));
    QVERIFY((model.channel(0).levels == ContrastLimits{5, 99}));
    QVERIFY((model.channel(1).levels == ContrastLimits{7, 8}));
    QCOMPARE(refused.size(), 1);
    QVERIFY(!model.adopt({{5, 99}, {7, 8}}, statistics));
    QCOMPARE(refused.size(), 1);
    QVERIFY(settingsJson({model.channels(), std::nullopt}).count("\"bits\": 8") == 2);
}

void ModelTest::aClickShowsOneChannelAndTheNextAll() {
    ChannelModel model;
    model.setChannels({channelOf(Qt::red), channelOf(Qt::green), channelOf(Qt::blue)});
    const auto visible = [&] {
        QString text;
        for (const Channel& channel : model.channels())
            text += channel.visible ? QLatin1Char('x') : QLatin1Char('-');
        return text;
    };
    model.solo(1);
    QCOMPARE(visible(), QStringLiteral("-x-"));
    model.solo(2);
    QCOMPARE(visible(), QStringLiteral("--x"));
    model.solo(2);
    QCOMPARE(visible(), QStringLiteral("xxx"));
    const auto box = model.index(0, ChannelModel::visibleColumn);
    QVERIFY(model.setData(box, Qt::Unchecked, Qt::CheckStateRole));
    QCOMPARE(visible(), QStringLiteral("-xx"));
}

void ModelTest::aNudgeMovesAsFarAsNumbersGo() {
    ChannelModel model;
    model.setChannels({channelOf(Qt::red)});
    model.nudge(0, {3, -2}); // to the right and up
    QCOMPARE(model.channel(0).offset, cv::Point(-3, 2));
    QCOMPARE(model.index(0, ChannelModel::offsetColumn).data().toString(),
             QStringLiteral("← -3 ↑ 2"));
    constexpr int most = std::numeric_limits<int>::max();
    model.nudge(0, {most, most});
    model.nudge(0, {most, most});
    QCOMPARE(model.channel(0).offset.x, std::numeric_limits<int>::min());
}

void ModelTest::dyesAreNamedInAnyCaseOrRefused() {
    ChannelModel model;
    model.setChannels({channelOf(Qt::red)});
    QVERIFY(model.setDye(0, "dapi"));
    QCOMPARE(model.channel(0).dye, std::string("DAPI"));
    QVERIFY(model.setDye(0, "#12ab34"));
    QCOMPARE(toQt(model.channel(0).colour), QColor("#12ab34"));
    const QSignalSpy refused(&model, &ChannelModel::refused);
    QVERIFY(!model.setDye(0, "DAPPI"));
    QCOMPARE(toQt(model.channel(0).colour), QColor("#12ab34"));
    QCOMPARE(refused.size(), 1);
    QVERIFY(refused[0][0].toString().contains("\"DAPI\""));
}

void ModelTest::customDyesColourTheirChannels() {
    ChannelModel model;
    model.setCustomDyes(asDyes({{"Mine", QColor("#010203")}}));
    model.setChannels({channelOf(Qt::red)});
    QVERIFY(model.setDye(0, "mine"));
    QCOMPARE(toQt(model.channel(0).colour), QColor("#010203"));
    model.setCustomDyes(asDyes({{"Mine", QColor("#0a0b0c")}}));
    QCOMPARE(toQt(model.channel(0).colour), QColor("#0a0b0c"));
    model.setCustomDyes({});
    QVERIFY(!model.dyes().find("Mine"));
}

void ModelTest::levelsAndSettingsAreHandedOn() {
    ChannelModel model;
    model.setChannels({channelOf(Qt::red), channelOf(Qt::green), channelOf(Qt::blue)});
    model.setLevels(0, {100, 4000});
    model.setGamma(0, 0.5);
    model.copyLevelsToAll(0);
    QVERIFY((model.channel(2).levels == ContrastLimits{100, 4000}));
    QCOMPARE(model.channel(2).gamma, 0.5);
    model.useFullRange(1, 12);
    QVERIFY((model.channel(1).levels == ContrastLimits{0, 4095}));
    std::vector<ChannelStatistics> statistics(3);
    statistics[1].bits = 16;
    statistics[1].largest = 1023;
    model.adopt({{0, 1}, {0, 1}, {0, 1}}, statistics);
    model.resetContrast(1);
    QVERIFY((model.channel(1).levels == ContrastLimits{0, 1023}));
    QCOMPARE(model.channel(1).gamma, 1.0);
    model.applySettings({channelOf(Qt::cyan, ContrastLimits{1, 9})});
    QCOMPARE(toQt(model.channel(0).colour), QColor(Qt::cyan));
    QCOMPARE(toQt(model.channel(1).colour), QColor(Qt::green));
}

void ModelTest::editsAreUndone() {
    ChannelModel model;
    model.setChannels({channelOf(Qt::red, ContrastLimits{1, 9}), channelOf(Qt::green)});
    const std::vector<ChannelRow> before = model.rows();
    const std::pair<const char*, std::function<void()>> edits[] = {
        {"colour",
         [&] {
             model.setColour(0, {1, 2, 3});
         }},
        {"dye", [&] { model.setDye(0, "Cy5"); }},
        {"name", [&] { model.setName(1, "Actin"); }},
        {"hidden", [&] { model.setVisible(1, false); }},
        {"alone", [&] { model.solo(0); }},
        {"auto", [&] { model.useAutomaticLevels(0); }},
        {"reset", [&] { model.resetContrast(0); }},
        {"to all", [&] { model.copyLevelsToAll(0); }},
        {"settings", [&] { model.applySettings({channelOf(Qt::cyan)}); }},
        {"moved", [&] { model.move(0, 1); }},
        {"removed", [&] { model.remove(0); }},
        {"dragged", [&] {
             for (int i = 2; i < 8; ++i) // one edit
                 model.setLevels(0, {i, 100});
         }}};
    for (const auto& [name, edit] : edits) {
        edit();
        const std::vector<ChannelRow> after = model.rows();
        QVERIFY2(!(after == before), name);
        model.undoStack().undo();
        QVERIFY2(model.rows() == before, name);
        model.undoStack().redo();
        QVERIFY2(model.rows() == after, name);
        model.undoStack().undo();
    }
}

void ModelTest::channelsAreMovedAndRemoved() {
    ChannelModel model;
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    model.setChannels({channelOf(Qt::red), channelOf(Qt::green), channelOf(Qt::blue)});
    model.move(0, 1);
    model.move(0, -1); // there is nothing above
    model.remove(2);
    QVERIFY((model.planes() == std::vector<size_t>{1, 0}));
    QCOMPARE(toQt(model.channel(0).colour), QColor(Qt::green));
    model.remove(0);
    model.remove(0); // the last one stays
    QCOMPARE(model.size(), 1);
}

void ModelTest::statisticsTellRangeBitDepthAndSaturation_data() {
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("bits"); // that the source knows of
    QTest::addColumn<int>("largest");
    QTest::addColumn<int>("expected");
    QTest::addColumn<double>("saturated");
    QTest::newRow("8 bits") << CV_8UC1 << 0 << 200 << 255 << 0.0;
    QTest::newRow("8 bits, full") << CV_8UC1 << 0 << 255 << 255 << 0.01;
    QTest::newRow("12 bits") << CV_16UC1 << 0 << 4094 << 4095 << 0.0;
    QTest::newRow("12 bits, full") << CV_16UC1 << 0 << 4095 << 4095 << 0.01;
    QTest::newRow("just 14 bits") << CV_16UC1 << 0 << 4096 << 16383 << 0.0;
    QTest::newRow("16 bits, full") << CV_16UC1 << 0 << 65535 << 65535 << 0.01;
    QTest::newRow("known: 16 bits") << CV_16UC1 << 16 << 999 << 65535 << 0.0;
    QTest::newRow("known: 12 bits") << CV_16UC1 << 12 << 60000 << 4095 << 0.01;
}

void ModelTest::statisticsTellRangeBitDepthAndSaturation() {
    QFETCH(int, type);
    QFETCH(int, bits);
    QFETCH(int, largest);
    QFETCH(int, expected);
    cv::Mat plane(10, 10, type, cv::Scalar::all(3));
    plane(cv::Rect(4, 5, 1, 1)).setTo(largest);
    ChannelStatistics measured;
    ChannelMeter meter;
    meter.measure(plane, bits, {}, measured);
    QVERIFY((measured.range == ContrastLimits{3, largest}));
    QCOMPARE(measured.largest, expected);
    QTEST(measured.saturated, "saturated");
    QCOMPARE(measured.axis.low, 0);
    const auto bin = static_cast<size_t>(3 * ChannelStatistics::bins / (measured.axis.high + 1));
    QCOMPARE(measured.curve[bin], 99.F);
    QCOMPARE(std::accumulate(measured.curve.begin(), measured.curve.end(), 0.0), 100.0);
    MeasureOptions options;
    options.showsDataRange = true;
    meter.measure(plane, bits, options, measured);
    QVERIFY(measured.axis == measured.range);
    QCOMPARE(measured.curve.front(), 99.F);
    QCOMPARE(measured.curve.back(), 1.F);
    meter.measure(cv::Mat(4, 4, type, cv::Scalar::all(largest)), bits, options, measured);
    QVERIFY(measured.axis.low < measured.axis.high);
}

/// In every eighth, or ninth, row there are other values than in the rest.
void ModelTest::liveStatisticsLookAtSomeRowsOnly() {
    cv::Mat plane(4096, 512, CV_16UC1, cv::Scalar::all(500));
    plane.row(8).setTo(900);
    plane.row(9).setTo(901);
    plane.row(11).setTo(60000);
    ChannelStatistics measured;
    ChannelMeter meter;
    MeasureOptions live;
    live.isLive = true;
    meter.measure(plane, 0, live, measured);
    QVERIFY(measured.range.high == 900 || measured.range.high == 901);
    meter.measure(plane, 0, {}, measured);
    QCOMPARE(measured.range.high, 60000);
    meter.measure(plane, 0, live, measured); // the bit depth that was guessed never shrinks
    QCOMPARE(measured.largest, 65535);
    QCOMPARE(measured.saturated, 0.0);
}

std::unique_ptr<QObject> makeSuite() { return std::make_unique<ModelTest>(); }

} // namespace lumetra

#ifndef __clang_analyzer__ // what the compiler of signals writes is not ours to lint
#include "model_test.moc"
#endif
