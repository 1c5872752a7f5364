// Values of any type on a scale of 65,536 steps.
#include "imageio/value_conversion.h"

#include <gtest/gtest.h>

#include <opencv2/core.hpp>

#include <limits>
#include <vector>

namespace lumetra {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double largest = std::numeric_limits<double>::max();

TEST(ValueConversion, MapsLimitsToTheEndsOfTheScale) {
    struct Case {
        double value, low, high;
        int step;
    };
    const std::vector<Case> cases{
        {0, 0, 1, 0},
        {1, 0, 1, 65535},
        {0.5, 0, 1, 32768},
        {-3, -3, 5, 0},
        {-4, -3, 5, 0},
        {6, -3, 5, 65535},
        {100.0 / 65535, 0, 1, 100},
        {nan, 0, 1, 0},
        {infinity, 0, 1, 0},
        {-infinity, 0, 1, 0},
        {5, 5, 5, 0}, // of a constant image all is background
        {6, 5, 5, 65535},
        {0, -largest, largest, 32768},
        {largest, -largest, largest, 65535},
    };
    for (const Case& c : cases) {
        const cv::Mat plane(1, 1, CV_64FC1, cv::Scalar(c.value));
        EXPECT_EQ(toDisplay16(plane, c.low, c.high).at<std::uint16_t>(0), c.step)
            << c.value << " from " << c.low << " to " << c.high;
    }
    const cv::Mat words = (cv::Mat_<std::uint16_t>(1, 3) << 0, 1234, 65535);
    EXPECT_EQ(cv::norm(toDisplay16(words, 0, 65535), words, cv::NORM_INF), 0);
    EXPECT_EQ(fromDisplay16(0, -3, 5), -3);
    EXPECT_EQ(fromDisplay16(65535, -3, 5), 5);
}

TEST(ValueConversion, FindsTheRangeOfWhatIsFinite) {
    const cv::Mat plane = (cv::Mat_<float>(2, 3) << 1.5F, -2, static_cast<float>(nan), 7,
                           static_cast<float>(infinity), 0);
    FiniteRange range = finiteRange(plane);
    EXPECT_EQ(range.low, -2);
    EXPECT_EQ(range.high, 7);
    EXPECT_EQ(range.finite, 4);
    EXPECT_EQ(range.notFinite, 2);
    range = finiteRange(cv::Mat(1, 2, CV_64FC1, cv::Scalar(nan)));
    EXPECT_EQ(range.low, 0);
    EXPECT_EQ(range.high, 0);
    range.add(finiteRange(cv::Mat(1, 2, CV_8UC1, cv::Scalar(9))));
    EXPECT_EQ(range.low, 9);
    EXPECT_EQ(range.high, 9);
    EXPECT_EQ(range.finite, 2);
    EXPECT_EQ(range.notFinite, 2);
}

} // namespace
} // namespace lumetra
