// Images and buffers of more than 2^31 bytes. They need up to 6 GB of memory.

#include "canvas.h"
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

/// The corners, the middle, and the places just before and behind 2^31 and 2^32 bytes of 24-bit
/// pixels side by side.
std::vector<cv::Point> probes(cv::Size size) {
    std::vector<cv::Point> points;
    for (int y : {0, 1, 23860, 23861, 14999, size.height - 2, size.height - 1})
        for (int x : {0, 1, 16, 27882, 27883, 14999, size.width - 2, size.width - 1})
            if (x < size.width && y < size.height)
                points.emplace_back(x, y);
    return points;
}

/// All values of the pattern once: what they become does not depend on how often they occur.
cv::Mat smallPattern(int type) { return pattern({200, 1}, type); }

/// The column of the small pattern with the value that the pattern has at a place.
int smallColumn(cv::Point p) { return (p.y * 7 + p.x * 3) % 200 * 67 % 200; }

/// That the probes of an image made of the pattern are the pixels of one made of the small pattern.
void expectLikeSmall(const cv::Mat& big, cv::Size size, const cv::Mat& small) {
    ASSERT_EQ(big.size(), size);
    ASSERT_EQ(big.type(), small.type());
    for (cv::Point p : probes(size))
        EXPECT_EQ(big.at<cv::Vec3b>(p), small.at<cv::Vec3b>(0, smallColumn(p))) << p;
}

void expectColouredLikeSmall(cv::Mat& big) {
    const cv::Mat small = smallPattern(big.type());
    for (Options options : {Options{false, false}, {true, true}}) {
        cv::Mat dst;
        Lumetra::Dye(big, dst, 255, 131, 77, options.autoLevels, options.dominantChannel);
        expectLikeSmall(dst, big.size(), plainDyed(small, {255, 131, 77}, options));
    }
    cv::Mat dst;
    Lumetra::Pseudo(big, dst, rampOf(255));
    expectLikeSmall(dst, big.size(), plainColoured(small, rampOf(255)));
}

TEST(BigImages, AreColoured) {
    cv::Mat gray = pattern({side, side}, CV_8UC1);
    expectColouredLikeSmall(gray);
}

TEST(BigImages, ViewsWithRowsFarApartAreColouredAndComposited) {
    cv::Mat parent(side, side,
                   CV_8UC3); // whose other pixels cost no memory as long as none is used
    cv::Mat view = parent(cv::Rect(side - 400, 0, 400, side));
    fillSamples(view, patternAt);
    expectColouredLikeSmall(view);

    QList<cv::Mat*> images = {&view, &view};
    QList<QPoint> offsets = {{0, 0}, {399, 29999}};
    const std::unique_ptr<cv::Mat> corner(Lumetra::Composite(&images, &offsets));
    ASSERT_NE(corner, nullptr);
    EXPECT_TRUE(sameImage(*corner, view(cv::Rect(0, 0, 1, 1)) + view(cv::Rect(399, 29999, 1, 1))));
}

TEST(BigImages, AreComposited) {
    cv::Mat gray = pattern({side, side}, CV_8UC1);
    QList<cv::Mat*> images = {&gray, &gray};
    QList<QPoint> offsets = {{2, 0}, {0, 1}};
    const std::unique_ptr<cv::Mat> canvas(Lumetra::Composite(&images, &offsets));
    ASSERT_NE(canvas, nullptr);
    ASSERT_EQ(canvas->size(), cv::Size(side - 2, side - 1));
    for (cv::Point p : probes(canvas->size())) {
        const int sum = patternAt(p.y, p.x + 2, 0) + patternAt(p.y + 1, p.x, 0);
        EXPECT_EQ(canvas->at<cv::Vec3b>(p), cv::Vec3b::all(static_cast<uchar>(std::min(sum, 255))))
            << p;
    }
}

/// The only samples at the ends of the range stand at the end of the buffer.
TEST(BigImages, LevelsAreMeasuredAndStretchedToTheEnd) {
    cv::Mat pixels = pattern({side, side}, CV_8UC3);
    uchar* const buf = pixels.data;
    unsigned short low = 0, high = 0;
    pixels.at<cv::Vec3b>(side - 1, side - 1) = {3, 4, 250};
    TS_LEVELS levels = {};
    EXPECT_TRUE(Lumetra::AutoCountHistoRGB24(buf, side, side, levels));
    EXPECT_EQ((std::array{levels.wLowB, levels.wLowG, levels.wLowR}),
              (std::array<unsigned short, 3>{3, 4, 20}));
    EXPECT_EQ((std::array{levels.wHighB, levels.wHighG, levels.wHighR}),
              (std::array<unsigned short, 3>{219, 219, 250}));
    EXPECT_TRUE(Lumetra::StretchLevelsRGB24(levels, buf, side, side));
    for (cv::Point p : probes(cv::Size(side - 1, side - 1)))
        EXPECT_EQ(pixels.at<cv::Vec3b>(p),
                  cv::Vec3b(static_cast<uchar>(plainStretch(patternAt(p.y, p.x, 0), {3, 219})),
                            static_cast<uchar>(plainStretch(patternAt(p.y, p.x, 1), {4, 219})),
                            static_cast<uchar>(plainStretch(patternAt(p.y, p.x, 2), {20, 250}))))
            << p;
    EXPECT_EQ(pixels.at<cv::Vec3b>(side - 1, side - 1), cv::Vec3b(0, 0, 255));

    // The same memory as a gray buffer of three times the width.
    pixels.setTo(cv::Scalar::all(100));
    pixels.at<cv::Vec3b>(side - 1, side - 1) = {100, 30, 200};
    EXPECT_TRUE(Lumetra::AutoCountHistoGray(buf, 3 * side, side, &low, &high));
    EXPECT_EQ(Levels(low, high), Levels(30, 200));
    EXPECT_TRUE(Lumetra::StretchLevelsGray(low, high, buf, 3 * side, side));
    EXPECT_EQ(pixels.at<cv::Vec3b>(0, 0), cv::Vec3b::all(105));
    EXPECT_EQ(pixels.at<cv::Vec3b>(side - 1, side - 1), cv::Vec3b(105, 0, 255));
}

} // namespace
