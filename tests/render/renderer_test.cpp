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
#include <array>
#include <cmath>
#include <map>
#include <memory>
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

/// The same pixels in another order, opaque where there are four components.
cv::Mat inFormat(PixelFormat format, const cv::Mat& bgr) {
    if (format == PixelFormat::bgr)
        return bgr;
    const bool isRgb = format == PixelFormat::rgb;
    cv::Mat image(bgr.size(), CV_MAKETYPE(bgr.depth(), isRgb ? 3 : 4), cv::Scalar::all(255));
    const std::array<int, 6> order{0, isRgb ? 2 : 0, 1, 1, 2, isRgb ? 0 : 2};
    cv::mixChannels(&bgr, 1, &image, 1, order.data(), 3); // which starts no threads
    return image;
}

/// Renders into the middle of a larger image, whose other pixels have to stay, too.
void expectRendered(Renderer& renderer, const std::vector<cv::Mat>& planes,
                    const std::vector<Channel>& channels, const cv::Mat& expected,
                    const std::string& name) {
    for (const PixelFormat format : {PixelFormat::bgr, PixelFormat::rgb, PixelFormat::bgra}) {
        if (format == PixelFormat::bgra && expected.depth() == CV_16U)
            continue;
        const cv::Mat wanted = inFormat(format, expected);
        cv::Mat framed, large, image;
        cv::copyMakeBorder(wanted, framed, 1, 1, 2, 2, cv::BORDER_CONSTANT, cv::Scalar::all(77));
        large = cv::Mat(framed.size(), framed.type(), cv::Scalar::all(77));
        cv::Mat middle = large({{2, 1}, wanted.size()});
        renderer.render(planes, channels, middle, format);
        EXPECT_TRUE(areEqual(large, framed)) << name << ", " << wanted.size();
        renderer.render(planes, channels, image, format);
        EXPECT_TRUE(areEqual(image, wanted)) << name << ", " << wanted.size();
    }
}

/// Each with all the instructions that this processor has.
class RenderBy : public testing::TestWithParam<InstructionSet> {};
using ColormapBy = RenderBy;
INSTANTIATE_TEST_SUITE_P(Instructions, RenderBy, testing::ValuesIn(instructionSets()));
INSTANTIATE_TEST_SUITE_P(Instructions, ColormapBy, testing::ValuesIn(instructionSets()));

TEST_P(RenderBy, EqualsThePlainLoop) {
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
        {"kept, side by side",
         {CV_8UC1, CV_8UC1},
         {channelOf(blue, {}, {}), channelOf(red, {}, {})}},
        {"deep, mixed",
         {CV_8UC1, CV_16UC1, CV_16UC1},
         {channelOf(red, {}, {}), channelOf(green, {}, {}), channelOf(blue, {}, some)}},
        {"one hidden", {CV_16UC1, CV_16UC1}, {channelOf(blue, {}, some), hidden}},
        {"all hidden", {CV_16UC1}, {hidden}},
    };
    Renderer renderer(GetParam()); // one for all: what it keeps must not show
    for (const cv::Size size : {cv::Size(40, 30), cv::Size(733, 211), cv::Size(21, 5000),
                                cv::Size(1033, 9), cv::Size(12, 11)}) {
        for (const Case& c : cases) {
            std::vector<cv::Mat> planes;
            for (const int type : c.types)
                planes.push_back(noisePlane(size, type, static_cast<int>(planes.size())));
            const cv::Mat expected = plainRender(planes, c.channels);
            expectRendered(renderer, planes, c.channels, expected, c.name);
            if (cv::Mat screen; expected.depth() == CV_16U) {
                EXPECT_THROW(renderer.render(planes, c.channels, screen, PixelFormat::bgra),
                             RenderError);
            }
        }
    }
}

/// Pixel values on both sides of every step from black to white.
cv::Mat stepsBetween(ContrastLimits limits) {
    const int span = limits.high - limits.low;
    cv::Mat values(1, 512, CV_16UC1, cv::Scalar(limits.low));
    for (int level = 1; level <= 255; ++level) {
        const int first = ((2 * level - 1) * span + 509) / 510;
        values.at<ushort>(0, 2 * level) = static_cast<ushort>(limits.low + first - 1);
        values.at<ushort>(0, 2 * level + 1) = static_cast<ushort>(limits.low + first);
    }
    values.at<ushort>(0, 0) = 0;
    values.at<ushort>(0, 1) = 65535;
    return values;
}

/// The library's public functions on planes of 8 bits.
cv::Mat dyedAndComposed(std::vector<cv::Mat> planes, const std::vector<Channel>& channels) {
    std::vector<cv::Mat> dyed(planes.size());
    QList<cv::Mat*> pointers;
    QList<QPoint> offsets;
    for (std::size_t i = 0; i < planes.size(); ++i) {
        const auto [r, g, b] = channels[i].colour;
        Lumetra::Dye(planes[i], dyed[i], r, g, b, false, false);
        pointers << &dyed[i];
        offsets << QPoint();
    }
    return *std::unique_ptr<cv::Mat>(Lumetra::Composite(&pointers, &offsets));
}

/// Many spans in one image, a row for each: the library is asked less often.
TEST_P(RenderBy, IsDyeAndCompositeForEverySpanOfLevels) {
    constexpr int spansAtOnce = 255;
    const std::vector<Channel> colours{channelOf(blue, {}, {}), channelOf(red, {}, {})};
    Renderer renderer(GetParam());
    for (int firstSpan = 1; firstSpan <= 65535; firstSpan += spansAtOnce) {
        std::vector<cv::Mat> shown(2);
        cv::Mat image(spansAtOnce, 512, CV_8UC3), flipped;
        for (int y = 0; y < spansAtOnce; ++y) {
            const int span = firstSpan + y, low = span * 7919 % (65536 - span);
            const ContrastLimits limits{low, low + span};
            const cv::Mat values = stepsBetween(limits);
            cv::flip(values, flipped, 1);
            cv::Mat row = image.row(y);
            renderer.render({values, flipped},
                            {channelOf(blue, {}, limits), channelOf(red, {}, limits)}, row);

            cv::Mat displayed(values.size(), CV_8UC1);
            for (int x = 0; x < values.cols; ++x) {
                const std::int64_t above = std::clamp(valueAt(values, 0, x) - low, 0, span);
                displayed.at<uchar>(0, x) = static_cast<uchar>((510 * above + span) / (2 * span));
            }
            shown[0].push_back(displayed);
        }
        cv::flip(shown[0], shown[1], 1);
        ASSERT_TRUE(areEqual(image, dyedAndComposed(shown, colours))) << firstSpan;
    }
}

/// Of both bit depths, in colours whose components have every value.
TEST_P(RenderBy, IsDyeForEveryComponentAndIntensity) {
    cv::Mat bytes(1, 256, CV_8UC1), values(256, 256, CV_16UC1), image, expected;
    std::iota(bytes.begin<uchar>(), bytes.end<uchar>(), uchar{0});
    std::iota(values.begin<ushort>(), values.end<ushort>(), ushort{0});
    Renderer renderer(GetParam());
    for (int c = 0; c < 256; ++c) {
        const Colour colour{static_cast<uchar>(c), static_cast<uchar>(255 - c),
                            static_cast<uchar>(c ^ 85)};
        for (cv::Mat plane : {bytes, values}) {
            Lumetra::Dye(plane, expected, colour.red, colour.green, colour.blue, false, false);
            renderer.render({plane}, {channelOf(colour, {}, {})}, image);
            ASSERT_TRUE(areEqual(image, expected)) << c << ' ' << plane.type();
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

TEST(Render, DoesNotDependOnWhatWasRenderedBefore) {
    struct Case {
        int type;
        const char* colormap;
        double gamma;
        PixelFormat format;
    };
    const std::vector<Case> cases{
        {CV_8UC1, nullptr, 0.5, PixelFormat::bgr}, {CV_16UC1, nullptr, 0.5, PixelFormat::bgr},
        {CV_8UC1, "viridis", 1, PixelFormat::bgr}, {CV_16UC1, "viridis", 1, PixelFormat::bgr},
        {CV_16UC1, "magma", 1, PixelFormat::bgr},  {CV_16UC1, "viridis", 0.5, PixelFormat::bgr},
        {CV_16UC1, "viridis", 1, PixelFormat::rgb}};
    const auto render = [](Renderer& renderer, const Case& c) {
        Channel channel = channelOf(red, {}, ContrastLimits{20, 30000});
        channel.gamma = c.gamma;
        if (c.colormap)
            channel.colormap = findColormap(c.colormap);
        cv::Mat image;
        renderer.render({noisePlane({50, 20}, c.type, 1)}, {channel}, image, c.format);
        return image;
    };
    for (std::size_t before = 0; before < cases.size(); ++before) {
        for (std::size_t i = 0; i < cases.size(); ++i) {
            Renderer used, fresh;
            render(used, cases[before]);
            EXPECT_TRUE(areEqual(render(used, cases[i]), render(fresh, cases[i])))
                << i << " after " << before;
        }
    }
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

TEST_P(ColormapBy, SpreadsTheColoursOverTheLimits) {
    const Colormap colours = oklabColormap();
    Renderer renderer(GetParam());
    cv::Mat image, own;
    for (const int type : {CV_8UC1, CV_16UC1}) {
        for (const ContrastLimits limits :
             {ContrastLimits{3, 250}, ContrastLimits{0, 254}, ContrastLimits{90, 91},
              ContrastLimits{7, 7}, ContrastLimits{1000, 60000}}) {
            const cv::Mat plane = noisePlane({99, 111}, type, 5);
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
            Channel channel;
            channel.levels = limits;
            channel.colormap = colours;
            expectRendered(renderer, {plane}, {channel}, expected, "colormap");
        }
        // Over the plane's own range, as the library does it for whole images.
        const cv::Mat plane = noisePlane({50, 50}, CV_16UC1, 5);
        renderer.applyColormap(plane, {}, 1, colours, image);
        colourImage(plane, colours, own);
        own.convertTo(own, CV_8U, 1 / 256.0);
        EXPECT_TRUE(areEqual(image, own));
    }
}

TEST_P(ColormapBy, FollowsGammaBetweenTheLimits) {
    cv::Mat plane(1, 1001, CV_16UC1), image;
    std::iota(plane.begin<ushort>(), plane.end<ushort>(), ushort{0});
    Colormap gray = *findColormap("gray");
    Renderer renderer(GetParam());
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
