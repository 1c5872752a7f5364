// Images and buffers of more than 2^31 bytes. They need up to 6 GB of memory.

#include "plain_colouring.h"

#include <memory>

namespace {

constexpr int side = 30000; // 0.9 gigapixels, 2.7 GB in 24 bits

/// A pattern of samples from 20 to 219 that tells rows, columns and channels apart. The second
/// channel is the brightest one.
int patternAt(int y, int x, int c) {
    const int t = (y * 7 + x * 3) % 200;
    return 20 + (c == 0 ? t : (c == 1 ? std::min(2 * t, 199) : 199 - t));
}

cv::Mat pattern(cv::Size size, int type) {
    cv::Mat image(size, type);
    fillSamples(image, patternAt);
    return image;
}

/// Blocks at the corners, in the middle, and just before and behind 2^31 bytes of 24-bit pixels.
/// Each has all values of the pattern equally often, so that it has the levels of the whole.
std::vector<cv::Rect> blocksOf(const cv::Mat& image) {
    std::vector<cv::Rect> blocks;
    for (int y : {0, 14999, 23859, image.rows - 3})
        for (int x : {0, 14899, 27783, image.cols - 200})
            blocks.emplace_back(std::min(x, image.cols - 200), y, 200, 3);
    return blocks;
}

void expectColouredLikeItsBlocks(cv::Mat& big) {
    const std::vector<Operation> operations = allOperations();
    for (std::size_t i : {0U, 3U, 4U}) {
        cv::Mat dst;
        operations[i](big, dst);
        ASSERT_EQ(dst.size(), big.size());
        for (const cv::Rect& block : blocksOf(big)) {
            cv::Mat src = big(block).clone(), expected;
            operations[i](src, expected);
            EXPECT_TRUE(sameImage(dst(block), expected)) << block;
        }
    }
}

TEST(BigImages, AreColoured) {
    cv::Mat gray = pattern({side, side}, CV_8UC1);
    expectColouredLikeItsBlocks(gray);
}

TEST(BigImages, ViewsWithRowsFarApartAreColouredAndComposited) {
    cv::Mat parent(side, side,
                   CV_8UC3); // whose other pixels cost no memory as long as none is used
    cv::Mat view = parent(cv::Rect(side - 400, 0, 400, side));
    fillSamples(view, patternAt);
    expectColouredLikeItsBlocks(view);

    QList<cv::Mat*> images = {&view, &view};
    QList<QPoint> offsets = {{0, 0}, {399, 29999}};
    const std::unique_ptr<cv::Mat> corner(Lumetra::Composite(&images, &offsets));
    ASSERT_NE(corner, nullptr);
    EXPECT_TRUE(sameImage(*corner, view(cv::Rect(0, 0, 1, 1)) + view(cv::Rect(399, 29999, 1, 1))));
}

TEST(BigImages, AreComposited) {
    cv::Mat image = pattern({side, side}, CV_8UC1);
    QList<cv::Mat*> images = {&image, &image};
    QList<QPoint> offsets = {{2, 0}, {0, 1}};
    const std::unique_ptr<cv::Mat> canvas(Lumetra::Composite(&images, &offsets));
    ASSERT_NE(canvas, nullptr);
    ASSERT_EQ(canvas->size(), cv::Size(side - 2, side - 1));
    for (const cv::Rect& block : blocksOf(*canvas))
        EXPECT_TRUE(sameImage((*canvas)(block),
                              image(block + cv::Point(2, 0)) + image(block + cv::Point(0, 1))))
            << block;
}

/// The only samples at the ends of the range stand at the end of the buffer.
TEST(BigImages, LevelsAreMeasuredAndStretchedToTheEnd) {
    cv::Mat pixels = pattern({side, side}, CV_8UC3);
    auto& last = pixels.at<cv::Vec3b>(side - 1, side - 1);
    last = {3, 4, 250};
    TS_LEVELS levels = {};
    EXPECT_TRUE(Lumetra::AutoCountHistoRGB24(pixels.data, side, side, levels));
    EXPECT_EQ((std::array{levels.wLowB, levels.wLowG, levels.wLowR, levels.wHighB, levels.wHighG,
                          levels.wHighR}),
              (std::array<unsigned short, 6>{3, 4, 20, 219, 219, 250}));
    std::vector<cv::Mat> expected;
    for (const cv::Rect& block : blocksOf(pixels)) {
        expected.push_back(pixels(block).clone());
        Lumetra::StretchLevelsRGB24(levels, expected.back().data, 200, 3);
    }
    EXPECT_TRUE(Lumetra::StretchLevelsRGB24(levels, pixels.data, side, side));
    const std::vector<cv::Rect> blocks = blocksOf(pixels);
    for (std::size_t i = 0; i < blocks.size(); ++i)
        EXPECT_TRUE(sameImage(pixels(blocks[i]), expected[i])) << blocks[i];

    // The same memory as a gray buffer of three times the width.
    pixels.setTo(cv::Scalar::all(100));
    last = {100, 30, 200};
    unsigned short low = 0, high = 0;
    EXPECT_TRUE(Lumetra::AutoCountHistoGray(pixels.data, 3 * side, side, &low, &high));
    EXPECT_EQ(Levels(low, high), Levels(30, 200));
    EXPECT_TRUE(Lumetra::StretchLevelsGray(low, high, pixels.data, 3 * side, side));
    EXPECT_EQ(pixels.at<cv::Vec3b>(0, 0), cv::Vec3b::all(105));
    EXPECT_EQ(last, cv::Vec3b(105, 0, 255));
}

} // namespace
