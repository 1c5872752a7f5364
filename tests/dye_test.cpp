// Tinting, against the formula spelt out pixel by pixel.

#include "plain_colouring.h"

namespace {

cv::Mat dyed(cv::Mat src, Tint tint, Options options) {
    cv::Mat dst;
    Lumetra::Dye(src, dst, tint.red, tint.green, tint.blue, options.autoLevels,
                 options.dominantChannel);
    return dst;
}

/// With every option the bytes of the formula.
void expectFormula(const cv::Mat& src, Tint tint) {
    for (Options options : {Options{false, false}, {true, false}, {false, true}, {true, true}})
        ASSERT_TRUE(sameImage(dyed(src, tint, options), plainDyed(src, tint, options)))
            << tint << " " << options.autoLevels << options.dominantChannel << " of "
            << cv::typeToString(src.type()) << " " << src.size();
}

TEST(Dye, EveryTypeSizeAndOptionFollowsTheFormula) {
    for (int depth : allDepths)
        for (int channels : {1, 3, 4})
            for (cv::Size size : imageSizes()) {
                const cv::Mat image = mediumContrast(size, CV_MAKETYPE(depth, channels));
                for (const cv::Mat& src : {image, viewInto(image)})
                    expectFormula(src, {255, 131, 77});
            }
}

/// On all values, and on ramps of which some leave little room between the levels; in a gray one,
/// the channel whose black level is raised least is the dominant one.
TEST(Dye, ComponentsOfAnyValueFollowTheFormula) {
    const int components[] = {0,   1,    127,   128,   254, 255,     256,    258,
                              511, 4097, 65535, 65536, -1,  INT_MIN, INT_MAX};
    constexpr std::size_t count = std::size(components);
    std::vector<Tint> tints = {{254, 254, 254}, {255, 255, 255}, {255, 255, 254}, {254, 255, 255},
                               {255, 254, 255}, {255, 254, 254}, {254, 255, 254}, {254, 254, 255}};
    for (std::size_t i = 0; i < count; ++i)
        tints.push_back({components[i], components[(i + 1) % count], components[(i + 3) % count]});
    for (int type : {CV_8UC1, CV_8UC3, CV_16UC1, CV_16UC3}) {
        cv::Mat all(256, CV_MAT_DEPTH(type) == CV_8U ? 1 : 256, type);
        fillSamples(all, [](int y, int x, int c) { return (y + x * 256) * (2 * c + 1) + 41 * c; });
        for (Tint tint : tints) {
            expectFormula(all, tint);
            for (int white : {200, 103, 102, 101, 100}) {
                cv::Mat ramp(2, white - 99, type);
                fillSamples(ramp, [](int, int x, int) { return 100 + x; });
                expectFormula(ramp, tint);
            }
        }
        for (int c = 0; c < 256; ++c) {
            const Tint tint = {c, 255 - c, c ^ 85};
            EXPECT_TRUE(sameImage(dyed(all, tint, {}), plainDyed(all, tint, {}))) << tint;
        }
    }
}

/// Totals that stand in one column, the last one at times; of equal channels the lower one counts.
TEST(Dye, TheLargestTotalIsDominantWhereverItComesFrom) {
    for (const cv::Vec3b& totals :
         {cv::Vec3b(5, 5, 5), {5, 5, 4}, {4, 5, 5}, {5, 4, 5}, {1, 2, 3}, {3, 2, 1}, {1, 3, 2}})
        for (auto [width, column] : {std::pair(4, 3), {2049, 2048}, {4100, 4099}, {4100, 7}})
            for (int depth : {CV_8U, CV_32F}) {
                // The first row tells the channels apart, the other nine make the totals.
                cv::Mat image = cv::Mat::zeros(10, width, CV_8UC3);
                fillSamples(image.row(0), [](int, int x, int c) { return x == c ? 200 : 0; });
                image(cv::Rect(column, 1, 1, 9)).setTo(totals);
                image.convertTo(image, depth);
                expectFormula(image, {255, 255, 255});
            }
    // A blue total above 2^32, whose low 32 bits are below the green total.
    const cv::Mat image(4200, 4200, CV_8UC3, cv::Scalar(255, 100, 0));
    EXPECT_EQ(dyed(image, {255, 255, 255}, {false, true}).at<cv::Vec3b>(4199, 4199),
              cv::Vec3b(255, 255, 255));
}

} // namespace
