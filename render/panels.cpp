#include "render/panels.h"

#include "render/render_error.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>

namespace lumetra {
namespace {

/// Columns of the row, in 64 bits.
std::int64_t widthOf(const std::vector<cv::Mat>& panels, int gap) {
    const auto count = static_cast<std::int64_t>(panels.size());
    constexpr std::int64_t largest = std::numeric_limits<int>::max();
    const std::int64_t step = std::int64_t{panels.front().cols} + gap;
    if (count > largest || count * step - gap > largest) // both factors are below 2^32
        throw RenderError(std::to_string(count) + " panels of " +
                          std::to_string(panels.front().cols) +
                          " pixels are too wide for an image");
    return count * step - gap;
}

} // namespace

PanelColours parsePanelColours(std::string_view text) {
    if (text == "gray")
        return PanelColours::gray;
    if (text == "colour")
        return PanelColours::colour;
    throw RenderError("\"" + std::string(text) + "\": panels are gray or colour");
}

std::vector<Channel> channelAlone(std::vector<Channel> channels, std::size_t number,
                                  PanelColours colours) {
    for (std::size_t i = 0; i < channels.size(); ++i)
        channels[i].visible = i == number;
    if (colours == PanelColours::gray) {
        channels.at(number).colour = {255, 255, 255};
        channels.at(number).colormap.reset();
    }
    return channels;
}

int panelGap(int panelWidth) { return std::max(2, panelWidth / 64); }

void setInRow(const std::vector<cv::Mat>& panels, int gap, cv::Mat& row) {
    CV_Assert(gap >= 0);
    if (panels.empty())
        throw RenderError("there are no panels");
    const cv::Size size = panels.front().size();
    int type = CV_8UC3;
    for (const cv::Mat& panel : panels) {
        CV_Assert(panel.dims <= 2 && (panel.type() == CV_8UC3 || panel.type() == CV_16UC3));
        if (panel.size() != size)
            throw RenderError("the panels have different sizes");
        type = std::max(type, panel.type());
    }
    row.create(size.height, static_cast<int>(widthOf(panels, gap)), type);
    if (panels.size() > 1)
        row.setTo(cv::Scalar::all(type == CV_8UC3 ? 255 : 65535));
    int left = 0;
    for (const cv::Mat& panel : panels) {
        cv::Mat place = row.colRange(left, left + size.width);
        panel.convertTo(place, type, panel.type() == type ? 1 : 257);
        left += size.width + (left + size.width < row.cols ? gap : 0);
    }
}

} // namespace lumetra
