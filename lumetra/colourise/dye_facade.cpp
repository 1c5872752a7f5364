#include "lumetra/lumetra"

#include "lumetra/colourise/bitmap_round_trip.h"
#include "lumetra/colourise/channel_totals.h"
#include "lumetra/colourise/dye.h"
#include "lumetra/colourise/source_form.h"

namespace lumetra {
namespace {

/// An image that only the bitmap's encoder can take, or refuse.
void dyeBitmap(const cv::Mat& image, cv::Mat& dst, const DyeSettings& settings) {
    RoundTripStages stages;
    if (settings.autoLevels) {
        stages.inPlace = [&](PixelArea area) {
            const Stretch<3> stretch = automaticStretch(rangesOf(area), settings.tint);
            area.forEachRow([&](unsigned char* row) { stretch(row, area.rowBytes()); });
        };
    }
    if (settings.dominantChannel) {
        stages.fill = [](PixelArea from, PixelArea to) {
            ChannelTotals totals;
            from.forEachRow([&](unsigned char* row) { totals.add(row, from.width); });
            const std::size_t channel = totals.dominantChannel();
            for (std::size_t y = 0; y < from.height; ++y)
                fillWithChannel(from.row(y), channel, to.row(y), from.width);
        };
    }
    stages.transform = [&](PixelArea from, PixelArea to) {
        for (std::size_t y = 0; y < from.height; ++y)
            tintPixels(from.row(y), to.row(y), from.width, settings.tint);
    };
    bitmapRoundTrip(image, dst, stages);
}

} // namespace
} // namespace lumetra

void Lumetra::Dye(cv::Mat& src, cv::Mat& dst, int nRed, int nGreen, int nBlue, bool bAutoLevels,
                  bool bDominantChannel) {
    const lumetra::DyeSettings settings{{nBlue, nGreen, nRed}, bAutoLevels, bDominantChannel};
    const cv::Mat source = lumetra::colourable(src);
    if (!lumetra::dye(source, dst, settings))
        lumetra::dyeBitmap(source, dst, settings);
}
