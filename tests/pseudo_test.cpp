// Colouring through a table, against the slot rule spelt out pixel by pixel.

#include "plain_colouring.h"

namespace {

void expectRule(cv::Mat src, const QVector<QColor>& colours) {
    cv::Mat dst;
    Lumetra::Pseudo(src, dst, colours);
    ASSERT_TRUE(sameImage(dst, plainColoured(src, colours)))
        << cv::typeToString(src.type()) << " " << src.size() << " " << colours.size();
}

TEST(Pseudo, EveryTypeAndSizeFollowsTheRule) {
    for (int depth : allDepths)
        for (int channels : {1, 3, 4})
            for (cv::Size size : imageSizes()) {
                const cv::Mat image = mediumContrast(size, CV_MAKETYPE(depth, channels));
                for (int colours : {255, 100})
                    for (const cv::Mat& src : {image, viewInto(image)})
                        expectRule(src, rampOf(colours));
            }
}

/// Every span of samples, gray and coloured, with a smallest sample that is not 0 among them.
TEST(Pseudo, EverySpanOfSamplesFollowsTheRule) {
    for (int type : {CV_8UC1, CV_8UC3, CV_16UC1, CV_16UC3})
        for (int low : {0, 1, 3, 64, 200})
            for (int span = 1; low + span <= 256; ++span) {
                cv::Mat image(span, 2, type);
                fillSamples(image,
                            [&](int y, int x, int c) { return low + (x * c * 5 + y) % span; });
                expectRule(image, rampOf(256));
            }
    for (int type : {CV_16UC1, CV_16UC3}) {
        cv::Mat image(256, 256, type);
        fillSamples(image, [](int y, int x, int c) { return y * 256 + x + c * 9; });
        expectRule(image, rampOf(256));
    }
}

/// All 2^24 colours: where the sum of the weighted samples is a whole number, its order decides.
TEST(Pseudo, EveryColourHasTheLumaOfThePlainSum) {
    cv::Mat image(256, 256, CV_8UC3);
    for (int blue = 0; blue < 256; ++blue) {
        fillSamples(image,
                    [blue](int y, int x, int c) { return c == 0 ? blue : (c == 1 ? y : x); });
        expectRule(image, rampOf(256));
    }
}

TEST(Pseudo, ColoursAreTakenFromAnyListOfColours) {
    cv::Mat all(256, 2, CV_8UC1), deep;
    fillSamples(all, [](int y, int, int) { return y; });
    all.convertTo(deep, CV_16U, 257);
    const QVector<QColor> mixed = {QColor::fromHsv(200, 100, 50), QColor(),
                                   QColor::fromCmyk(9, 8, 7, 6), QColor(1, 2, 3, 4),
                                   QColor(Qt::transparent)};
    for (const QVector<QColor>& colours :
         {rampOf(0), rampOf(1), rampOf(127), rampOf(254), rampOf(256), rampOf(700), mixed})
        for (const cv::Mat& src : {all, deep})
            expectRule(src, colours);
}

} // namespace
