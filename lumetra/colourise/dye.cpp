#include "lumetra/lumetra"

#include "lumetra/colourise/bitmap_round_trip.h"
#include "lumetra/colourise/channel_totals.h"
#include "lumetra/colourise/gray_strip.h"
#include "lumetra/colourise/image_range.h"
#include "lumetra/colourise/paint.h"
#include "lumetra/colourise/source_form.h"
#include "lumetra/colourise/strips.h"
#include "lumetra/colourise/tint.h"
#include "lumetra/levels/colour_levels.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

namespace lumetra {
namespace {

struct DyeSettings {
    Tint tint;
    bool autoLevels;
    bool dominantChannel;
};

/// Raises the black levels for every component that is full on, so that the background stays dark:
/// less for the channel at the component's place in red, green, blue order than for the others, but
/// never up to the white level.
TS_LEVELS withRaisedBlack(TS_LEVELS levels, const Tint& tint) {
    const auto raise = [](unsigned short& black, unsigned short white, int amount) {
        black = static_cast<unsigned short>(std::min(white - 1, black + amount));
    };
    const auto [blue, green, red] = tint;
    const std::array<int, 3> redGreenBlue{red, green, blue};
    for (std::size_t i = 0; i < redGreenBlue.size(); ++i) {
        if (redGreenBlue[i] != 255)
            continue;
        raise(levels.wLowB, levels.wHighB, i == 0 ? 2 : 3);
        raise(levels.wLowG, levels.wHighG, i == 1 ? 2 : 3);
        raise(levels.wLowR, levels.wHighR, i == 2 ? 2 : 3);
    }
    return levels;
}

/// The automatic levels of pixels with these ranges, as a stretch for a dye.
Stretch<3> automaticStretch(const ColourRanges& ranges, const Tint& tint) {
    return colourStretch(withRaisedBlack(colourLevels(ranges), tint));
}

using Histogram = std::array<std::uint64_t, 256>;

Histogram histogramOf(const cv::Mat& gray) {
    std::array<Histogram, 4> counts{}; // so that runs of one value do not wait for each other
    forEachStrip<unsigned char>(gray, [&](const unsigned char* in, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            ++counts[i % 4][in[i]];
    });
    for (std::size_t level = 0; level < 256; ++level)
        counts[0][level] += counts[1][level] + counts[2][level] + counts[3][level];
    return counts[0];
}

/// The channel with the largest total in a gray image, given what becomes of its levels.
std::size_t dominantChannelOfGray(const cv::Mat& gray, const GrayStrip& levels) {
    const Histogram counts = histogramOf(gray);
    ChannelTotals totals;
    for (std::size_t level = 0; level < counts.size(); ++level)
        totals.addRepeated(levels.pixel(level), counts[level]);
    return totals.dominantChannel();
}

/// A gray 8-bit image: the stages run on the gray levels, and the pixels look their colour up.
/// Without automatic levels all channels are equal, so that none is dominant.
void dyeGray8(const cv::Mat& gray, cv::Mat& dst, const DyeSettings& settings) {
    GrayStrip levels;
    if (settings.autoLevels) {
        const SampleRange<unsigned char> range = sampleRange<unsigned char>(gray);
        levels.stretch(automaticStretch({range, range, range}, settings.tint));
        if (settings.dominantChannel)
            levels.fillWithChannel(dominantChannelOfGray(gray, levels));
    }
    paint(gray, 0, levels.tinted(settings.tint), dst);
}

/// The channel with the largest total in a colour image after the stretch, if there is one.
std::size_t dominantChannelOfColour(const cv::Mat& image,
                                    const std::optional<Stretch<3>>& stretch) {
    ChannelTotals totals;
    std::array<unsigned char, 3 * stripPixels> strip;
    forEachStrip<unsigned char>(image, [&](const unsigned char* in, std::size_t count) {
        if (!stretch)
            return totals.add(in, count);
        std::copy_n(in, 3 * count, strip.begin());
        (*stretch)(strip.data(), 3 * count);
        totals.add(strip.data(), count);
    });
    return totals.dominantChannel();
}

/// An 8-bit colour image, which encoding and decoding would not change: the stages run on its
/// pixels, or on the levels of the dominant channel.
void dyeColour8(const cv::Mat& image, cv::Mat& dst, const DyeSettings& settings) {
    std::optional<Stretch<3>> stretch;
    if (settings.autoLevels)
        stretch = automaticStretch(channelRanges<unsigned char>(image), settings.tint);

    if (settings.dominantChannel) {
        const std::size_t channel = dominantChannelOfColour(image, stretch);
        GrayStrip levels;
        if (stretch)
            levels.stretch(*stretch);
        levels.fillWithChannel(channel);
        return paint(image, channel, levels.tinted(settings.tint), dst);
    }

    std::array<unsigned char, 3 * stripPixels> stretched;
    makeFromStrips<unsigned char, unsigned char>(
        image, dst, CV_8UC3, [&](const unsigned char* in, unsigned char* out, std::size_t count) {
            if (stretch) {
                std::copy_n(in, 3 * count, stretched.begin());
                (*stretch)(stretched.data(), 3 * count);
                in = stretched.data();
            }
            tintPixels(in, out, count, settings.tint);
        });
}

/// Any other image: through the bitmap.
void dyeBitmap(const cv::Mat& image, cv::Mat& dst, const DyeSettings& settings) {
    RoundTripStages stages;
    if (settings.autoLevels) {
        stages.inPlace = [&](PixelArea area) {
            ColourRanges ranges;
            area.forEachRow(
                [&](const unsigned char* row) { includeSamples(ranges, row, area.rowBytes()); });
            const Stretch<3> stretch = automaticStretch(ranges, settings.tint);
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

/// The 16-bit tint, of each pixel's largest sample.
void dye16(const cv::Mat& image, cv::Mat& dst, const Tint& tint) {
    using Sample = std::uint16_t;
    const bool gray = image.channels() == 1;
    std::array<Sample, stripPixels> largest;
    makeFromStrips<Sample, Sample>(
        image, dst, CV_16UC3, [&](const Sample* in, Sample* out, std::size_t count) {
            if (gray)
                return tintSamples(in, out, count, tint);
            for (std::size_t i = 0; i < count; ++i)
                largest[i] = std::max(std::max(in[3 * i], in[3 * i + 1]), in[3 * i + 2]);
            tintSamples(largest.data(), out, count, tint);
        });
}

} // namespace
} // namespace lumetra

void Lumetra::Dye(cv::Mat& src, cv::Mat& dst, int nRed, int nGreen, int nBlue, bool bAutoLevels,
                  bool bDominantChannel) {
    const lumetra::DyeSettings settings{{nBlue, nGreen, nRed}, bAutoLevels, bDominantChannel};
    const cv::Mat source = lumetra::colourable(src);
    switch (lumetra::formOf(source)) {
    case lumetra::SourceForm::gray8:
        lumetra::dyeGray8(source, dst, settings);
        break;
    case lumetra::SourceForm::colour8:
        lumetra::dyeColour8(source, dst, settings);
        break;
    case lumetra::SourceForm::gray16:
    case lumetra::SourceForm::colour16:
        lumetra::dye16(source, dst, settings.tint);
        break;
    case lumetra::SourceForm::other:
        lumetra::dyeBitmap(source, dst, settings);
        break;
    }
}
