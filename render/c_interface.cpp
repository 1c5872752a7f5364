#include "render/colormaps.h"
#include "render/dyes.h"
#include "render/image_composite.h"
#include "render/level_policy.h"
#include "render/lumetra_render.h"
#include "render/overlap.h"
#include "render/projection.h"
#include "render/render_error.h"
#include "render/renderer.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <new>
#include <vector>

namespace {

using namespace lumetra;

void writeReason(const char* text, char* reason, std::size_t bytes) {
    if (!reason || bytes == 0)
        return;
    const auto isWithinCharacter = [](char next) {
        return (static_cast<unsigned char>(next) & 0xC0) == 0x80;
    };
    std::size_t length = std::min(std::strlen(text), bytes - 1);
    while (length > 0 && isWithinCharacter(text[length]))
        --length;
    std::memcpy(reason, text, length);
    reason[length] = '\0';
}

/// Runs what may throw, and tells the reason where it does.
template<class Work>
int guarded(char* reason, std::size_t bytes, Work work) noexcept {
    const auto fail = [&](const char* text) -> int {
        writeReason(text, reason, bytes);
        return LUMETRA_FAILED;
    };
    const auto lackMemory = [&]() -> int {
        writeReason("there is not enough memory", reason, bytes);
        return LUMETRA_NO_MEMORY;
    };
    try {
        work();
        return LUMETRA_OK;
    } catch (const RenderError& error) {
        return fail(error.what());
    } catch (const cv::Exception& error) {
        return error.code == cv::Error::StsNoMem ? lackMemory() : fail(error.err.c_str());
    } catch (const std::bad_alloc&) {
        return lackMemory();
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
    constexpr std::size_t mostBytes = 4096; // no version of any structure is as large
    std::size_t size = 0;
    std::memcpy(&size, given, sizeof size);
    require(size > sizeof size && size <= mostBytes, "a structure does not begin with its size");
    Struct known{};
    std::memcpy(&known, given, std::min(size, sizeof known));
    return known;
}

/// The structure behind `given` in an array, whose elements are as large as the first one says.
template<class Struct>
Struct elementOf(const Struct* array, std::size_t i) {
    require(array, "a structure is missing");
    const auto* const place =
        reinterpret_cast<const unsigned char*>(array) + i * array->struct_size;
    require(std::memcmp(place, array, sizeof array->struct_size) == 0,
            "the structures of a list have different sizes");
    return current<Struct>(place);
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
cv::Mat matrixOf(const void* pixels, std::ptrdiff_t step, cv::Size size, int type) {
    const std::size_t rowBytes = static_cast<std::size_t>(size.width) * CV_ELEM_SIZE(type);
    if (isMatrix(pixels, step, rowBytes, CV_ELEM_SIZE1(type)))
        return {size, type, const_cast<void*>(pixels), static_cast<std::size_t>(step)};
    cv::Mat copy(size, type);
    for (int y = 0; y < size.height; ++y)
        std::memcpy(copy.ptr(y), static_cast<const unsigned char*>(pixels) + y * step, rowBytes);
    return copy;
}

cv::Mat matrixOf(const lumetra_plane& plane) {
    require(plane.pixels && plane.width > 0 && plane.height > 0, "a plane has no pixels");
    require(plane.bit_depth == 8 || plane.bit_depth == 16, "a plane has neither 8 nor 16 bits");
    return matrixOf(plane.pixels, plane.row_step, {plane.width, plane.height},
                    plane.bit_depth == 8 ? CV_8UC1 : CV_16UC1);
}

cv::Mat matrixOf(const lumetra_image& image) {
    require(image.pixels && image.width > 0 && image.height > 0, "an image has no pixels");
    require(image.bit_depth == 8 || image.bit_depth == 16, "an image has neither 8 nor 16 bits");
    require(image.format == LUMETRA_BGR || image.format == LUMETRA_RGB,
            "an image to be composited has three components");
    return matrixOf(image.pixels, image.row_step, {image.width, image.height},
                    image.bit_depth == 8 ? CV_8UC3 : CV_16UC3);
}

/// @param given  Planes or images, with their size.
template<class Struct>
std::vector<cv::Mat> matricesOf(const Struct* given, std::size_t count) {
    std::vector<cv::Mat> matrices;
    for (std::size_t i = 0; i < count; ++i)
        matrices.push_back(matrixOf(elementOf(given, i)));
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

int componentsOf(PixelFormat format) { return format == PixelFormat::bgra ? 4 : 3; }

/// Lets `draw` make an image of this type in the caller's memory, or beside it where no matrix can
/// have those rows.
template<class Draw>
void drawInto(const lumetra_image& given, cv::Size size, int type, Draw draw) {
    require(given.width == size.width && given.height == size.height &&
                given.bit_depth == 8 * static_cast<int>(CV_ELEM_SIZE1(type)),
            "the memory for the image has another size or bit depth than the image");
    require(given.pixels, "there is no memory for the image");
    const std::size_t rowBytes = static_cast<std::size_t>(size.width) * CV_ELEM_SIZE(type);
    if (isMatrix(given.pixels, given.row_step, rowBytes, CV_ELEM_SIZE1(type))) {
        cv::Mat image(size, type, given.pixels, static_cast<std::size_t>(given.row_step));
        return draw(image);
    }
    cv::Mat image;
    draw(image);
    for (int y = 0; y < size.height; ++y)
        std::memcpy(static_cast<unsigned char*>(given.pixels) + y * given.row_step, image.ptr(y),
                    rowBytes);
}

/// Projects in strips of a megabyte or two: small enough for what is made of the planes so far to
/// stay in the cache, large enough for each plane to be read ahead.
void project(const std::vector<cv::Mat>& planes, ProjectionMethod method, cv::Mat& result) {
    constexpr int pixelsAtOnce = 1 << 19;
    const int rows = std::max(1, pixelsAtOnce / result.cols);
    for (int first = 0; first < result.rows; first += rows) {
        const cv::Range strip(first, std::min(first + rows, result.rows));
        Projection projection(method);
        for (const cv::Mat& plane : planes)
            projection.add(plane.rowRange(strip));
        cv::Mat part = result.rowRange(strip);
        projection.result().copyTo(part);
    }
}

/// The memory that a thread's images take is kept for its next ones.
Renderer& threadRenderer() {
    static thread_local Renderer renderer;
    return renderer;
}

/// As `threadRenderer`, for counts.
Histogram& emptyThreadHistogram(int depth) {
    static thread_local std::array<Histogram, 2> histograms;
    Histogram& histogram = histograms[depth == CV_8U ? 0 : 1];
    histogram.clear();
    return histogram;
}

ContrastLimits clipped(const Histogram& histogram, double percent) {
    require(percent >= 0 && percent < 50, "a share to saturate is from 0 to below 50 percent");
    return *levelsOf(histogram, {LevelPolicy::Method::clip, percent, {}});
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
    known.source = dye.source.c_str();
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
        const PixelFormat format = formatOf(given);
        const bool is8Bit = format == PixelFormat::bgra || bitDepthOf(matrices, settings) == 8;
        drawInto(
            given, size, CV_MAKETYPE(is8Bit ? CV_8U : CV_16U, componentsOf(format)),
            [&](cv::Mat& target) { threadRenderer().render(matrices, settings, target, format); });
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
        const auto given = current<lumetra_image>(image);
        const PixelFormat format = formatOf(given);
        drawInto(given, matrix.size(), CV_MAKETYPE(CV_8U, componentsOf(format)),
                 [&](cv::Mat& target) {
                     threadRenderer().applyColormap(matrix, channel.levels, channel.gamma, colours,
                                                    target, format);
                 });
    });
}

int lumetra_composite(const lumetra_image* images, const lumetra_channel* channels, size_t count,
                      const lumetra_image* image, char* reason, size_t reason_bytes) {
    return guarded(reason, reason_bytes, [&] {
        const auto given = current<lumetra_image>(image);
        const std::vector<cv::Mat> matrices = matricesOf(images, count);
        const std::vector<Channel> settings = channelsOf(channels, count);
        require(count > 0, "there are no images to show");
        for (std::size_t i = 0; i < count; ++i)
            require(elementOf(images, i).format == given.format,
                    "the images have different pixel formats");
        const cv::Size size = Overlap(matrices.front().size(), settings).imageSize();
        drawInto(given, size, matrices.front().type(),
                 [&](cv::Mat& target) { compositeImages(matrices, settings, target); });
    });
}

int lumetra_project(const lumetra_plane* planes, size_t count, int32_t method,
                    const lumetra_image* image, char* reason, size_t reason_bytes) {
    return guarded(reason, reason_bytes, [&] {
        const auto given = current<lumetra_image>(image);
        require(given.format == LUMETRA_GRAY, "a projection is gray");
        require(method >= LUMETRA_MAX && method <= LUMETRA_SUM,
                "a projection is none of those that there are");
        const std::vector<cv::Mat> matrices = matricesOf(planes, count);
        require(count > 0, "there are no planes to project");
        const cv::Mat& first = matrices.front();
        for (const cv::Mat& matrix : matrices)
            require(matrix.size() == first.size(), "the planes have different sizes");
        const int type = method == LUMETRA_SUM ? CV_16UC1 : first.type();
        drawInto(given, first.size(), type, [&](cv::Mat& target) {
            target.create(first.size(), type);
            project(matrices, static_cast<ProjectionMethod>(method), target);
        });
    });
}

int lumetra_count_values(const lumetra_plane* plane, uint64_t* counts, char* reason,
                         size_t reason_bytes) {
    return guarded(reason, reason_bytes, [&] {
        require(counts, "there is no memory for the counts");
        countValues(matrixOf(current<lumetra_plane>(plane)), counts);
    });
}

int lumetra_contrast_limits(const uint64_t* counts, int32_t bit_depth, double percent, int32_t* low,
                            int32_t* high, char* reason, size_t reason_bytes) {
    return guarded(reason, reason_bytes, [&] {
        require(counts && low && high, "there are no counts, or no memory for the limits");
        require(bit_depth == 8 || bit_depth == 16, "counts are of 8 or 16 bits");
        const auto limits = clipped({counts, bit_depth == 8 ? 256U : 65536U}, percent);
        *low = limits.low;
        *high = limits.high;
    });
}

int lumetra_measure_limits(const lumetra_plane* plane, double percent, int32_t* low, int32_t* high,
                           char* reason, size_t reason_bytes) {
    return guarded(reason, reason_bytes, [&] {
        require(low && high, "there is no memory for the limits");
        const cv::Mat matrix = matrixOf(current<lumetra_plane>(plane));
        Histogram& histogram = emptyThreadHistogram(matrix.depth());
        histogram.add(matrix);
        const auto limits = clipped(histogram, percent);
        *low = limits.low;
        *high = limits.high;
    });
}

int lumetra_parse_level_policy(const char* text, lumetra_level_policy* policy, char* reason,
                               size_t reason_bytes) {
    return guarded(reason, reason_bytes, [&] {
        require(text, "there is no text");
        auto known = current<lumetra_level_policy>(policy);
        const LevelPolicy parsed = parseLevelPolicy(text);
        const auto limits = parsed.known();
        require(limits || parsed.method != LevelPolicy::Method::fixed,
                "contrast limits of 8- and 16-bit planes are whole numbers from 0 to 65535");
        known.method = static_cast<std::int32_t>(parsed.method);
        known.low = limits ? limits->low : 0;
        known.high = limits ? limits->high : 0;
        known.percent = parsed.percent;
        giveBack(known, policy);
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

int lumetra_nearest_dye(double emission, lumetra_dye* dye, char* reason, size_t reason_bytes) {
    return guarded(reason, reason_bytes, [&] {
        require(std::isfinite(emission) && emission > 0,
                "an emission wavelength is a number of nanometres");
        giveDye(builtInDyes().nearestByEmission(emission), dye);
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
