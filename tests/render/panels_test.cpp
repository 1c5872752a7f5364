#include "render/panels.h"

#include "render/blend.h"
#include "render/colormaps.h"
#include "render/render_error.h"
#include "render/renderer.h"

#include "planes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace lumetra {
namespace {

TEST(Panels, LieInARowWithWhiteBetweenThem) {
    const auto panelOf = [](int depth, int seed) {
        return noisePlane({3 * 31, 17}, CV_MAKETYPE(depth, 1), seed).reshape(3);
    };
    for (const int gap : {0, 1, 7})
        for (const std::vector<int>& depths : {std::vector{CV_8U},
                                               {CV_8U, CV_8U, CV_8U},
                                               {CV_8U, CV_16U},
                                               {CV_16U, CV_8U, CV_16U}}) {
            const bool isDeep = std::count(depths.begin(), depths.end(), CV_16U) > 0;
            std::vector<cv::Mat> panels;
            panels.reserve(depths.size());
            for (const int depth : depths)
                panels.push_back(panelOf(depth, static_cast<int>(panels.size())));
            cv::Mat row;
            setInRow(panels, gap, row);
            const int count = static_cast<int>(panels.size());
            ASSERT_EQ(row.size(), cv::Size(count * 31 + (count - 1) * gap, 17));
            ASSERT_EQ(row.depth(), isDeep ? CV_16U : CV_8U);
            for (int i = 0; i < count; ++i) {
                cv::Mat expected = panels[static_cast<std::size_t>(i)];
                if (expected.depth() != row.depth())
                    expected.convertTo(expected, row.depth(), 257);
                EXPECT_TRUE(areEqual(row({i * (31 + gap), 0, 31, 17}), expected));
                if (i + 1 < count && gap > 0) {
                    const cv::Mat between = row({i * (31 + gap) + 31, 0, gap, 17});
                    EXPECT_TRUE(areEqual(between, cv::Mat(between.size(), row.type(),
                                                          cv::Scalar::all(isDeep ? 65535 : 255))));
                }
            }
        }
}

TEST(Panels, RefuseWhatNoImageCanHold) {
    cv::Mat row;
    const cv::Mat small = cv::Mat::zeros(2, 3, CV_8UC3);
    EXPECT_THROW(setInRow({}, 2, row), RenderError);
    EXPECT_THROW(setInRow({small, cv::Mat::zeros(3, 2, CV_8UC3)}, 2, row), RenderError);
    EXPECT_THROW(setInRow({small, small}, 2147483647, row), RenderError);
    EXPECT_THROW(setInRow({small, small, small}, 1 << 30, row), RenderError);
    EXPECT_THROW(setInRow({small}, -1, row), cv::Exception);
    EXPECT_THROW(setInRow({cv::Mat::zeros(2, 3, CV_8UC1)}, 0, row), cv::Exception);
    EXPECT_THROW(parsePanelColours("color"), RenderError);
}

TEST(Panels, ShowEachChannelWhereItLies) {
    std::vector<Channel> channels(3);
    channels[0].colour = {0, 0, 255};
    channels[0].colormap = findColormap("gray");
    channels[1].visible = false;
    channels[2].offset = {4, -3};
    const auto gray = channelAlone(channels, 0, PanelColours::gray);
    EXPECT_TRUE(gray[0].visible && !gray[1].visible && !gray[2].visible);
    EXPECT_EQ(gray[0].colour, (Colour{255, 255, 255}));
    EXPECT_FALSE(gray[0].colormap);
    EXPECT_EQ(gray[2].offset, channels[2].offset);
    EXPECT_EQ(channelAlone(channels, 0, PanelColours::colour)[0], channels[0]);
}

/// The formulas as they are written down, in floating-point numbers.
int plainBlend(Blend blend, int under, int over, int largest) {
    const double m = largest;
    return blend == Blend::add ? std::min(under + over, largest)
           : blend == Blend::screen
               ? static_cast<int>(std::lround(m - (m - under) * (m - over) / m))
               : std::min(under, over);
}

/// Each channel rendered alone, and then blended.
cv::Mat blendedOneByOne(Renderer& renderer, const std::vector<cv::Mat>& planes,
                        const std::vector<Channel>& channels, int depth) {
    const int largest = depth == CV_16U ? 65535 : 255;
    cv::Mat result, alone;
    for (std::size_t i = 0; i < channels.size(); ++i) {
        renderer.render(planes, channelAlone(channels, i, PanelColours::colour), alone);
        alone.convertTo(alone, CV_32S, alone.depth() == depth ? 1 : 257);
        if (i == 0)
            result = alone.clone();
        for (int k = 0; i > 0 && k < 3 * static_cast<int>(result.total()); ++k)
            result.ptr<int>()[k] =
                plainBlend(channels[i].blend, result.ptr<int>()[k], alone.ptr<int>()[k], largest);
    }
    result.convertTo(result, depth);
    return result;
}

/// All pairs of 8-bit values, and as many of 16 bits; and with a colormap for one of the channels.
TEST(Blend, EqualsThePlainLoop) {
    const auto deep = [](int seed) { return noisePlane({256, 256}, CV_16UC1, seed); };
    cv::Mat rows(256, 256, CV_8UC1), columns(256, 256, CV_8UC1);
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x) {
            rows.at<uchar>(y, x) = static_cast<uchar>(y);
            columns.at<uchar>(y, x) = static_cast<uchar>(x);
        }
    std::vector<Channel> plain(3);
    plain[0].colour = {255, 255, 200};
    plain[1].colour = {255, 100, 0};
    plain[2].colour = {60, 255, 255};
    std::vector<Channel> lowestMapped = plain, secondMapped = plain;
    lowestMapped[0].colormap = secondMapped[1].colormap = findColormap("viridis");
    secondMapped[1].gamma = 0.6;
    const std::vector<std::vector<cv::Mat>> sets{
        {rows, columns, noisePlane({256, 256}, CV_8UC1, 1)},
        {deep(1), deep(2), deep(3)},
        {rows, deep(1), columns}};
    constexpr Blend blends[] = {Blend::add, Blend::screen, Blend::darkest};
    for (const InstructionSet instructions : instructionSets())
        for (const auto& planes : sets)
            for (auto channels : {plain, lowestMapped, secondMapped})
                for (const Blend second : blends)
                    for (const Blend third : blends) {
                        channels[0].blend = third; // of no effect
                        channels[1].blend = second;
                        channels[2].blend = third;
                        Renderer renderer(instructions);
                        cv::Mat image;
                        renderer.render(planes, channels, image);
                        ASSERT_TRUE(areEqual(
                            image, blendedOneByOne(renderer, planes, channels, image.depth())))
                            << blendText(second) << ' ' << blendText(third) << ' ' << image.depth();
                    }
    for (const Blend blend : blends)
        EXPECT_EQ(parseBlend(blendText(blend)), blend);
    EXPECT_THROW(parseBlend("multiply"), RenderError);
}

} // namespace
} // namespace lumetra
