#include "render/colormaps.h"
#include "render/dyes.h"
#include "render/level_policy.h"
#include "render/lumetra_render.h"
#include "render/overlap.h"
#include "render/render_error.h"
#include "render/renderer.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <cstring>
#include <functional>
#include <new>
#include <vector>

namespace {

using namespace lumetra;

void writeReason(const char* text, char* reason, std::size_t bytes) {
    if (!reason || bytes == 0)
        return;
    const std::size_t length = std::min(std::strlen(text), bytes - 1);
    std::memcpy(reason, text, length);
    reason[length] = '\0';
}

/// Runs what may throw, and tells the reason where it does.
template<class Work>
int guarded(char* reason, std::size_t bytes, Work work) noexcept {
    const auto fail = [&](const char* text) {
        writeReason(text, reason, bytes);
        return LUMETRA_FAILED;
    };
    try {
        work();
        return LUMETRA_OK;
    } catch (const RenderError& error) {
        return fail(error.what());
    } catch (const cv::Exception& error) {
        return fail(error.code == cv::Error::StsNoMem ? "there is not enough memory"
                                                      : error.err.c_str());
    } catch (const std::bad_alloc&) {
        return fail("there is not enough memory");
    } catch (...) {
        return fail("cannot be done");
    }
}

void require(bool condition, const char* reason) {
    if (!condition)
        throw RenderError(reason);
}

/// A structure as this version has it, from one that may be shorter or longer.
template<class Struct>
Struct current(const void* given) {
    require(given, "a structure is missing");
    std::size_t size = 0;
    std::memcpy(&size, given, sizeof size);
    require(size > sizeof size, "a structure does not begin with its size");
    Struct known{};
    std::memcpy(&known, given, std::min(size, sizeof known));
    return known;
}

/// The structure behind `given` in an array, whose elements are as large as the first one says.
template<class Struct>
Struct elementOf(const Struct* array, std::size_t i) {
    require(array, "a structure is missing");
    return current<Struct>(reinterpret_cast<const unsigned char*>(array) + i * array->struct_size);
}

/// Gives a structure back as far as the caller has it.
template<class Struct>
void giveBack(Struct known, Struct* given) {
    const std::size_t size = given->struct_size;
    known.struct_size = size;
    std::memcpy(given, &known, std::min(size, sizeof known));
}

/// Whether rows can be looked at where they are.
bool isMatrix(const void* pixels, std::ptrdiff_t step, std::size_t rowBytes, std::size_t unit) {
    return reinterpret_cast<std::uintptr_t>(pixels) % unit == 0 &&
           step >= static_cast<std::ptrdiff_t>(rowBytes) &&
           step % static_cast<std::ptrdiff_t>(unit) == 0;
}

/// The pixels where they are; a copy of rows that no matrix can have.
cv::Mat matrixOf(const lumetra_plane& plane) {
    require(plane.pixels && plane.width > 0 && plane.height > 0, "a plane has no pixels");
    require(plane.bit_depth == 8 || plane.bit_depth == 16, "a plane has neither 8 nor 16 bits");
    const int type = plane.bit_depth == 8 ? CV_8UC1 : CV_16UC1;
    const std::size_t unit = plane.bit_depth == 8 ? 1 : 2;
    const std::size_t rowBytes = unit * static_cast<std::size_t>(plane.width);
    if (isMatrix(plane.pixels, plane.row_step, rowBytes, unit))
        return {plane.height, plane.width, type, const_cast<void*>(plane.pixels),
                static_cast<std::size_t>(plane.row_step)};
    cv::Mat copy(plane.height, plane.width, type);
    for (int y = 0; y < plane.height; ++y)
        std::memcpy(copy.ptr(y),
                    static_cast<const unsigned char*>(plane.pixels) + y * plane.row_step, rowBytes);
    return copy;
}

std::vector<cv::Mat> matricesOf(const lumetra_plane* planes, std::size_t count) {
    std::vector<cv::Mat> matrices;
    for (std::size_t i = 0; i < count; ++i)
        matrices.push_back(matrixOf(elementOf(planes, i)));
    return matrices;
}

std::uint8_t component(std::int32_t value) {
    require(value >= 0 && value <= 255, "a colour's components are from 0 to 255");
    return static_cast<std::uint8_t>(value);
}

Channel channelOf(const lumetra_channel& given) {
    Channel channel;
    channel.colour = {component(given.red), component(given.green), component(given.blue)};
    channel.offset = {given.offset_x, given.offset_y};
    channel.visible = given.hidden == 0;
    channel.gamma = given.gamma == 0 ? 1 : given.gamma;
    require(channel.gamma >= smallestGamma && channel.gamma <= largestGamma,
            "a gamma is from 0.01 to 100");
    require(given.blend >= LUMETRA_ADD && given.blend <= LUMETRA_DARKEST,
            "a blend is none of those that there are");
    channel.blend = static_cast<Blend>(given.blend);
    if (given.has_limits != 0) {
        require(given.low >= 0 && given.low < given.high && given.high <= 65535,
                "contrast limits are 0 <= low < high <= 65535");
        channel.levels = ContrastLimits{given.low, given.high};
    }
    return channel;
}

std::vector<Channel> channelsOf(const lumetra_channel* channels, std::size_t count) {
    std::vector<Channel> result;
    for (std::size_t i = 0; i < count; ++i)
        result.push_back(channelOf(elementOf(channels, i)));
    return result;
}

PixelFormat formatOf(const lumetra_image& image) {
    switch (image.format) {
    case LUMETRA_BGR:
        return PixelFormat::bgr;
    case LUMETRA_RGB:
        return PixelFormat::rgb;
    case LUMETRA_BGRA:
        return PixelFormat::bgra;
    default:
        throw RenderError("there is no such pixel format");
    }
}

int bitDepthOf(const std::vector<cv::Mat>& planes, const std::vector<Channel>& channels) {
    for (std::size_t i = 0; i < planes.size(); ++i)
        if (channels[i].visible && !channels[i].levels && planes[i].depth() == CV_16U)
            return 16;
    return 8;
}

/// Lets `draw` make an image of this type in the caller's memory, or beside it where no matrix can
/// have those rows.
template<class Draw>
void drawInto(const lumetra_image& given, cv::Size size, int bitDepth, Draw draw) {
    const PixelFormat format = formatOf(given);
    require(given.width == size.width && given.height == size.height && given.bit_depth == bitDepth,
            "the memory for the image has another size or bit depth than the image");
    require(given.pixels, "there is no memory for the image");
    const int depth = bitDepth == 8 ? CV_8U : CV_16U;
    const int type = CV_MAKETYPE(depth, format == PixelFormat::bgra ? 4 : 3);
    const std::size_t rowBytes = static_cast<std::size_t>(size.width) * CV_ELEM_SIZE(type);
    if (isMatrix(given.pixels, given.row_step, rowBytes, CV_ELEM_SIZE1(type))) {
        cv::Mat image(size, type, given.pixels, static_cast<std::size_t>(given.row_step));
        return draw(image, format);
    }
    cv::Mat image;
    draw(image, format);
    for (int y = 0; y < size.height; ++y)
        std::memcpy(static_cast<unsigned char*>(given.pixels) + y * given.row_step, image.ptr(y),
                    rowBytes);
}

/// The memory that a thread's images take is kept for its next ones.
Renderer& threadRenderer() {
    static thread_local Renderer renderer;
    return renderer;
}

const DyeList& builtInDyes() {
    static const DyeList dyes; // for all threads: callers keep its names
    return dyes;
}

/// @param dye  One of `builtInDyes`.
void giveDye(const Dye& dye, lumetra_dye* given) {
    auto known = current<lumetra_dye>(given);
    known.name = dye.name.c_str();
    known.excitation = dye.excitation;
    known.emission = dye.emission;
    known.red = dye.colour.red;
    known.green = dye.colour.green;
    known.blue = dye.colour.blue;
    giveBack(known, given);
}

} // namespace

int lumetra_image_size(const lumetra_plane* planes, const lumetra_channel* channels, size_t count,
                       lumetra_image* image, char* reason, size_t reason_bytes) {
    return guarded(reason, reason_bytes, [&] {
        auto known = current<lumetra_image>(image);
        const std::vector<cv::Mat> matrices = matricesOf(planes, count);
        const std::vector<Channel> settings = channelsOf(channels, count);
        require(count > 0, "there are no channels to show");
        const cv::Size size = Overlap(matrices.front().size(), settings).imageSize();
        known.width = size.width;
        known.height = size.height;
        known.bit_depth = formatOf(known) == PixelFormat::bgra ? 8 : bitDepthOf(matrices, settings);
        giveBack(known, image);
    });
}

int lumetra_render(const lumetra_plane* planes, const lumetra_channel* channels, size_t count,
                   const lumetra_image* image, char* reason, size_t reason_bytes) {
    return guarded(reason, reason_bytes, [&] {
        const auto given = current<lumetra_image>(image);
        const std::vector<cv::Mat> matrices = matricesOf(planes, count);
        const std::vector<Channel> settings = channelsOf(channels, count);
        require(count > 0, "there are no channels to show");
        const cv::Size size = Overlap(matrices.front().size(), settings).imageSize();
        const int bitDepth =
            formatOf(given) == PixelFormat::bgra ? 8 : bitDepthOf(matrices, settings);
        drawInto(given, size, bitDepth, [&](cv::Mat& target, PixelFormat format) {
            threadRenderer().render(matrices, settings, target, format);
        });
    });
}

int lumetra_apply_colormap(const lumetra_plane* plane, const lumetra_channel* settings,
                           const uint8_t* colormap, const lumetra_image* image, char* reason,
                           size_t reason_bytes) {
    return guarded(reason, reason_bytes, [&] {
        const cv::Mat matrix = matrixOf(current<lumetra_plane>(plane));
        const Channel channel = channelOf(current<lumetra_channel>(settings));
        require(colormap, "there is no colormap");
        Colormap colours;
        for (std::size_t i = 0; i < colours.size(); ++i)
            colours[i] = {colormap[3 * i], colormap[3 * i + 1], colormap[3 * i + 2]};
        drawInto(current<lumetra_image>(image), matrix.size(), 8,
                 [&](cv::Mat& target, PixelFormat format) {
                     threadRenderer().applyColormap(matrix, channel.levels, channel.gamma, colours,
                                                    target, format);
                 });
    });
}

int lumetra_count_values(const lumetra_plane* plane, uint64_t* counts, char* reason,
                         size_t reason_bytes) {
    return guarded(reason, reason_bytes, [&] {
        require(counts, "there is no memory for the counts");
        Histogram histogram;
        histogram.add(matrixOf(current<lumetra_plane>(plane)));
        std::transform(histogram.counts().begin(), histogram.counts().end(), counts, counts,
                       std::plus<>());
    });
}

int lumetra_contrast_limits(const uint64_t* counts, int32_t bit_depth, double percent, int32_t* low,
                            int32_t* high, char* reason, size_t reason_bytes) {
    return guarded(reason, reason_bytes, [&] {
        require(counts && low && high, "there are no counts, or no memory for the limits");
        require(bit_depth == 8 || bit_depth == 16, "counts are of 8 or 16 bits");
        require(percent >= 0 && percent < 50, "a share to saturate is from 0 to below 50 percent");
        const Histogram histogram(counts, bit_depth == 8 ? 256 : 65536);
        const auto limits = *levelsOf(histogram, {LevelPolicy::Method::clip, percent, {}});
        *low = limits.low;
        *high = limits.high;
    });
}

int lumetra_dye_at(size_t index, lumetra_dye* dye) {
    return guarded(nullptr, 0, [&] { giveDye(builtInDyes().all().at(index), dye); });
}

int lumetra_find_dye(const char* name, lumetra_dye* dye, char* reason, size_t reason_bytes) {
    return guarded(reason, reason_bytes, [&] {
        require(name, "there is no name");
        giveDye(builtInDyes().at(name), dye);
    });
}

const char* lumetra_colormap_name(size_t index) {
    static thread_local const std::vector<const char*> names = colormapNames();
    return index < names.size() ? names[index] : nullptr;
}

int lumetra_find_colormap(const char* name, uint8_t* colours, char* reason, size_t reason_bytes) {
    return guarded(reason, reason_bytes, [&] {
        require(name && colours, "there is no name, or no memory for the colours");
        const auto colormap = findColormap(name);
        if (!colormap)
            throw RenderError("there is no colormap \"" + std::string(name) + "\"");
        for (const auto [red, green, blue] : *colormap) {
            *colours++ = red;
            *colours++ = green;
            *colours++ = blue;
        }
    });
}
