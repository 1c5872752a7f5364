// Tinting, against the formula spelt out pixel by pixel.

#include "plain_colouring.h"

namespace {

constexpr Options allOptions[] = {{false, false}, {true, false}, {false, true}, {true, true}};

cv::Mat dyed(cv::Mat src, Tint tint, Options options = {false, false}) {
    cv::Mat dst;
    Lumetra::Dye(src, dst, tint.red, tint.green, tint.blue, options.autoLevels,
                 options.dominantChannel);
    return dst;
}

TEST(Dye, EveryTypeSizeAndOptionFollowsTheFormula) {
    for (int depth : allDepths)
        for (int channels : {1, 3, 4})
            for (cv::Size size : imageSizes()) {
                const cv::Mat image = mediumContrast(size, CV_MAKETYPE(depth, channels));
                for (Options options : allOptions)
                    for (const cv::Mat& src : {image, viewInto(image)})
                        ASSERT_TRUE(sameImage(dyed(src, {255, 131, 77}, options),
                                              plainDyed(image, {255, 131, 77}, options)))
                            << cv::typeToString(image.type()) << " " << size << " "
                            << options.autoLevels << options.dominantChannel;
            }
}

TEST(Dye, ComponentsOfAnyValueFollowTheFormula) {
    const int components[] = {0,   1,    127,   128,   254, 255,     256,    258,
                              511, 4097, 65535, 65536, -1,  INT_MIN, INT_MAX};
    constexpr std::size_t count = std::size(components);
    std::vector<cv::Mat> sources;
    for (int type : {CV_8UC1, CV_8UC3, CV_16UC1, CV_16UC3}) {
        cv::Mat all(256, CV_MAT_DEPTH(type) == CV_8U ? 1 : 256, type);
        fillSamples(all, [&](int y, int x, int c) { return (y + x * 256) * (2 * c + 1) + 41 * c; });
        sources.push_back(all);
    }
    for (const cv::Mat& src : sources)
        for (std::size_t i = 0; i < count; ++i) {
            const Tint tint = {components[i], components[(i + 1) % count],
                               components[(i + 3) % count]};
            for (Options options : allOptions)
                EXPECT_TRUE(sameImage(dyed(src, tint, options), plainDyed(src, tint, options)))
                    << tint << " " << options.autoLevels << options.dominantChannel;
        }
    for (int c = 0; c < 256; ++c)
        EXPECT_TRUE(sameImage(dyed(sources[1], {c, 255 - c, c ^ 85}),
                              plainDyed(sources[1], {c, 255 - c, c ^ 85}, {false, false})))
            << c;
}

TEST(Dye, KnownPixels) {
    EXPECT_EQ(dyed(cv::Mat(1, 1, CV_8UC1, 200), {255, 128, 0}).at<cv::Vec3b>(0),
              cv::Vec3b(0, 100, 200));
    EXPECT_EQ(dyed(cv::Mat(1, 1, CV_8UC4, {10, 20, 30, 0}), {255, 255, 255}).at<cv::Vec3b>(0),
              cv::Vec3b(10, 20, 30));
    EXPECT_EQ(dyed(cv::Mat(1, 1, CV_16UC3, {100, 4000, 2000}), {0, 128, 255}).at<cv::Vec3w>(0),
              cv::Vec3w(3984, 2000, 0));
}

/// Ramps, two of which leave little room between the levels. In a gray one, the channel whose black
/// level is raised least is the dominant one.
TEST(Dye, FullComponentsRaiseTheMeasuredBlackLevels) {
    for (Tint tint : {Tint{254, 254, 254}, Tint{255, 254, 254}, Tint{254, 255, 254},
                      Tint{254, 254, 255}, Tint{255, 255, 254}, Tint{254, 255, 255},
                      Tint{255, 254, 255}, Tint{255, 255, 255}, Tint{256, 256, -1}})
        for (int white : {200, 103, 102, 101, 100})
            for (int type : {CV_8UC1, CV_8UC3})
                for (Options options : allOptions) {
                    cv::Mat ramp(2, white - 99, type);
                    fillSamples(ramp, [](int, int x, int) { return 100 + x; });
                    EXPECT_TRUE(
                        sameImage(dyed(ramp, tint, options), plainDyed(ramp, tint, options)))
                        << tint << " up to " << white << " of " << cv::typeToString(type);
                }
    for (auto [red, expected] : {std::pair(255, 0), {254, 127}})
        EXPECT_EQ(dyed(cv::Mat(1, 1, CV_8UC1, 100), {red, 0, 0}, {true, false}).at<cv::Vec3b>(0)[2],
                  expected);
}

/// Totals that stand in the last column; those of equal channels go to the lower one.
TEST(Dye, TheLargestTotalIsDominantWhereverItComesFrom) {
    struct Case {
        cv::Vec3b totals;
        int dominant;
    };
    for (const Case& known : {Case{{5, 5, 5}, 0}, Case{{5, 5, 4}, 0}, Case{{4, 5, 5}, 1},
                              Case{{5, 4, 5}, 0}, Case{{1, 2, 3}, 2}, Case{{3, 2, 1}, 0},
                              Case{{1, 3, 2}, 1}, Case{{2, 1, 3}, 2}, Case{{0, 0, 0}, 0}})
        for (int width : {4, 2049, 4100})
            for (int depth : {CV_8U, CV_32F}) {
                // The first row tells the channels apart, the other nine make the totals.
                cv::Mat image = cv::Mat::zeros(10, width, CV_8UC3);
                fillSamples(image.row(0), [](int, int x, int c) { return x == c ? 200 : 0; });
                image(cv::Rect(width - 1, 1, 1, 9)).setTo(known.totals);
                image.convertTo(image, depth);
                const cv::Mat result = dyed(image, {255, 255, 255}, {false, true});
                for (int c = 0; c < 3; ++c)
                    EXPECT_EQ(result.at<cv::Vec3b>(0, c),
                              cv::Vec3b::all(c == known.dominant ? 200 : 0))
                        << known.totals << " at " << width;
            }
    // A blue total above 2^32, whose low 32 bits are below the green total.
    const cv::Mat image(4200, 4200, CV_8UC3, cv::Scalar(255, 100, 0));
    const cv::Mat result = dyed(image, {255, 255, 255}, {false, true});
    EXPECT_EQ(result.at<cv::Vec3b>(4199, 4199), cv::Vec3b(255, 255, 255));
}

} // namespace
