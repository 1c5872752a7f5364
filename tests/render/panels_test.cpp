#include "render/panels.h"

#include "render/colormaps.h"
#include "render/render_error.h"

#include "planes.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace lumetra {
namespace {

TEST(Panels, LieInARowWithWhiteBetweenThem) {
    const std::vector<int> sets[] = {
        {CV_8U}, {CV_8U, CV_8U, CV_8U}, {CV_8U, CV_16U}, {CV_16U, CV_8U, CV_16U}};
    for (const int gap : {0, 1, 7})
        for (const std::vector<int>& depths : sets) {
            const int depth = *std::max_element(depths.begin(), depths.end());
            const cv::Mat between(17, gap, CV_MAKETYPE(depth, 3),
                                  cv::Scalar::all(depth == CV_16U ? 65535 : 255));
            std::vector<cv::Mat> panels, pieces;
            for (const int own : depths) {
                if (!panels.empty() && gap > 0)
                    pieces.push_back(between);
                panels.push_back(
                    noisePlane({3 * 31, 17}, own, static_cast<int>(panels.size())).reshape(3));
                panels.back().convertTo(pieces.emplace_back(), depth, own == depth ? 1 : 257);
            }
            cv::Mat row, expected;
            setInRow(panels, gap, row);
            cv::hconcat(pieces, expected);
            EXPECT_TRUE(areEqual(row, expected)) << panels.size() << " panels, gap of " << gap;
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
    for (std::size_t shown = 0; shown < 3; ++shown)
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_EQ(channelAlone(channels, shown, PanelColours::gray)[i].visible, i == shown);
    EXPECT_EQ(gray[0].colour, (Colour{255, 255, 255}));
    EXPECT_FALSE(gray[0].colormap);
    EXPECT_EQ(gray[2].offset, channels[2].offset);
    EXPECT_EQ(channelAlone(channels, 0, PanelColours::colour)[0], channels[0]);
}

} // namespace
} // namespace lumetra
