#include "render/renderer.h"

#include "lumetra/colourise/image_range.h"
#include "lumetra/colourise/paint.h"
#include "render/colormap_slots.h"
#include "render/overlap.h"
#include "render/render_error.h"
#include "render/render_row.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <array>
#include <utility>

namespace lumetra {
namespace {

int bitDepthOf(const cv::Mat& plane) { return plane.depth() == CV_8U ? 8 : 16; }

void checkPlanes(const std::vector<cv::Mat>& planes, const std::vector<Channel>& channels) {
    if (planes.empty() || planes.size() != channels.size())
        throw RenderError("there are no channels to show");
    for (const cv::Mat& plane : planes) {
        CV_Assert(plane.dims <= 2 && (plane.type() == CV_8UC1 || plane.type() == CV_16UC1));
        if (plane.size() != planes.front().size())
            throw RenderError("the images have different sizes");
    }
}

ContrastLimits rangeOf(const cv::Mat& plane) {
    const auto limits = [](auto range) { return ContrastLimits{range.smallest, range.largest}; };
    return plane.depth() == CV_8U ? limits(valueRange<unsigned char>(plane))
                                  : limits(valueRange<std::uint16_t>(plane));
}

/// The components of a colour in the order that an image has them.
std::array<std::uint8_t, 3> ordered(Colour colour, PixelFormat format) {
    if (format == PixelFormat::rgb)
        return {colour.red, colour.green, colour.blue};
    return {colour.blue, colour.green, colour.red};
}

/// The colours of a colormap's slots, packed for an image.
std::array<std::uint32_t, slotCount> packedColours(const Colormap& colormap, PixelFormat format) {
    const std::uint32_t alpha = format == PixelFormat::bgra ? 0xFF000000 : 0;
    std::array<std::uint32_t, slotCount> packed{};
    for (std::size_t slot = 0; slot < slotCount; ++slot) {
        const auto [first, second, third] = ordered(colourOfSlot(colormap, slot), format);
        packed[slot] = packedColour(first, second, third) | alpha;
    }
    return packed;
}

void renderRows(Row& row, const std::vector<cv::Mat>& parts, cv::Mat& image, RenderRow renderRow) {
    const auto isContinuous = [](const cv::Mat& matrix) { return matrix.isContinuous(); };
    const bool isOneRow =
        isContinuous(image) && std::all_of(parts.begin(), parts.end(), isContinuous);
    row.count = isOneRow ? image.total() : static_cast<std::size_t>(image.cols);
    for (int y = 0; y < (isOneRow ? 1 : image.rows); ++y) {
        for (std::size_t i = 0; i < parts.size(); ++i)
            row.channels[i].values = parts[i].ptr(y);
        row.pixels = image.ptr(y);
        renderRow(row);
    }
}

} // namespace

Renderer::Renderer() : Renderer(instructionSets().back()) {}
Renderer::Renderer(InstructionSet instructions) : instructions_(instructions) {}

/// The colours of the slots that a ramp leads to, or, without one, of all values.
void Renderer::setColours(const cv::Mat& plane, const Channel& channel, PixelFormat format,
                          ChannelTables& tables) {
    IntensityLut& lut = tables.lut;
    const ContrastLimits limits = channel.levels ? *channel.levels : rangeOf(plane);
    const bool isNew = lut.setToSlots(bitDepthOf(plane), limits, channel.gamma);
    if (!isNew && !tables.colours.empty() && tables.format == format &&
        tables.colormap == *channel.colormap)
        return;
    tables.colours.clear(); // until there is memory for all of them
    tables.format = format;
    tables.colormap = *channel.colormap;
    const auto ofSlots = packedColours(tables.colormap, format);
    std::vector<std::uint32_t> colours(ofSlots.begin(), ofSlots.end());
    if (!lut.ramp()) {
        colours.resize(lut.entries().size());
        std::transform(lut.entries().begin(), lut.entries().end(), colours.begin(),
                       [&](unsigned char slot) { return ofSlots[slot]; });
    }
    tables.colours = std::move(colours);
}

RowChannel Renderer::rowChannel(const cv::Mat& plane, const Channel& channel, PixelFormat format,
                                ChannelTables& tables) {
    RowChannel row;
    row.bitDepth = bitDepthOf(plane);
    row.blend = channel.blend;
    if (channel.colormap) {
        setColours(plane, channel, format, tables);
        row.lut = tables.lut.ramp() ? &tables.lut : nullptr;
        row.colours = tables.colours.data();
        return row;
    }
    if (channel.levels) {
        tables.lut.set(row.bitDepth, *channel.levels, channel.gamma);
        row.lut = &tables.lut;
    }
    const std::array<std::uint8_t, 3> components = ordered(channel.colour, format);
    for (std::size_t k = 0; k < components.size(); ++k)
        row.factors[k] = TintFactor(components[k], row.is16Bit());
    return row;
}

void Renderer::render(const std::vector<cv::Mat>& planes, const std::vector<Channel>& channels,
                      cv::Mat& image, PixelFormat format) {
    checkPlanes(planes, channels);
    const Overlap overlap(planes.front().size(), channels);
    tables_.resize(std::max(tables_.size(), planes.size()));
    Row row;
    row.components = format == PixelFormat::bgra ? 4 : 3;
    std::vector<cv::Mat> parts;
    for (std::size_t i = 0; i < planes.size(); ++i) {
        if (!channels[i].visible)
            continue;
        parts.push_back(planes[i](overlap.partOf(i)));
        row.channels.push_back(rowChannel(planes[i], channels[i], format, tables_[i]));
        row.is16Bit |= row.channels.back().is16Bit();
    }
    if (row.is16Bit && format == PixelFormat::bgra)
        throw RenderError("16-bit channels need contrast limits for display");
    image.create(overlap.imageSize(), CV_MAKETYPE(row.is16Bit ? CV_16U : CV_8U, row.components));
    if (parts.empty())
        image.setTo(cv::Scalar(0, 0, 0, 255));
    else
        renderRows(row, parts, image, renderRowFor(instructions_));
}

void Renderer::applyColormap(const cv::Mat& plane, std::optional<ContrastLimits> limits,
                             double gamma, const Colormap& colormap, cv::Mat& image,
                             PixelFormat format) {
    Channel channel;
    channel.levels = limits;
    channel.gamma = gamma;
    channel.colormap = colormap;
    render({plane}, {channel}, image, format);
}

} // namespace lumetra
