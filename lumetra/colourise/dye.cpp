#include "lumetra/colourise/dye.h"

#include "lumetra/colourise/channel_totals.h"
#include "lumetra/colourise/gray_strip.h"
#include "lumetra/colourise/image_range.h"
#include "lumetra/colourise/paint.h"
#include "lumetra/colourise/source_form.h"
#include "lumetra/colourise/strips.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

namespace lumetra {
namespace {

/// The automatic levels of the channels for a dye. Every component that is full on raises the black
/// levels, so that the background stays dark: less for the channel at the component's place in red,
/// green, blue order than for the others, but never up to the white level.
ChannelLevels automaticLevels(const ColourRanges& ranges, const Tint& tint) {
    ChannelLevels levels{levelsOf(ranges[0]), levelsOf(ranges[1]), levelsOf(ranges[2])};
    const auto [blue, green, red] = tint;
    const std::array<int, 3> redGreenBlue{red, green, blue};
    for (std::size_t i = 0; i < redGreenBlue.size(); ++i) {
        if (redGreenBlue[i] != 255)
            continue;
        for (std::size_t channel = 0; channel < levels.size(); ++channel) {
            auto& [black, white] = levels[channel];
            black =
                static_cast<unsigned short>(std::min(white - 1, black + (channel == i ? 2 : 3)));
        }
    }
    return levels;
}

/// The channel that is dominant in a gray image after the stretch. All have the same white level,
/// and a value never becomes darker with a lower black level: the channel with the lowest one has
/// the largest total. Where totals are equal all the same, so are the values that occur, and it
/// does not matter which channel is taken.
Levels dominantLevels(const ChannelLevels& levels) {
    return *std::min_element(levels.begin(), levels.end(),
                             [](const Levels& a, const Levels& b) { return a.black < b.black; });
}

/// A gray 8-bit image: the stages run on the gray levels, and the pixels look their colour up.
/// Without automatic levels all channels are equal, so that none is dominant.
void dyeGray8(const cv::Mat& gray, cv::Mat& dst, const DyeSettings& settings) {
    GrayStrip strip;
    if (settings.autoLevels) {
        const ValueRange<unsigned char> range = valueRange<unsigned char>(gray);
        ChannelLevels levels = automaticLevels({range, range, range}, settings.tint);
        if (settings.dominantChannel)
            levels.fill(dominantLevels(levels));
        strip.stretch(Stretch<3>(levels));
    }
    paint(gray, 0, strip.tinted(settings.tint), dst);
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

/// The 16-bit tint, of each pixel's largest value.
void dye16(const cv::Mat& image, cv::Mat& dst, const Tint& tint) {
    using Value = std::uint16_t;
    const bool gray = image.channels() == 1;
    std::array<Value, stripPixels> largest;
    makeFromStrips<Value, Value>(
        image, dst, CV_16UC3, [&](const Value* in, Value* out, std::size_t count) {
            if (gray)
                return tintSamples(in, out, count, tint);
            for (std::size_t i = 0; i < count; ++i)
                largest[i] = std::max(std::max(in[3 * i], in[3 * i + 1]), in[3 * i + 2]);
            tintSamples(largest.data(), out, count, tint);
        });
}

} // namespace

bool dye(const cv::Mat& source, cv::Mat& dst, const DyeSettings& settings) {
    switch (formOf(source)) {
    case SourceForm::gray8:
        dyeGray8(source, dst, settings);
        return true;
    case SourceForm::colour8:
        dyeColour8(source, dst, settings);
        return true;
    case SourceForm::gray16:
    case SourceForm::colour16:
        dye16(source, dst, settings.tint);
        return true;
    case SourceForm::other:
        break;
    }
    return false;
}

Stretch<3> automaticStretch(const ColourRanges& ranges, const Tint& tint) {
    return Stretch<3>(automaticLevels(ranges, tint));
}

} // namespace lumetra
