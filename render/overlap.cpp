#include "render/overlap.h"

#include "lumetra/composite/compositing.h"
#include "render/render_error.h"

namespace lumetra {

Overlap::Overlap(cv::Size planeSize, const std::vector<Channel>& channels) {
    if (channels.empty())
        throw RenderError("there are no channels to show");
    std::vector<cv::Point> offsets;
    offsets.reserve(channels.size());
    for (const Channel& channel : channels)
        offsets.push_back(channel.offset);
    const Alignment alignment(offsets);
    const std::int64_t rows = alignment.commonRows(planeSize.height);
    const std::int64_t columns = alignment.commonColumns(planeSize.width);
    if (rows < 1 || columns < 1)
        throw RenderError("the offsets are so far apart that the shifted images do not overlap");
    imageSize_ = {static_cast<int>(columns), static_cast<int>(rows)};
    for (const cv::Point offset : offsets)
        corners_.emplace_back(static_cast<int>(alignment.firstColumn(offset)),
                              static_cast<int>(alignment.firstRow(offset)));
}

} // namespace lumetra
