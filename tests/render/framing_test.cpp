#include "render/framing.h"

#include "render/render_error.h"
#include "render/shrink.h"

#include "planes.h"

#include <gtest/gtest.h>

#include <climits>

namespace lumetra {
namespace {

Framing framing(const char* crop, const char* size) {
    Framing result;
    if (*crop)
        result.crop = parseCrop(crop);
    if (*size)
        result.size = parseTargetSize(size);
    return result;
}

TEST(Framing, GivesTheSizesThatWereAskedFor) {
    const struct {
        const char *crop, *size;
        cv::Size expected;
        double columns;
    } cases[] = {
        {"", "", {200, 100}, 1},          {"0,0,200,100", "", {200, 100}, 1},
        {"199,99,1,1", "", {1, 1}, 1},    {"10,20,60,30", "30", {30, 15}, 2},
        {"", "80", {80, 40}, 2.5},        {"", "200", {200, 100}, 1},
        {"", "1", {1, 1}, 200},           {"", "50x100", {50, 100}, 4},
        {"", "25%", {50, 25}, 4},         {"", "33.3%", {67, 33}, 200 / 67.},
        {"", "0.001%", {1, 1}, 200},      {"", "100%", {200, 100}, 1},
        {"5,5,3,90", "1x90", {1, 90}, 3},
    };
    for (const auto& c : cases) {
        const Framing frame = framing(c.crop, c.size);
        EXPECT_EQ(frame.sizeOf({200, 100}), c.expected) << c.crop << ' ' << c.size;
        EXPECT_DOUBLE_EQ(frame.columnsInPixel({200, 100}), c.columns) << c.crop << ' ' << c.size;
    }
}

TEST(Framing, CutsFirstAndThenTakesTheMeans) {
    for (const int depth : {CV_8U, CV_16U}) {
        const cv::Mat image = noisePlane({3 * 90, 40}, CV_MAKETYPE(depth, 1), depth).reshape(3);
        cv::Mat result, expected;
        framing("10,5,60,30", "").apply(image, result);
        EXPECT_TRUE(areEqual(result, image({10, 5, 60, 30})));
        framing("10,5,60,30", "21x11").apply(image, result);
        shrink(image({10, 5, 60, 30}), {21, 11}, expected);
        EXPECT_TRUE(areEqual(result, expected));
    }
}

TEST(Framing, RefusesWhatLiesOutsideAndEnlarging) {
    const cv::Size image(200, 100);
    for (const char* crop : {"200,0,1,1", "0,100,1,1", "0,0,201,1", "0,0,1,101", "1,0,200,100",
                             "2147483647,0,2147483647,1", "0,2147483647,1,2147483647"}) {
        try {
            static_cast<void>(framing(crop, "").sizeOf(image));
            ADD_FAILURE() << crop;
        } catch (const RenderError& error) {
            EXPECT_NE(std::string(error.what()).find("200 x 100"), std::string::npos);
        }
    }
    Framing negative;
    negative.crop = cv::Rect(-1, 0, INT_MIN, 5);
    EXPECT_THROW(static_cast<void>(negative.sizeOf(image)), RenderError);
    for (const char* size : {"201", "200x101", "201x100", "2147483647", "2147483647x2147483647"})
        EXPECT_THROW(static_cast<void>(framing("", size).sizeOf(image)), RenderError) << size;
    EXPECT_THROW(static_cast<void>(framing("0,0,10,10", "11").sizeOf(image)), RenderError);
}

TEST(Framing, UnderstandsOnlyWhatItsHelpSays) {
    for (const char* text : {"", "1", "1,2,3", "1,2,3,4,5", "-1,0,1,1", "0,0,0,1", "0,0,1,0",
                             "1,2,3,", "1, 2,3,4", "a,b,c,d", "0,0,1,2147483648", ",,,"})
        EXPECT_THROW(parseCrop(text), RenderError) << text;
    for (const char* text : {"", "0", "-5", "x", "5x", "x5", "0x5", "5x0", "5x5x5", "%", "0%",
                             "-1%", "100.1%", "nan%", "1e9", "5 %", "2147483648", "50%x20"})
        EXPECT_THROW(parseTargetSize(text), RenderError) << text;
}

} // namespace
} // namespace lumetra
