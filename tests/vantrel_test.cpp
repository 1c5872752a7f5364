// Colour-mode conversion: channels, and samples from any depth to any other.

#include "support.h"

#include "vantrel/vantrel.h"

#include <cmath>
#include <map>

namespace {

cv::Mat converted(const cv::Mat& src, int type) {
    cv::Mat dst;
    Vantrel::ConvertColorMode(src, dst, type);
    return dst;
}

struct Range {
    int64_t smallest, largest;
};

const std::map<int, Range> integers = {{CV_8U, {0, 255}},
                                       {CV_8S, {-128, 127}},
                                       {CV_16U, {0, 65535}},
                                       {CV_16S, {-32768, 32767}},
                                       {CV_32S, {INT_MIN, INT_MAX}}};

/// A sample in another depth; a floating-point one rounds it further.
double plainConverted(double sample, int from, int to) {
    if (integers.count(to) == 0)
        return sample;
    const Range range = integers.at(to);
    if (integers.count(from) == 0)
        return std::isnan(sample)
                   ? 0
                   : std::clamp(std::nearbyint(sample), static_cast<double>(range.smallest),
                                static_cast<double>(range.largest));
    // The share of full scale in whole numbers. Full scales are odd, so that none is half way.
    const int64_t full = integers.at(from).largest;
    const auto magnitude = static_cast<int64_t>(std::abs(sample));
    const int64_t share = (2 * magnitude * range.largest + full) / (2 * full);
    return static_cast<double>(
        std::clamp(sample < 0 ? -share : share, range.smallest, range.largest));
}

/// Samples of a depth; of 32-bit integers also those on both sides of where a share is half way.
cv::Mat samplesAndTurns(int depth) {
    std::vector<int> turns;
    for (int64_t full : {127, 32767, 65535})
        for (int64_t n = 0; n < full && depth == CV_32S; ++n) {
            const int below = static_cast<int>((2 * n + 1) * INT_MAX / (2 * full));
            turns.insert(turns.end(), {below, below + 1, -below, -below - 1});
        }
    cv::Mat samples = samplesOf(depth);
    if (depth == CV_32S)
        samples.push_back(cv::Mat(turns));
    return samples;
}

TEST(ConvertColorMode, EveryDepthBecomesEveryOther) {
    for (int from : allDepths) {
        const cv::Mat src = samplesAndTurns(from);
        const cv::Mat_<double> samples = exactSamples(src);
        for (int to : allDepths) {
            std::vector<double> values(src.total());
            std::transform(samples.begin(), samples.end(), values.begin(),
                           [=](double sample) { return plainConverted(sample, from, to); });
            cv::Mat column, expected;
            cv::Mat(values).convertTo(column, to);
            cv::merge(std::vector<cv::Mat>(3, column), expected);
            EXPECT_TRUE(sameImage(converted(src, expected.type()), expected))
                << cv::typeToString(from) << " to " << cv::typeToString(to);
        }
    }
}

/// Where halves end, lie half way and become finer, by their bits.
TEST(ConvertColorMode, HalvesAreTheNearestOnAllProcessors) {
    const float infinity = std::numeric_limits<float>::infinity();
    const std::pair<float, int> cases[] = {{0.0F, 0},
                                           {-0.0F, 0x8000},
                                           {1.0F, 0x3C00},
                                           {-2.5F, 0xC100},
                                           {1 + 0x1p-11F, 0x3C00},
                                           {1 + 3 * 0x1p-11F, 0x3C02},
                                           {65504, 0x7BFF},
                                           {65519.996F, 0x7BFF},
                                           {65520, 0x7C00},
                                           {3e38F, 0x7C00},
                                           {-infinity, 0xFC00},
                                           {0x1p-14F, 0x0400},
                                           {0x1p-24F, 0x0001},
                                           {0x1p-25F, 0x0000},
                                           {3 * 0x1p-25F, 0x0002},
                                           {1e-40F, 0},
                                           {0x1.FF8p-15F, 0x03FF},
                                           {0x1.FFCp-15F, 0x0400},
                                           {std::nanf(""), 0x7E00}};
    for (const auto& [value, bits] : cases) {
        const cv::Mat half = converted(cv::Mat(1, 1, CV_32FC3, cv::Scalar::all(value)), CV_16FC3);
        EXPECT_EQ(half.ptr<ushort>()[1], bits) << value;
    }
    cv::Mat all(256, 256, CV_16UC3);
    fillSamples(all, [](int y, int x, int) { return y * 256 + x; });
    const cv::Mat halves(all.size(), CV_16FC3, all.data);
    const cv::Mat same = converted(converted(halves, CV_32FC3), CV_16FC3);
    fillSamples(all, [](int y, int x, int) {
        const int bits = y * 256 + x;
        return (bits & 0x7FFF) > 0x7C00 ? bits | 0x200 : bits;
    });
    EXPECT_TRUE(sameImage(cv::Mat(all.size(), CV_16UC3, same.data), all));
}

TEST(ConvertColorMode, GrayBecomesThreeChannelsAndAlphaIsDropped) {
    for (int from : allDepths)
        for (int to : allDepths)
            for (int channels : {1, 3, 4})
                for (cv::Size size :
                     {cv::Size(1, 1), {17, 3}, {23, 1}, {1, 19}, {130, 2}, {2051, 2}}) {
                    const cv::Mat image = randomImage(size, CV_MAKETYPE(from, channels));
                    std::vector<cv::Mat> planes;
                    cv::split(image, planes);
                    planes.resize(3, planes[0]);
                    for (cv::Mat& plane : planes) {
                        std::vector<cv::Mat> equal;
                        cv::split(converted(plane, CV_MAKETYPE(to, 3)), equal);
                        plane = equal[0];
                    }
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
            EXPECT_TRUE(
                sameImage(converted(cv::Mat(size, type), CV_16UC3), cv::Mat(size, CV_16UC3)));
}

TEST(ConvertColorMode, OtherShapesAreRefused) {
    for (const auto& [src, type] : {std::pair(cv::Mat(3, 4, CV_8UC2), CV_8UC3),
                                    {cv::Mat(3, 4, CV_16UC(5)), CV_16UC3},
                                    {cv::Mat(3, 4, CV_8UC3), CV_8UC1},
                                    {cv::Mat(3, 4, CV_8UC1), CV_8UC1},
                                    {cv::Mat(3, 4, CV_8UC4), CV_8UC4},
                                    {cv::Mat(), CV_8UC1},
                                    {cv::Mat({2, 3, 4}, CV_8UC1), CV_8UC3},
                                    {cv::Mat({2, 3, 4}, CV_8UC3), CV_8UC3}}) {
        cv::Mat dst = randomImage({4, 3}, CV_8UC1);
        const cv::Mat storage = dst, before = dst.clone();
        EXPECT_THROW(Vantrel::ConvertColorMode(src, dst, type), cv::Exception);
        EXPECT_EQ(dst.data, storage.data);
        EXPECT_TRUE(sameImage(dst, before));
    }
}

} // namespace
