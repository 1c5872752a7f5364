// The bitmap round trip: what its stages see, and that nothing but pixels comes through.

#include "support.h"

#include "lumetra/colourise/bitmap_round_trip.h"

#include <lumetra>

#include <opencv2/imgcodecs.hpp>

#include <new>

namespace {

using lumetra::PixelArea;

/// Whether memory that is asked for without an exception is refused.
bool memoryIsShort = false;

/// The bitmap that was decoded last, where a program's own functions take the place of a library's.
std::vector<uchar> rebuilt;

lumetra::RoundTripStages copying() {
    lumetra::RoundTripStages stages;
    stages.transform = lumetra::copyPixels;
    return stages;
}

} // namespace

void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return memoryIsShort ? nullptr : ::operator new[](size);
}

#ifdef __ELF__
cv::Mat cv::imdecode(cv::InputArray bytes, int flags) {
    bytes.copyTo(rebuilt);
    cv::Mat image;
    return imdecode(bytes, flags, &image);
}
#endif

namespace {

TEST(BitmapRoundTrip, StagesSeeRowsOfThePixelsBottomUpAndZeroedPadding) {
    for (cv::Size size : imageSizes()) {
        SCOPED_TRACE(testing::Message() << size);
        const cv::Mat image = viewInto(randomImage(size, CV_8UC3));
        cv::Mat dst;
        const std::size_t stride = (static_cast<std::size_t>(size.width) * 24 + 31) / 32 * 4;
        const auto expectShape = [&](PixelArea area) {
            EXPECT_EQ(area.width, static_cast<std::size_t>(size.width));
            EXPECT_EQ(area.height, static_cast<std::size_t>(size.height));
            EXPECT_EQ(area.stride, stride);
        };
        lumetra::RoundTripStages stages;
        stages.inPlace = [&](PixelArea encoded) {
            expectShape(encoded);
            EXPECT_TRUE(sameImage(dst, image));
            for (std::size_t y = 0; y < encoded.height; ++y)
                EXPECT_TRUE(std::equal(encoded.row(y), encoded.row(y) + encoded.rowBytes(),
                                       image.ptr(size.height - 1 - static_cast<int>(y))));
            // What is left in the padding must not go on.
            std::fill(encoded.row(0) + encoded.rowBytes(), encoded.row(0) + encoded.stride, 0xEE);
            encoded.row(0)[0] = 99;
        };
        stages.transform = [&](PixelArea working, PixelArea output) {
            expectShape(working);
            expectShape(output);
            for (std::size_t y = 0; y < working.height; ++y) {
                for (std::size_t i = working.rowBytes(); i < working.stride; ++i)
                    EXPECT_EQ(working.row(y)[i], 0);
                std::fill(output.row(y), output.row(y) + output.stride, 0xEE);
                for (std::size_t i = 0; i < working.rowBytes(); ++i)
                    output.row(y)[i] = static_cast<uchar>(255 - working.row(y)[i]);
            }
        };
        lumetra::bitmapRoundTrip(image, dst, stages);
        cv::Mat expected = cv::Scalar::all(255) - image;
        expected.ptr(size.height - 1)[0] = 255 - 99;
        EXPECT_TRUE(sameImage(dst, expected));
#ifdef __ELF__
        ASSERT_EQ(rebuilt.size(), 54 + stride * static_cast<std::size_t>(size.height));
        EXPECT_EQ(rebuilt[2] + rebuilt[3] * 0x100U + rebuilt[4] * 0x10000U, rebuilt.size());
#endif
    }
}

TEST(BitmapRoundTrip, LeavesACopyWhenItCannotFinish) {
    for (int type : {CV_8UC2, CV_8UC(5), CV_32FC2}) {
        const cv::Mat image = randomImage({5, 4}, type);
        cv::Mat dst;
        EXPECT_THROW(lumetra::bitmapRoundTrip(image, dst, copying()), cv::Exception);
        EXPECT_TRUE(sameImage(dst, image));
        EXPECT_NE(dst.data, image.data);
    }
    cv::Mat image = randomImage({5, 4}, CV_32FC3), dst;
    memoryIsShort = true;
    lumetra::bitmapRoundTrip(image, dst, copying());
    EXPECT_TRUE(sameImage(dst, image));
    Lumetra::Dye(image, dst = cv::Mat(), 255, 0, 0, true, true);
    EXPECT_TRUE(sameImage(dst, image));
    Lumetra::Pseudo(image, dst = cv::Mat(), {Qt::red});
    EXPECT_TRUE(sameImage(dst, image));
    memoryIsShort = false;
    EXPECT_NE(dst.data, image.data);
}

} // namespace
