#include "render/intensity_lut.h"
#include "render/level_policy.h"
#include "render/render_error.h"

#include "planes.h"

#include <gtest/gtest.h>

#include <lumetra>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace lumetra {
namespace {

/// What every pixel value becomes.
std::vector<unsigned char> displayed(int bits, ContrastLimits levels, double gamma) {
    cv::Mat ramp(1, 1 << bits, bits == 8 ? CV_8UC1 : CV_16UC1), bytes;
    for (int v = 0; v < ramp.cols; ++v)
        bits == 8 ? ramp.at<uchar>(0, v) = static_cast<uchar>(v)
                  : ramp.at<ushort>(0, v) = static_cast<ushort>(v);
    IntensityLut table;
    table.set(bits, levels, gamma);
    table.apply(ramp, bytes);
    return {bytes.begin<uchar>(), bytes.end<uchar>()};
}

TEST(IntensityLut, IsStretchLevelsGrayForEveryPairOfLevels) {
    for (int low = 0; low <= 253; ++low) {
        for (int high = std::max(low + 1, 2); high <= 255; ++high) {
            std::vector<unsigned char> ramp(256);
            std::iota(ramp.begin(), ramp.end(), static_cast<unsigned char>(0));
            Lumetra::StretchLevelsGray(static_cast<unsigned short>(low),
                                       static_cast<unsigned short>(high), ramp.data(), 256, 1);
            ASSERT_EQ(displayed(8, {low, high}, 1), ramp) << low << ':' << high;
            IntensityLut deep; // by the formula
            deep.set(16, {low, high}, 1);
            ASSERT_TRUE(deep.ramp().has_value());
            cv::Mat values(1, 256, CV_16UC1), bytes;
            std::iota(values.begin<ushort>(), values.end<ushort>(), ushort{0});
            deep.apply(values, bytes);
            ASSERT_TRUE(std::equal(ramp.begin(), ramp.end(), bytes.data)) << low << ':' << high;
        }
    }
}

TEST(IntensityLut, RoundsHalvesUpInSixteenBits) {
    struct Case {
        ContrastLimits levels;
        bool isRamp;
    };
    // Calculated or looked up, which is for the few wide ranges that floats miss.
    for (const Case& c :
         {Case{{1000, 1510}, true}, Case{{0, 65535}, true}, Case{{0, 1}, true},
          Case{{65534, 65535}, true}, Case{{7, 4102}, true}, Case{{300, 300 + 8190}, true},
          Case{{12, 12 + 14419}, false}, Case{{1, 60008}, false}}) {
        const ContrastLimits levels = c.levels;
        IntensityLut table;
        table.set(16, levels, 1);
        EXPECT_EQ(table.ramp().has_value(), c.isRamp) << levels.low << ':' << levels.high;
        const auto bytes = displayed(16, levels, 1);
        const std::int64_t span = levels.high - levels.low;
        for (int v = 0; v < 65536; ++v) {
            const std::int64_t above = std::clamp(v, levels.low, levels.high) - levels.low;
            ASSERT_EQ(bytes[static_cast<std::size_t>(v)], (510 * above + span) / (2 * span))
                << v << " in " << levels.low << ':' << levels.high;
        }
    }
}

TEST(LinearRamp, IsExactForEveryRangeOfTwelveBits) {
    for (int span = 1; span < 4096; ++span)
        ASSERT_TRUE(LinearRamp({0, span}).isExact()) << span;
}

TEST(IntensityLut, FollowsGamma) {
    const auto bytes = displayed(16, {100, 1100}, 0.5);
    for (int v = 101; v < 1100; ++v) {
        const double exact = 255 * std::sqrt((v - 100) / 1000.0);
        ASSERT_NEAR(bytes[static_cast<std::size_t>(v)], exact, 0.5 + 1e-9);
    }
    EXPECT_EQ(displayed(8, {0, 1}, 1)[1], 255); // a mask
}

TEST(Histogram, DoesNotDependOnTheCutOfTheData) {
    Histogram whole, part, sum;
    for (int i = 0; i < 6; ++i) {
        const cv::Mat plane = noisePlane({37, 11 + i}, CV_16UC1, i);
        whole.add(plane);
        part.add(plane);
        if (i % 2 == 1) {
            sum.add(part);
            part.clear();
        }
    }
    EXPECT_EQ(sum.counts(), whole.counts());
    EXPECT_EQ(sum.clipped(0.1), whole.clipped(0.1));
    EXPECT_THROW(sum.add(noisePlane({3, 3}, CV_8UC1, 0)), RenderError);
}

TEST(Histogram, CutsOffAShareOfSortedValues) {
    cv::Mat plane = noisePlane({50, 20}, CV_16UC1, 7);
    std::vector<int> sorted(plane.begin<ushort>(), plane.end<ushort>());
    std::sort(sorted.begin(), sorted.end());
    Histogram histogram;
    histogram.add(plane);
    for (const double percent : {0.0, 0.1, 0.19, 1.0, 25.0, 49.9}) {
        const auto cut = static_cast<std::size_t>(percent / 100 * 1000);
        const ContrastLimits expected{sorted[cut], sorted[999 - cut]};
        EXPECT_EQ(histogram.clipped(percent), expected) << percent;
    }
    EXPECT_EQ(histogram.percentile(50), sorted[499]);
    EXPECT_EQ(histogram.percentile(49.96), sorted[499]);
    EXPECT_EQ(histogram.percentile(0), sorted[0]);
    EXPECT_EQ(histogram.percentile(100), sorted[999]);
}

TEST(LevelPolicy, IsUnderstood) {
    struct Case {
        const char *written, *text;
    };
    for (const Case& c :
         {Case{"auto", "auto"}, Case{"clip:0", "auto"}, Case{"clip:0.5", "clip:0.5"},
          Case{"7:65535", "7:65535"}, Case{"-0.25:1e-3", "-0.25:0.001"},
          Case{"0:100000", "0:100000"}, Case{"none", "none"}})
        EXPECT_EQ(parseLevelPolicy(c.written).text(), c.text);
    EXPECT_EQ(parseLevelPolicy("7:65535").known(), (ContrastLimits{7, 65535}));
    for (const char* text : {"auto", "none", "0:65536", "-1:5", "0.5:2"})
        EXPECT_FALSE(parseLevelPolicy(text).known()) << text;
    for (const char* text : {"", "clip", "clip:50", "clip:-1", "clip:nan", "clip:x", "5:5", "9:3",
                             ":", "1:2:3", "1:inf", "nan:1", "AUTO"})
        EXPECT_THROW(parseLevelPolicy(text), RenderError) << text;
}

/// A constant background is black, a constant foreground white, and a flat image between them.
TEST(LevelPolicy, KeepsWhatIsConstantAtAnEnd) {
    struct Case {
        int type, value;
        std::vector<int> others; // of single pixels
        ContrastLimits levels;
    };
    for (const Case& c :
         {Case{CV_8UC1, 7, {90, 200}, {7, 200}}, Case{CV_8UC1, 0, {1}, {0, 1}},
          Case{CV_16UC1, 300, {65535}, {300, 65535}}, Case{CV_8UC1, 255, {3, 90}, {3, 255}},
          Case{CV_16UC1, 4000, {3999}, {3999, 4000}}, Case{CV_8UC1, 7, {0, 200}, {7, 200}},
          Case{CV_8UC1, 0, {}, {0, 1}}, Case{CV_8UC1, 90, {}, {89, 91}},
          Case{CV_8UC1, 255, {}, {254, 255}}, Case{CV_16UC1, 255, {}, {254, 256}},
          Case{CV_16UC1, 65535, {}, {65534, 65535}}}) {
        cv::Mat plane(20, 20, c.type, cv::Scalar(c.value));
        for (int i = 0; i < static_cast<int>(c.others.size()); ++i)
            plane(cv::Rect(i, 0, 1, 1)).setTo(c.others[static_cast<std::size_t>(i)]);
        Histogram histogram;
        histogram.add(plane);
        EXPECT_EQ(levelsOf(histogram, parseLevelPolicy("clip:1")), c.levels) << c.value;
    }
}

} // namespace
} // namespace lumetra
