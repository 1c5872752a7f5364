#include "lumetra/lumetra"

#include "lumetra/colourise/bitmap_round_trip.h"
#include "lumetra/colourise/pseudo.h"
#include "lumetra/colourise/source_form.h"

#include <algorithm>

namespace lumetra {
namespace {

/// The caller's colours by slot; slots beyond the list are black.
LevelColours slotColours(const QVector<QColor>& list) {
    LevelColours colours{};
    const auto count = std::min(static_cast<std::size_t>(list.size()), colours.size());
    std::transform(list.begin(), list.begin() + static_cast<std::ptrdiff_t>(count), colours.begin(),
                   [](const QColor& colour) { return colour.rgb() & 0xFFFFFF; });
    return colours;
}

/// An image that only the bitmap's encoder can take, or refuse.
void colourBitmap(const cv::Mat& image, cv::Mat& dst, const LevelColours& colours) {
    RoundTripStages stages;
    stages.transform = [&](PixelArea from, PixelArea to) {
        const Palette ofLuma(lumaColours(merged(rangesOf(from)), colours));
        for (std::size_t y = 0; y < from.height; ++y)
            paintByLuma(from.row(y), to.row(y), from.width, ofLuma);
    };
    bitmapRoundTrip(image, dst, stages);
}

} // namespace
} // namespace lumetra

void Lumetra::Pseudo(cv::Mat& src, cv::Mat& dst, const QVector<QColor>& vecColor) {
    const lumetra::LevelColours colours = lumetra::slotColours(vecColor);
    const cv::Mat source = lumetra::colourable(src);
    if (!lumetra::pseudo(source, dst, colours))
        lumetra::colourBitmap(source, dst, colours);
}
