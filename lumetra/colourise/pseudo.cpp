#include "lumetra/lumetra"

#include "lumetra/colourise/bitmap_round_trip.h"
#include "lumetra/colourise/colour_source.h"
#include "lumetra/levels/sample_range.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace lumetra {
namespace {

/// A colour in the order of an image's channels: blue, green, red.
using Colour = std::array<unsigned char, 3>;

/// The caller's colours by slot; slots beyond the list are black.
using ColourTable = std::array<Colour, 256>;

ColourTable colourTable(const QVector<QColor>& colours) {
    ColourTable table{};
    const auto count = std::min(static_cast<std::size_t>(colours.size()), table.size());
    for (std::size_t i = 0; i < count; ++i) {
        const QColor& colour = colours[static_cast<int>(i)];
        table[i] = {static_cast<unsigned char>(colour.blue()),
                    static_cast<unsigned char>(colour.green()),
                    static_cast<unsigned char>(colour.red())};
    }
    return table;
}

/// The colour slot of each intensity from the smallest sample of an image to its largest.
class SlotTable {
public:
    explicit SlotTable(int smallest, int largest) : smallest_(smallest) {
        const std::size_t size = static_cast<std::size_t>(largest - smallest) + 1;
        const double slotsPerLevel = 255.0 / static_cast<double>(size);
        slots_.reserve(size);
        for (std::size_t k = 0; k < size; ++k)
            slots_.push_back(static_cast<unsigned char>(static_cast<double>(k) * slotsPerLevel));
    }

    /// The luma of 8-bit gray can come out one below the smallest sample: that takes the first
    /// slot.
    unsigned char operator[](int intensity) const {
        return slots_[static_cast<std::size_t>(std::max(intensity - smallest_, 0))];
    }

private:
    int smallest_;
    std::vector<unsigned char> slots_;
};

/// Rounds down to one less than the sample for 67 of the 256 levels of gray. The sum must stay in
/// this order: it decides which.
int luma8(const unsigned char* pixel) {
    return static_cast<int>(pixel[0] * 0.3 + pixel[1] * 0.59 + pixel[2] * 0.11);
}

/// Weights of 128 in all, so that gray keeps its value.
int luma16(const std::uint16_t* pixel) {
    return static_cast<int>((38u * pixel[0] + 75u * pixel[1] + 15u * pixel[2]) >> 7);
}

template<class Sample>
SampleRange<Sample> rowRange(const Sample* row, std::size_t count) {
    return channelRanges<1>(row, count)[0];
}

SlotTable slotTable(PixelArea area) {
    SampleRange<unsigned char> range;
    for (std::size_t y = 0; y < area.height; ++y)
        range.include(rowRange(area.row(y), area.rowBytes()));
    return SlotTable(range.smallest, range.largest);
}

SlotTable slotTable16(const cv::Mat& source) {
    SampleRange<std::uint16_t> range;
    const auto samples = static_cast<std::size_t>(source.cols) * source.elemSize() / 2;
    for (int y = 0; y < source.rows; ++y)
        range.include(rowRange(source.ptr<std::uint16_t>(y), samples));
    return SlotTable(range.smallest, range.largest);
}

void colour8(PixelArea from, PixelArea to, const SlotTable& slots, const ColourTable& colours) {
    for (std::size_t y = 0; y < from.height; ++y) {
        const unsigned char* in = from.row(y);
        unsigned char* out = to.row(y);
        for (std::size_t x = 0; x < from.width; ++x, in += 3, out += 3)
            std::copy_n(colours[slots[luma8(in)]].begin(), 3, out);
    }
}

/// Colours of a 16-bit image take the high byte of each sample.
cv::Mat colour16(const cv::Mat& source, const ColourTable& colours) {
    const SlotTable slots = slotTable16(source);
    cv::Mat result(source.size(), CV_16UC3);
    const int channels = source.channels();
    for (int y = 0; y < source.rows; ++y) {
        const auto* in = source.ptr<std::uint16_t>(y);
        auto* out = result.ptr<std::uint16_t>(y);
        for (int x = 0; x < source.cols; ++x, in += channels, out += 3) {
            const Colour& colour = colours[slots[channels == 1 ? *in : luma16(in)]];
            for (std::size_t k = 0; k < colour.size(); ++k)
                out[k] = static_cast<std::uint16_t>(colour[k] << 8);
        }
    }
    return result;
}

} // namespace
} // namespace lumetra

void Lumetra::Pseudo(cv::Mat& src, cv::Mat& dst, QVector<QColor> const& vecColor) {
    using namespace lumetra;
    const ColourTable colours = colourTable(vecColor);
    const cv::Mat source = colourSource(src);
    if (isSixteenBit(source)) {
        dst = colour16(source, colours);
        return;
    }

    RoundTripStages stages;
    stages.transform = [&](PixelArea from, PixelArea to) {
        colour8(from, to, slotTable(from), colours);
    };
    bitmapRoundTrip(preparedForBitmap(source), dst, stages);
}
