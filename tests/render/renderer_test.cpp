#include "render/renderer.h"

#include "render/colormaps.h"
#include "render/image_colouring.h"
#include "render/render_error.h"
#include "render/shrink.h"

#include "planes.h"

#include <gtest/gtest.h>

#include <lumetra>

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <string>

namespace lumetra {
namespace {

constexpr Colour blue{0, 107, 255}, green{29, 255, 0}, red{255, 40, 9};

Channel channelOf(Colour colour, cv::Point offset, std::optional<ContrastLimits> levels) {
    Channel channel;
    channel.colour = colour;
    channel.offset = offset;
    channel.levels = levels;
    return channel;
}

int valueAt(const cv::Mat& plane, int y, int x) {
    return plane.depth() == CV_8U ? plane.at<uchar>(y, x) : plane.at<ushort>(y, x);
}

/// One pixel value after another, by the formulas alone.
cv::Mat plainRender(const std::vector<cv::Mat>& planes, const std::vector<Channel>& channels) {
    int left = INT_MAX, right = INT_MIN, top = INT_MAX, bottom = INT_MIN;
    bool deep = false;
    for (std::size_t i = 0; i < planes.size(); ++i) {
        left = std::min(left, channels[i].offset.x);
        right = std::max(right, channels[i].offset.x);
        top = std::min(top, channels[i].offset.y);
        bottom = std::max(bottom, channels[i].offset.y);
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
                int v = valueAt(planes[i], y + c.offset.y - top, x + c.offset.x - left);
                bool isDeep = planes[i].depth() == CV_16U;
                if (c.levels) {
                    const int lo = c.levels->low, hi = c.levels->high;
                    v = v >= hi ? 255 : v <= lo ? 0 : (510 * (v - lo) + hi - lo) / (2 * (hi - lo));
                    isDeep = false;
                }
                const int parts[] = {c.colour.blue, c.colour.green, c.colour.red};
                for (int k = 0; k < 3; ++k) {
                    const int tinted = isDeep ? v * parts[k] / 256 : v * parts[k] / 255;
                    const int scaled = deep && !isDeep ? tinted * 257 : tinted;
                    pixel[k] = std::min(pixel[k] + scaled, largest);
                }
            }
            sum.at<cv::Vec3i>(y, x) = pixel;
        }
    }
    cv::Mat image;
    sum.convertTo(image, deep ? CV_16U : CV_8U);
    return image;
}

/// The same pixels, opaque.
cv::Mat forScreen(const cv::Mat& image) {
    cv::Mat screen;
    cv::cvtColor(image, screen, cv::COLOR_BGR2BGRA);
    return screen;
}

TEST(Render, EqualsThePlainLoop) {
    const ContrastLimits some{700, 60000}, few{20, 200};
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
         {channelOf(blue, {}, some), channelOf(green, {3, -2}, ContrastLimits{0, 65535})}},
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
    cv::Mat image, screen;
    for (const cv::Size size : {cv::Size(40, 30), cv::Size(733, 211), cv::Size(21, 5000)}) {
        for (const Case& c : cases) {
            std::vector<cv::Mat> planes;
            for (const int type : c.types)
                planes.push_back(noisePlane(size, type, static_cast<int>(planes.size())));
            const cv::Mat expected = plainRender(planes, c.channels);
            renderer.render(planes, c.channels, image);
            EXPECT_TRUE(areEqual(image, expected)) << c.name << ", " << size;
            if (expected.depth() == CV_16U) {
                EXPECT_THROW(renderer.render(planes, c.channels, screen, PixelFormat::bgra),
                             RenderError);
                continue;
            }
            renderer.render(planes, c.channels, screen, PixelFormat::bgra);
            EXPECT_TRUE(areEqual(screen, forScreen(expected))) << c.name << ", " << size;
        }
    }
}

TEST(Render, KeepsItsMemory) {
    const std::vector<cv::Mat> planes{noisePlane({300, 333}, CV_16UC1, 1),
                                      noisePlane({300, 333}, CV_16UC1, 2)};
    const std::vector<Channel> channels{channelOf(red, {}, ContrastLimits{0, 9000}),
                                        channelOf(green, {}, ContrastLimits{5, 999})};
    Renderer renderer;
    cv::Mat image;
    renderer.render(planes, channels, image);
    const auto* pixels = image.data;
    renderer.render(planes, channels, image);
    EXPECT_EQ(image.data, pixels);
}

TEST(Render, RefusesWhatHasNoPicture) {
    Renderer renderer;
    cv::Mat image;
    const cv::Mat plane = noisePlane({8, 8}, CV_8UC1, 1);
    const auto at = [](int x, int y) { return channelOf(red, {x, y}, {}); };
    EXPECT_THROW(renderer.render({}, {}, image), RenderError);
    EXPECT_THROW(renderer.render({plane, plane}, {at(0, 0), at(8, 0)}, image), RenderError);
    EXPECT_THROW(renderer.render({plane, plane}, {at(0, INT_MIN), at(0, INT_MAX)}, image),
                 RenderError);
    EXPECT_THROW(renderer.render({plane, plane.rowRange(0, 7)}, {at(0, 0), at(0, 0)}, image),
                 RenderError);
}

TEST(ApplyColormap, SpreadsTheColoursOverTheLimits) {
    const Colormap colours = oklabColormap();
    Renderer renderer;
    cv::Mat image, screen, rgb, own;
    for (const int type : {CV_8UC1, CV_16UC1}) {
        for (const ContrastLimits limits :
             {ContrastLimits{3, 250}, ContrastLimits{0, 254}, ContrastLimits{90, 91}}) {
            const cv::Mat plane = noisePlane({99, 111}, type, 5);
            renderer.applyColormap(plane, limits, 1, colours, image);
            cv::Mat expected(plane.size(), CV_8UC3);
            for (int y = 0; y < plane.rows; ++y) {
                for (int x = 0; x < plane.cols; ++x) {
                    const int k =
                        std::clamp(valueAt(plane, y, x), limits.low, limits.high) - limits.low;
                    const int slot = static_cast<int>(k * (255.0 / (limits.high - limits.low + 1)));
                    const auto [r, g, b] =
                        colours[static_cast<std::size_t>(std::lround(slot * 255.0 / 254))];
                    expected.at<cv::Vec3b>(y, x) = {b, g, r};
                }
            }
            ASSERT_TRUE(areEqual(image, expected));
            renderer.applyColormap(plane, limits, 1, colours, screen, PixelFormat::bgra);
            ASSERT_TRUE(areEqual(screen, forScreen(expected)));
            renderer.applyColormap(plane, limits, 1, colours, rgb, PixelFormat::rgb);
            cv::cvtColor(rgb, rgb, cv::COLOR_RGB2BGR);
            ASSERT_TRUE(areEqual(rgb, expected));
        }
        // Over the plane's own range, as the library does it for whole images.
        const cv::Mat plane = noisePlane({50, 50}, CV_16UC1, 5);
        renderer.applyColormap(plane, {}, 1, colours, image);
        colourImage(plane, colours, own);
        own.convertTo(own, CV_8U, 1 / 256.0);
        EXPECT_TRUE(areEqual(image, own));
    }
}

TEST(ApplyColormap, FollowsGammaBetweenTheLimits) {
    cv::Mat plane(1, 1001, CV_16UC1), image;
    std::iota(plane.begin<ushort>(), plane.end<ushort>(), ushort{0});
    Colormap gray = *findColormap("gray");
    Renderer renderer;
    for (const double gamma : {0.5, 2.0}) {
        renderer.applyColormap(plane, ContrastLimits{0, 1000}, gamma, gray, image);
        for (int v = 0; v <= 1000; ++v) // within one of the 255 colours
            ASSERT_NEAR(image.at<cv::Vec3b>(0, v)[0], 255 * std::pow(v / 1000.0, gamma), 1.6) << v;
    }
}

TEST(ImageColouring, IsTheLibrarys) {
    const Colormap colours = oklabColormap();
    QVector<QColor> palette;
    for (int i = 0; i < 255; ++i) {
        const Colour c = colours[static_cast<std::size_t>(std::lround(i * 255 / 254.0))];
        palette << QColor(c.red, c.green, c.blue);
    }
    for (const int type : {CV_8UC1, CV_8UC3, CV_16UC1, CV_16UC3}) {
        cv::Mat image = noisePlane({3 * 61, 40}, CV_MAKETYPE(CV_MAT_DEPTH(type), 1), type);
        image = image.reshape(CV_MAT_CN(type)).clone();
        cv::Mat expected, result;
        for (const bool dominant : {false, true}) {
            Lumetra::Dye(image, expected, 29, 255, 7, false, dominant);
            tintImage(image, {29, 255, 7}, dominant, result);
            EXPECT_TRUE(areEqual(result, expected)) << type;
        }
        Lumetra::Pseudo(image, expected, palette);
        colourImage(image, colours, result);
        EXPECT_TRUE(areEqual(result, expected)) << type;
    }
}

TEST(Colormaps, AreThoseOfTheirNames) {
    const std::map<std::string, cv::ColormapTypes> maps{
        {"autumn", cv::COLORMAP_AUTUMN},   {"bone", cv::COLORMAP_BONE},
        {"cividis", cv::COLORMAP_CIVIDIS}, {"cool", cv::COLORMAP_COOL},
        {"hsv", cv::COLORMAP_HSV},         {"inferno", cv::COLORMAP_INFERNO},
        {"jet", cv::COLORMAP_JET},         {"magma", cv::COLORMAP_MAGMA},
        {"parula", cv::COLORMAP_PARULA},   {"twilight-shifted", cv::COLORMAP_TWILIGHT_SHIFTED},
        {"turbo", cv::COLORMAP_TURBO},     {"viridis", cv::COLORMAP_VIRIDIS},
        {"winter", cv::COLORMAP_WINTER},   {"deepgreen", cv::COLORMAP_DEEPGREEN}};
    cv::Mat ramp(1, 256, CV_8UC1), expected;
    std::iota(ramp.begin<uchar>(), ramp.end<uchar>(), uchar{0});
    for (const auto& [name, map] : maps) {
        cv::applyColorMap(ramp, expected, map);
        const Colormap colours = findColormap(name).value();
        for (std::size_t i = 0; i < colours.size(); ++i)
            ASSERT_EQ(expected.at<cv::Vec3b>(0, static_cast<int>(i)),
                      cv::Vec3b(colours[i].blue, colours[i].green, colours[i].red))
                << name << ' ' << i;
    }
    EXPECT_EQ(colormapNames().size(), 24U);
    EXPECT_EQ(reversed(*findColormap("gray"))[55], (Colour{200, 200, 200}));
    EXPECT_FALSE(findColormap("virdis"));
}

TEST(Shrink, GivesTheMeanOfEachArea) {
    cv::Mat result, expected;
    for (const int type : {CV_8UC1, CV_8UC3, CV_16UC1, CV_16UC3}) {
        const int channels = CV_MAT_CN(type);
        const cv::Mat image =
            noisePlane({channels * 97, 61}, CV_MAT_DEPTH(type), 1).reshape(channels).clone();
        for (const cv::Size size :
             {cv::Size(97, 61), cv::Size(96, 60), cv::Size(31, 7), cv::Size(1, 1)}) {
            shrink(image, size, result);
            cv::resize(image, expected, size, 0, 0, cv::INTER_AREA);
            ASSERT_EQ(result.type(), type);
            EXPECT_LE(cv::norm(result, expected, cv::NORM_INF), 1) << type << ' ' << size;
        }
        EXPECT_THROW(shrink(image, {98, 61}, result), cv::Exception);
    }
}

} // namespace
} // namespace lumetra
