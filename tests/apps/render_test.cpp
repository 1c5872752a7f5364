#include "apps/common/render.h"

#include "apps/common/colour_table.h"
#include "apps/common/failure.h"

#include "planes.h"

#include <gtest/gtest.h>

#include <lumetra>

#include <opencv2/imgproc.hpp>

#include <algorithm>

namespace apps {
namespace {

Channel channelOf(const QColor& colour, QPoint offset, std::optional<LevelRange> levels) {
    Channel channel;
    channel.colour = colour;
    channel.offset = offset;
    channel.levels = levels;
    return channel;
}

int sampleAt(const cv::Mat& plane, int y, int x) {
    return plane.depth() == CV_8U ? plane.at<uchar>(y, x) : plane.at<ushort>(y, x);
}

/// One sample after another, by the formulas alone.
cv::Mat plainRender(const std::vector<cv::Mat>& planes, const std::vector<Channel>& channels) {
    int left = INT_MAX, right = INT_MIN, top = INT_MAX, bottom = INT_MIN;
    bool deep = false;
    for (std::size_t i = 0; i < planes.size(); ++i) {
        left = std::min(left, channels[i].offset.x());
        right = std::max(right, channels[i].offset.x());
        top = std::min(top, channels[i].offset.y());
        bottom = std::max(bottom, channels[i].offset.y());
        deep |= channels[i].visible && !channels[i].levels && planes[i].depth() == CV_16U;
    }
    const int largest = deep ? 65535 : 255;
    cv::Mat sum(planes[0].rows - (bottom - top), planes[0].cols - (right - left), CV_32SC3);
    for (int y = 0; y < sum.rows; ++y) {
        for (int x = 0; x < sum.cols; ++x) {
            cv::Vec3i pixel(0, 0, 0);
            for (std::size_t i = 0; i < planes.size(); ++i) {
                const Channel& c = channels[i];
                if (!c.visible)
                    continue;
                int v = sampleAt(planes[i], y + c.offset.y() - top, x + c.offset.x() - left);
                bool deepSample = planes[i].depth() == CV_16U;
                if (c.levels) {
                    const int lo = c.levels->low, hi = c.levels->high;
                    v = v >= hi ? 255 : v <= lo ? 0 : (510 * (v - lo) + hi - lo) / (2 * (hi - lo));
                    deepSample = false;
                }
                const int parts[] = {c.colour.blue(), c.colour.green(), c.colour.red()};
                for (int k = 0; k < 3; ++k) {
                    const int tinted = deepSample ? v * parts[k] / 256 : v * parts[k] / 255;
                    const int scaled = deep && !deepSample ? tinted * 257 : tinted;
                    pixel[k] = std::min(pixel[k] + scaled, largest);
                }
            }
            sum.at<cv::Vec3i>(y, x) = pixel;
        }
    }
    cv::Mat picture;
    sum.convertTo(picture, deep ? CV_16U : CV_8U);
    return picture;
}

/// The same pixels, opaque.
cv::Mat forScreen(const cv::Mat& picture) {
    cv::Mat screen;
    cv::cvtColor(picture, screen, cv::COLOR_BGR2BGRA);
    return screen;
}

TEST(Render, EqualsThePlainLoop) {
    const QColor blue(0, 107, 255), green(29, 255, 0), red(255, 40, 9);
    const LevelRange some{700, 60000}, few{20, 200};
    struct Case {
        const char* name;
        std::vector<int> types;
        std::vector<Channel> channels;
    };
    auto hidden = channelOf(red, {-9, 8}, some);
    hidden.visible = false;
    const std::vector<Case> cases{
        {"one", {CV_8UC1}, {channelOf(blue, {5, -5}, few)}},
        {"two of 16 bits",
         {CV_16UC1, CV_16UC1},
         {channelOf(blue, {}, some), channelOf(green, {3, -2}, LevelRange{0, 65535})}},
        {"three, mixed",
         {CV_16UC1, CV_8UC1, CV_16UC1},
         {channelOf(blue, {}, some), channelOf(green, {3, -2}, few),
          channelOf(red, {-4, 0}, some)}},
        {"as they are",
         {CV_8UC1, CV_8UC1},
         {channelOf(blue, {}, {}), channelOf(green, {1, 1}, {})}},
        {"deep", {CV_16UC1, CV_16UC1}, {channelOf(blue, {}, {}), channelOf(green, {1, 1}, {})}},
        {"deep, mixed",
         {CV_8UC1, CV_16UC1, CV_16UC1},
         {channelOf(red, {}, {}), channelOf(green, {}, {}), channelOf(blue, {}, some)}},
        {"one hidden", {CV_16UC1, CV_16UC1}, {channelOf(blue, {}, some), hidden}},
        {"all hidden", {CV_16UC1}, {hidden}},
    };
    Renderer renderer; // one for all: what it keeps must not show
    cv::Mat picture, screen;
    for (const cv::Size size : {cv::Size(40, 30), cv::Size(733, 211), cv::Size(21, 5000)}) {
        for (const Case& c : cases) {
            std::vector<cv::Mat> planes;
            for (const int type : c.types)
                planes.push_back(noisePlane(size, type, static_cast<int>(planes.size())));
            const cv::Mat expected = plainRender(planes, c.channels);
            renderer.render(planes, c.channels, picture);
            EXPECT_TRUE(areEqual(picture, expected)) << c.name << ", " << size;
            if (expected.depth() == CV_16U) {
                EXPECT_THROW(renderer.render(planes, c.channels, screen, PixelForm::screen),
                             Failure);
                continue;
            }
            renderer.render(planes, c.channels, screen, PixelForm::screen);
            EXPECT_TRUE(areEqual(screen, forScreen(expected))) << c.name << ", " << size;
        }
    }
}

TEST(Render, KeepsItsMemory) {
    const std::vector<cv::Mat> planes{noisePlane({300, 333}, CV_16UC1, 1),
                                      noisePlane({300, 333}, CV_16UC1, 2)};
    const std::vector<Channel> channels{channelOf(Qt::red, {}, LevelRange{0, 9000}),
                                        channelOf(Qt::green, {}, LevelRange{5, 999})};
    Renderer renderer;
    cv::Mat picture;
    renderer.render(planes, channels, picture);
    const auto* pixels = picture.data;
    renderer.render(planes, channels, picture);
    EXPECT_EQ(picture.data, pixels);
}

TEST(Render, RefusesWhatHasNoPicture) {
    Renderer renderer;
    cv::Mat picture;
    const cv::Mat plane = noisePlane({8, 8}, CV_8UC1, 1);
    const auto at = [](int x, int y) { return channelOf(Qt::red, {x, y}, {}); };
    EXPECT_THROW(renderer.render({}, {}, picture), Failure);
    EXPECT_THROW(renderer.render({plane, plane}, {at(0, 0), at(8, 0)}, picture), Failure);
    EXPECT_THROW(renderer.render({plane, plane}, {at(0, INT_MIN), at(0, INT_MAX)}, picture),
                 Failure);
    EXPECT_THROW(renderer.render({plane, plane.rowRange(0, 7)}, {at(0, 0), at(0, 0)}, picture),
                 Failure);
}

TEST(RenderPseudo, SpreadsTheColoursOverTheRange) {
    const auto colours = pseudoSlots(colourTable("even"));
    Renderer renderer;
    cv::Mat picture, screen;
    for (const int type : {CV_8UC1, CV_16UC1}) {
        for (const LevelRange range :
             {LevelRange{3, 250}, LevelRange{0, 254}, LevelRange{90, 91}}) {
            const cv::Mat plane = noisePlane({999, 1111}, type, 5); // more than one strip
            renderer.renderPseudo(plane, range, 1, colours, picture);
            ASSERT_EQ(picture.size(), plane.size());
            renderer.renderPseudo(plane, range, 1, colours, screen, PixelForm::screen);
            ASSERT_TRUE(areEqual(screen, forScreen(picture)));
            for (int y = 0; y < plane.rows; y += 37) {
                for (int x = 0; x < plane.cols; ++x) {
                    const int k =
                        std::clamp(sampleAt(plane, y, x), range.low, range.high) - range.low;
                    const auto& colour =
                        colours[static_cast<int>(k * (255.0 / (range.high - range.low + 1)))];
                    ASSERT_EQ(picture.at<cv::Vec3b>(y, x),
                              cv::Vec3b(static_cast<uchar>(colour.blue()),
                                        static_cast<uchar>(colour.green()),
                                        static_cast<uchar>(colour.red())));
                }
            }
        }
    }
    cv::Mat plane = noisePlane({50, 50}, CV_16UC1, 5), own;
    renderer.renderPseudo(plane, {}, 1, colours, picture);
    Lumetra::Pseudo(plane, own, colours);
    own.convertTo(own, CV_8U, 1 / 256.0);
    EXPECT_TRUE(areEqual(picture, own));
}

} // namespace
} // namespace apps
