// Colouring through a table, against the slot rule spelt out pixel by pixel.

#include "plain_colouring.h"

namespace {

cv::Mat coloured(cv::Mat src, const QVector<QColor>& colours) {
    cv::Mat dst;
    Lumetra::Pseudo(src, dst, colours);
    return dst;
}

/// The slot of each pixel of a one-column image, read off the red component.
std::vector<int> slotsOf(const cv::Mat& column) {
    const cv::Mat result = coloured(column, rampOf(256));
    cv::Mat red;
    cv::extractChannel(result, red, 2);
    red.convertTo(red, CV_32S, result.depth() == CV_16U ? 1.0 / 256 : 1.0);
    return red;
}

TEST(Pseudo, EveryTypeAndSizeFollowsTheRule) {
    for (int depth : allDepths)
        for (int channels : {1, 3, 4})
            for (cv::Size size : imageSizes()) {
                const cv::Mat image = mediumContrast(size, CV_MAKETYPE(depth, channels));
                for (int colours : {255, 100})
                    for (const cv::Mat& src : {image, viewInto(image)})
                        ASSERT_TRUE(sameImage(coloured(src, rampOf(colours)),
                                              plainColoured(image, rampOf(colours))))
                            << cv::typeToString(image.type()) << " " << size << " " << colours;
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
                ASSERT_TRUE(
                    sameImage(coloured(image, rampOf(256)), plainColoured(image, rampOf(256))))
                    << cv::typeToString(type) << " " << low << " + " << span;
            }
    for (int type : {CV_16UC1, CV_16UC3}) {
        cv::Mat image(256, 256, type);
        fillSamples(image, [](int y, int x, int c) { return y * 256 + x + c * 9; });
        EXPECT_TRUE(sameImage(coloured(image, rampOf(256)), plainColoured(image, rampOf(256))));
        EXPECT_EQ(coloured(cv::Mat(image.reshape(1)), rampOf(256)).at<cv::Vec3w>(255, 255)[2] >> 8,
                  254);
    }
}

/// All 2^24 colours: where the sum of the weighted samples is a whole number, its order decides.
TEST(Pseudo, EveryColourHasTheLumaOfThePlainSum) {
    const QVector<QColor> colours = rampOf(256);
    cv::Mat image(256, 256, CV_8UC3);
    for (int blue = 0; blue < 256; ++blue) {
        fillSamples(image,
                    [blue](int y, int x, int c) { return c == 0 ? blue : (c == 1 ? y : x); });
        const cv::Mat result = coloured(image, colours);
        int wrong = 0;
        for (int green = 0; green < 256; ++green)
            for (int red = 0; red < 256; ++red) {
                const int luma = plainLuma(blue, green, red);
                wrong += result.at<cv::Vec3b>(green, red)[2] != std::max(luma - 1, 0) ? 1 : 0;
            }
        ASSERT_EQ(wrong, 0) << "with blue " << blue;
    }
}

TEST(Pseudo, KnownSlots) {
    const cv::Mat gray = (cv::Mat_<uchar>(5, 1) << 0, 2, 3, 254, 255);
    EXPECT_EQ(slotsOf(gray), (std::vector{0, 0, 2, 253, 254}));
    // Level 2 has a luma of 1. So has level 1 of 0; below the smallest sample acts as the smallest.
    EXPECT_EQ(slotsOf((cv::Mat_<uchar>(2, 1) << 0, 2)), (std::vector{0, 85}));
    EXPECT_EQ(slotsOf((cv::Mat_<uchar>(3, 1) << 1, 2, 3)), (std::vector{0, 0, 170}));
    EXPECT_EQ(slotsOf((cv::Mat_<ushort>(2, 1) << 500, 501)), (std::vector{0, 127}));
    EXPECT_EQ(slotsOf((cv::Mat_<ushort>(3, 1) << 7, 28, 111)), (std::vector{0, 50, 252}));
    EXPECT_EQ(slotsOf((cv::Mat_<ushort>(2, 1) << 0, 65535)), (std::vector{0, 254}));
    EXPECT_EQ(slotsOf(cv::Mat(4, 1, CV_16UC3, cv::Scalar::all(900))), (std::vector{0, 0, 0, 0}));
}

TEST(Pseudo, ColoursAreTakenFromAnyListOfColours) {
    cv::Mat all(256, 2, CV_8UC1), deep;
    fillSamples(all, [](int y, int, int) { return y; });
    all.convertTo(deep, CV_16U, 257);
    QVector<QColor> mixed = {QColor::fromHsv(200, 100, 50), QColor(), QColor::fromCmyk(9, 8, 7, 6),
                             QColor(1, 2, 3, 4), QColor(Qt::transparent)};
    for (const QVector<QColor>& colours :
         {rampOf(0), rampOf(1), rampOf(127), rampOf(254), rampOf(256), rampOf(700), mixed})
        for (const cv::Mat& src : {all, deep})
            EXPECT_TRUE(sameImage(coloured(src, colours), plainColoured(src, colours)))
                << colours.size();
    const QVector<QColor> red = {QColor(255, 0, 0)};
    EXPECT_EQ(coloured(cv::Mat(1, 1, CV_8UC1, 9), red).at<cv::Vec3b>(0), cv::Vec3b(0, 0, 255));
    EXPECT_EQ(coloured(cv::Mat(1, 1, CV_16UC1, 9), red).at<cv::Vec3w>(0), cv::Vec3w(0, 0, 65280));
}

} // namespace
