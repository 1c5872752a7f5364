#include "apps/common/display_table.h"
#include "apps/common/failure.h"
#include "apps/common/histogram.h"
#include "apps/common/level_policy.h"

#include "planes.h"

#include <gtest/gtest.h>

#include <lumetra>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace apps {
namespace {

TEST(DisplayTable, IsStretchLevelsGrayForEveryPairOfLevels) {
    DisplayTable table;
    for (int low = 0; low <= 253; ++low) {
        for (int high = std::max(low + 1, 2); high <= 255; ++high) {
            std::vector<unsigned char> ramp(256);
            std::iota(ramp.begin(), ramp.end(), static_cast<unsigned char>(0));
            Lumetra::StretchLevelsGray(static_cast<unsigned short>(low),
                                       static_cast<unsigned short>(high), ramp.data(), 256, 1);
            table.set(8, {low, high}, 1);
            ASSERT_EQ(table.entries(), ramp) << low << ':' << high;
            table.set(16, {low, high}, 1); // by the formula
            ASSERT_TRUE(std::equal(ramp.begin(), ramp.end(), table.entries().begin()))
                << low << ':' << high;
        }
    }
}

TEST(DisplayTable, RoundsHalvesUpInSixteenBits) {
    DisplayTable table;
    table.set(16, {1000, 1000 + 510}, 1);
    EXPECT_EQ(table.entries()[1000], 0);
    EXPECT_EQ(table.entries()[1001], 1); // exactly one half
    EXPECT_EQ(table.entries()[1003], 2); // one and a half
    EXPECT_EQ(table.entries()[1509], 255);
    EXPECT_EQ(table.entries()[65535], 255);
    table.set(16, {0, 65535}, 1);
    for (int v = 0; v < 65536; ++v)
        ASSERT_EQ(table.entries()[static_cast<std::size_t>(v)], (v * 510LL + 65535) / 131070);
}

TEST(DisplayTable, FollowsGamma) {
    DisplayTable table;
    table.set(16, {100, 1100}, 0.5);
    for (int v = 101; v < 1100; ++v) {
        const double exact = 255 * std::sqrt((v - 100) / 1000.0);
        ASSERT_NEAR(table.entries()[static_cast<std::size_t>(v)], exact, 0.5 + 1e-9);
    }
    table.set(8, {0, 1}, 1); // a mask
    EXPECT_EQ(table.entries()[1], 255);
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
    EXPECT_THROW(sum.add(noisePlane({3, 3}, CV_8UC1, 0)), Failure);
}

TEST(Histogram, CutsOffAShareOfSortedSamples) {
    cv::Mat plane = noisePlane({50, 20}, CV_16UC1, 7);
    std::vector<int> sorted(plane.begin<ushort>(), plane.end<ushort>());
    std::sort(sorted.begin(), sorted.end());
    Histogram histogram;
    histogram.add(plane);
    for (const double percent : {0.0, 0.1, 0.19, 1.0, 25.0, 49.9}) {
        const auto cut = static_cast<std::size_t>(percent / 100 * 1000);
        const LevelRange expected{sorted[cut], sorted[999 - cut]};
        EXPECT_EQ(histogram.clipped(percent), expected) << percent;
    }
    EXPECT_EQ(histogram.percentile(50), sorted[499]);
    EXPECT_EQ(histogram.percentile(0), sorted[0]);
    EXPECT_EQ(histogram.percentile(100), sorted[999]);
}

TEST(LevelPolicy, IsUnderstood) {
    struct Case {
        const char *words, *text;
    };
    for (const Case& c :
         {Case{"auto", "auto"}, Case{"clip:0", "auto"}, Case{"clip:0.5", "clip:0.5"},
          Case{"7:65535", "7:65535"}, Case{"none", "none"}})
        EXPECT_EQ(parseLevelPolicy(c.words).text(), c.text);
    for (const char* words : {"", "clip", "clip:50", "clip:-1", "clip:nan", "clip:x", "5:5", "9:3",
                              "0:65536", ":", "1:2:3", "-1:5", "AUTO"})
        EXPECT_THROW(parseLevelPolicy(words), BadUsage) << words;
}

TEST(LevelPolicy, GivesAFlatPictureLevelsAroundItsValue) {
    struct Case {
        int type, value;
        LevelRange levels;
    };
    for (const Case& c :
         {Case{CV_8UC1, 0, {0, 1}}, Case{CV_8UC1, 90, {89, 91}}, Case{CV_8UC1, 255, {254, 255}},
          Case{CV_16UC1, 255, {254, 256}}, Case{CV_16UC1, 65535, {65534, 65535}}}) {
        Histogram histogram;
        histogram.add(cv::Mat(4, 4, c.type, cv::Scalar(c.value)));
        EXPECT_EQ(levelsOf(histogram, parseLevelPolicy("clip:1")), c.levels) << c.value;
    }
}

} // namespace
} // namespace apps
