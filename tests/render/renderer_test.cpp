#include "render/renderer.h"

#include "render/blend.h"
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

/// What one pixel value becomes, of 16 bits in a deep image: blue, green and red.
cv::Vec3i plainColour(int value, bool isDeep, const Channel& channel, bool isImageDeep) {
    cv::Vec3i colour(channel.colour.blue, channel.colour.green, channel.colour.red);
    if (channel.levels) {
        const auto [low, high] = *channel.levels;
        const int above = std::clamp(value, low, high) - low, span = high - low;
        isDeep = false;
        if (channel.colormap) {
            const int slot = static_cast<int>(above * (255.0 / (span + 1)));
            const auto [r, g, b] =
                (*channel.colormap)[static_cast<std::size_t>(std::lround(slot * 255.0 / 254))];
            colour = {b, g, r};
            value = 255;
        } else {
            value = (510 * above + span) / (2 * span);
        }
    }
    for (int& part : colour.val) {
        part = value * part / (isDeep ? 256 : 255);
        part *= isImageDeep && !isDeep ? 257 : 1;
    }
    return colour;
}

int plainBlend(Blend blend, int under, int over, int largest) {
    const double m = largest;
    return blend == Blend::add ? std::min(under + over, largest)
           : blend == Blend::screen
               ? static_cast<int>(std::lround(m - (m - under) * (m - over) / m))
               : std::min(under, over);
}

/// One pixel value after another, by the formulas alone.
cv::Mat plainRender(const std::vector<cv::Mat>& planes, std::vector<Channel> channels) {
    int left = INT_MAX, right = INT_MIN, top = INT_MAX, bottom = INT_MIN;
    bool deep = false;
    for (std::size_t i = 0; i < planes.size(); ++i) {
        Channel& c = channels[i];
        left = std::min(left, c.offset.x);
        right = std::max(right, c.offset.x);
        top = std::min(top, c.offset.y);
        bottom = std::max(bottom, c.offset.y);
        deep |= c.visible && !c.levels && !c.colormap && planes[i].depth() == CV_16U;
        double smallest = 0, largest = 0;
        cv::minMaxLoc(planes[i], &smallest, &largest);
        if (c.colormap && !c.levels)
            c.levels = ContrastLimits{static_cast<int>(smallest), static_cast<int>(largest)};
    }
    cv::Mat result(planes[0].rows - (bottom - top), planes[0].cols - (right - left), CV_32SC3,
                   cv::Scalar());
    bool isFirst = true;
    for (std::size_t i = 0; i < planes.size(); ++i) {
        const Channel& c = channels[i];
        for (int y = 0; c.visible && y < result.rows; ++y)
            for (int x = 0; x < result.cols; ++x) {
                const cv::Vec3i colour =
                    plainColour(valueAt(planes[i], y + c.offset.y - top, x + c.offset.x - left),
                                planes[i].depth() == CV_16U, c, deep);
                auto& pixel = result.at<cv::Vec3i>(y, x);
                for (int k = 0; k < 3; ++k)
                    pixel[k] = plainBlend(isFirst ? Blend::add : c.blend, pixel[k], colour[k],
                                          deep ? 65535 : 255);
            }
        isFirst = isFirst && !c.visible;
    }
    result.convertTo(result, deep ? CV_16U : CV_8U);
    return result;
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

/// With each set of instructions that this processor has.
class RenderBy : public testing::TestWithParam<InstructionSet> {};
INSTANTIATE_TEST_SUITE_P(Instructions, RenderBy, testing::ValuesIn(instructionSets()));

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

TEST_P(RenderBy, RoundsEveryStepOfEverySpanOfLevels) {
    Renderer renderer(GetParam());
    cv::Mat flipped, image;
    for (int span = 1; span <= 65535; span += span < 9000 ? 1 : 7) {
        const int low = span * 7919 % (65536 - span);
        const ContrastLimits limits{low, low + span};
        const cv::Mat values = stepsBetween(limits);
        cv::flip(values, flipped, 1);
        const std::vector<Channel> channels{channelOf(blue, {}, limits),
                                            channelOf(red, {}, limits)};
        renderer.render({values, flipped}, channels, image);
        ASSERT_TRUE(areEqual(image, plainRender({values, flipped}, channels))) << span;
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
    const cv::Mat plane = noisePlane({300, 333}, CV_16UC1, 1);
    const Channel channel = channelOf(red, {}, ContrastLimits{0, 9000});
    Renderer renderer;
    cv::Mat image;
    renderer.render({plane}, {channel}, image);
    const auto* pixels = image.data;
    renderer.render({plane}, {channel}, image);
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

TEST_P(RenderBy, SpreadsTheColoursOverTheLimits) {
    const std::optional<ContrastLimits> limits[] = {{{3, 250}}, {{0, 254}},      {{90, 91}},
                                                    {{7, 7}},   {{1000, 60000}}, {}};
    Renderer renderer(GetParam());
    for (const int type : {CV_8UC1, CV_16UC1})
        for (const auto& levels : limits) {
            const cv::Mat plane = noisePlane({99, 111}, type, 5);
            Channel channel = channelOf({}, {}, levels);
            channel.colormap = oklabColormap();
            expectRendered(renderer, {plane}, {channel}, plainRender({plane}, {channel}),
                           "colormap");
        }
}

/// All pairs of 8-bit values, and as many of 16 bits; and with a colormap for one of the channels.
TEST_P(RenderBy, BlendsAsTheFormulasSay) {
    const auto deep = [](int seed) { return noisePlane({256, 256}, CV_16UC1, seed); };
    cv::Mat rows(256, 256, CV_8UC1);
    for (int y = 0; y < 256; ++y)
        rows.row(y) = y;
    const cv::Mat columns = rows.t();
    const std::vector<std::vector<cv::Mat>> sets{
        {rows, columns, noisePlane({256, 256}, CV_8UC1, 1)},
        {deep(1), deep(2), deep(3)},
        {rows, deep(1), columns}};
    const std::vector<Channel> plain{channelOf({255, 255, 200}, {}, {}),
                                     channelOf({255, 100, 0}, {}, {}),
                                     channelOf({60, 255, 255}, {}, {})};
    std::vector<Channel> lowestMapped = plain, secondMapped = plain;
    lowestMapped[0].colormap = secondMapped[1].colormap = findColormap("viridis");
    constexpr Blend blends[] = {Blend::add, Blend::screen, Blend::darkest};
    for (const auto& planes : sets)
        for (auto channels : {plain, lowestMapped, secondMapped})
            for (const Blend second : blends)
                for (const Blend third : blends) {
                    channels[0].blend = third; // of no effect
                    channels[1].blend = second;
                    channels[2].blend = third;
                    cv::Mat image;
                    Renderer(GetParam()).render(planes, channels, image);
                    ASSERT_TRUE(areEqual(image, plainRender(planes, channels)))
                        << blendText(second) << ' ' << blendText(third) << ' ' << image.depth();
                }
    for (const Blend blend : blends)
        EXPECT_EQ(parseBlend(blendText(blend)), blend);
    EXPECT_THROW(parseBlend("multiply"), RenderError);
}

TEST_P(RenderBy, FollowsGammaBetweenTheLimits) {
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

TEST(ImageColouring, StretchesEachComponentByItsOwnLimits) {
    for (const int depth : {CV_8U, CV_16U}) {
        cv::Mat image = noisePlane({3 * 61, 40}, CV_MAKETYPE(depth, 1), 1).reshape(3);
        cv::multiply(image, cv::Scalar(0.3, 0.6, 0.9), image);
        const auto limits = componentLimits(image, parseLevelPolicy("clip:5"));
        std::vector<cv::Mat> planes;
        cv::split(image, planes);
        for (std::size_t i = 0; i < planes.size(); ++i) {
            Channel channel = channelOf({255, 255, 255}, {}, limits.at(i));
            cv::Mat expected, component;
            cv::extractChannel(plainRender({planes[i]}, {channel}), expected, 0);
            cv::extractChannel(stretched(image, limits, 1), component, static_cast<int>(i));
            EXPECT_TRUE(areEqual(component, expected)) << depth << ' ' << i;
        }
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
    cv::Mat result, exact, expected;
    for (const int type : {CV_8UC1, CV_8UC3, CV_16UC1, CV_16UC3}) {
        const int channels = CV_MAT_CN(type);
        const cv::Mat image =
            noisePlane({channels * 97, 61}, CV_MAT_DEPTH(type), 1).reshape(channels).clone();
        for (const cv::Size size :
             {cv::Size(97, 61), cv::Size(96, 60), cv::Size(31, 7), cv::Size(1, 1)}) {
            shrink(image, size, result);
            image.convertTo(exact, CV_64F);
            cv::resize(exact, expected, size, 0, 0, cv::INTER_AREA);
            ASSERT_EQ(result.type(), type);
            result.convertTo(exact, CV_64F);
            EXPECT_LE(cv::norm(exact, expected, cv::NORM_INF), 0.51) << type << ' ' << size;
        }
        EXPECT_THROW(shrink(image, {98, 61}, result), cv::Exception);
    }
}

} // namespace
} // namespace lumetra
