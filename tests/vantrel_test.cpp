// Colour-mode conversion: channels, and samples from any depth to any other.

#include "support.h"

#include "vantrel/vantrel.h"

#include <cmath>
#include <limits>

namespace {

cv::Mat converted(const cv::Mat& src, int type) {
    cv::Mat dst;
    Vantrel::ConvertColorMode(src, dst, type);
    return dst;
}

struct Depth {
    int code;
    double smallest, largest;
};

const Depth integers[] = {{CV_8U, 0, 255},
                          {CV_8S, -128, 127},
                          {CV_16U, 0, 65535},
                          {CV_16S, -32768, 32767},
                          {CV_32S, INT_MIN, INT_MAX}};

/// One column of three equal channels.
cv::Mat columnOf(const std::vector<double>& samples, int depth) {
    cv::Mat column = cv::Mat(samples).clone(), three;
    column.convertTo(column, depth);
    cv::merge(std::vector<cv::Mat>(3, column), three);
    return three;
}

TEST(ConvertColorMode, IntegersKeepTheirShareOfFullScale) {
    for (Depth from : integers) {
        std::vector<double> samples = {from.smallest, from.smallest + 1, from.largest - 1,
                                       from.largest};
        const auto range = static_cast<int64_t>(from.largest - from.smallest);
        for (int64_t i = 0; i <= range; i += 1 + range / 70001)
            samples.push_back(from.smallest + static_cast<double>(i));
        const cv::Mat gray = cv::Mat(samples).clone();
        cv::Mat src;
        gray.convertTo(src, from.code);
        for (Depth to : integers) {
            std::vector<double> expected;
            for (double v : samples) {
                const long double share = static_cast<long double>(v) * to.largest / from.largest;
                expected.push_back(
                    std::clamp(static_cast<double>(std::round(share)), to.smallest, to.largest));
            }
            EXPECT_TRUE(
                sameImage(converted(src, CV_MAKETYPE(to.code, 3)), columnOf(expected, to.code)))
                << cv::typeToString(from.code) << " to " << cv::typeToString(to.code);
        }
    }
}

TEST(ConvertColorMode, FloatsAreRoundedAndClamped) {
    const double infinity = std::numeric_limits<double>::infinity();
    std::vector<double> samples = {std::numeric_limits<double>::quiet_NaN()};
    for (double v : {0.0, 0.25, 0.75, 126.75, 127.75, 128.25, 254.75, 255.75, 3e4, 4e4, 7e4, 2e9,
                     3e9, 9.5e18, 1e30, 1e38, infinity})
        samples.insert(samples.end(), {v, -v});
    for (int from : {CV_32F, CV_64F}) {
        cv::Mat src;
        cv::Mat(samples).convertTo(src, from);
        for (Depth to : integers) {
            std::vector<double> expected(samples.size());
            std::transform(samples.begin(), samples.end(), expected.begin(), [to](double v) {
                return std::isnan(v) ? 0 : std::clamp(std::round(v), to.smallest, to.largest);
            });
            EXPECT_TRUE(
                sameImage(converted(src, CV_MAKETYPE(to.code, 3)), columnOf(expected, to.code)))
                << cv::typeToString(from) << " to " << cv::typeToString(to.code);
        }
    }
}

TEST(ConvertColorMode, IntegersKeepTheirValueAsFloats) {
    for (Depth from : integers)
        for (int to : {CV_32F, CV_64F}) {
            const std::vector<double> samples = {from.smallest, 0, 1, 77, from.largest};
            cv::Mat src;
            cv::Mat(samples).convertTo(src, from.code);
            EXPECT_TRUE(sameImage(converted(src, CV_MAKETYPE(to, 3)), columnOf(samples, to)));
        }
}

TEST(ConvertColorMode, GrayBecomesThreeChannelsAndAlphaIsDropped) {
    for (int depth = CV_8U; depth <= CV_16F; ++depth)
        for (int channels : {1, 3, 4})
            for (cv::Size size : imageSizes()) {
                cv::Mat image;
                const int noiseDepth = depth == CV_16F ? CV_32F : depth;
                randomImage(size, CV_MAKETYPE(noiseDepth, channels)).convertTo(image, depth);
                std::vector<cv::Mat> planes;
                cv::split(image, planes);
                planes.resize(3, planes[0]);
                cv::Mat expected;
                cv::merge(planes, expected);

                cv::Mat src = viewInto(image);
                const cv::Mat parent = parentOf(src), before = parent.clone();
                cv::Mat dst = parent(cv::Rect({0, 0}, size));
                Vantrel::ConvertColorMode(src, dst, expected.type());
                ASSERT_TRUE(sameImage(dst, expected)) << cv::typeToString(image.type());
                EXPECT_NE(dst.u, src.u);
                Vantrel::ConvertColorMode(src, src, expected.type());
                ASSERT_TRUE(sameImage(src, expected)) << cv::typeToString(image.type());
                EXPECT_TRUE(sameImage(parent, before));
            }
}

TEST(ConvertColorMode, EmptyImagesStayEmpty) {
    for (int type : {CV_8UC1, CV_8UC3, CV_16UC4})
        for (cv::Size size : {cv::Size(0, 0), cv::Size(5, 0), cv::Size(0, 5)})
            for (int to : {CV_8UC3, CV_16UC3}) {
                cv::Mat image(size, type);
                Vantrel::ConvertColorMode(image, image, to);
                EXPECT_TRUE(sameImage(image, cv::Mat(size, to)));
            }
    EXPECT_TRUE(sameImage(converted(cv::Mat(), CV_8UC3), cv::Mat(0, 0, CV_8UC3)));
}

TEST(ConvertColorMode, OtherShapesAreRefused) {
    struct Case {
        cv::Mat src;
        int type;
    };
    for (const Case& bad :
         {Case{cv::Mat(3, 4, CV_8UC2), CV_8UC3}, Case{cv::Mat(3, 4, CV_16UC(5)), CV_16UC3},
          Case{cv::Mat(3, 4, CV_8UC3), CV_8UC1}, Case{cv::Mat(3, 4, CV_8UC1), CV_8UC1},
          Case{cv::Mat(3, 4, CV_8UC4), CV_8UC4}, Case{cv::Mat(), CV_8UC1},
          Case{cv::Mat({2, 3, 4}, CV_8UC1), CV_8UC3}, Case{cv::Mat({2, 3, 4}, CV_8UC3), CV_8UC3}}) {
        cv::Mat dst = randomImage({4, 3}, CV_8UC1);
        const cv::Mat storage = dst, before = dst.clone();
        EXPECT_THROW(Vantrel::ConvertColorMode(bad.src, dst, bad.type), cv::Exception);
        EXPECT_EQ(dst.data, storage.data);
        EXPECT_TRUE(sameImage(dst, before));
    }
}

} // namespace
