// The C interface, as other languages call it: structures of any size and content, rows in any
// order and distance, missing pointers. What it accepts has the pixels that the classes behind it
// give, what it refuses has a reason, and nothing beside the caller's memory is touched.

#include "fuzz/input.h"
#include "render/colormaps.h"
#include "render/image_composite.h"
#include "render/lumetra_render.h"
#include "render/projection.h"
#include "render/renderer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

bool seldom(FuzzedDataProvider& input) { return number(input, 0, 15) == 15; }

std::int32_t anyNumber(FuzzedDataProvider& input, int least, int most) {
    return seldom(input) ? input.ConsumeIntegral<std::int32_t>() : number(input, least, most);
}

double anyDouble(FuzzedDataProvider& input, double least, double most) {
    return seldom(input) ? input.ConsumeFloatingPoint<double>()
                         : input.ConsumeFloatingPointInRange(least, most);
}

/// Structures in memory of exactly their size, which is not always that of this version.
template<class Struct>
class Structures {
public:
    /// @param whole  What they would be in this version, `struct_size` not yet set.
    Structures(FuzzedDataProvider& input, const std::vector<Struct>& whole)
        : isMissing_(seldom(input)) {
        const bool isOther = seldom(input);
        const auto stride = isOther ? static_cast<std::size_t>(number(input, 1, 4200)) : usual;
        const std::size_t room = std::max(stride, sizeof stride); // which tells the stride at least
        memory_.resize(whole.size() * room, 0xA5);
        if (!whole.empty() && (isMissing_ || !isSize(stride)))
            seen_.reset();
        for (std::size_t i = 0; i < whole.size(); ++i) {
            Struct each = whole[i];
            each.struct_size = stride;
            if (i > 0 && seldom(input)) {
                each.struct_size = input.ConsumeIntegral<std::size_t>();
                if (each.struct_size != stride)
                    seen_.reset();
            }
            unsigned char* place = memory_.data() + i * room;
            std::memcpy(place, &each, std::min(room, usual));
            if (seen_)
                std::memcpy(&seen_->emplace_back(), place, std::min(stride, usual));
        }
    }

    Struct* data() { return isMissing_ ? nullptr : reinterpret_cast<Struct*>(memory_.data()); }

    /// What this version must take them for, members that are not there as zero; none if it must
    /// refuse them.
    const std::optional<std::vector<Struct>>& seen() const { return seen_; }

private:
    static constexpr std::size_t usual = sizeof(Struct);
    static bool isSize(std::size_t size) { return size > sizeof size && size <= 4096; }

    bool isMissing_;
    Bytes memory_;
    std::optional<std::vector<Struct>> seen_ = std::vector<Struct>{};
};

std::ptrdiff_t anyStep(FuzzedDataProvider& input, std::ptrdiff_t rowBytes, int height) {
    if (height == 1 && seldom(input))
        return input.ConsumeIntegral<std::ptrdiff_t>(); // there is no other row to go to
    const std::ptrdiff_t step = seldom(input)
                                    ? number(input, 0, 300)
                                    : rowBytes + number(input, 0, 1) * number(input, 1, 9);
    return input.ConsumeBool() ? -step : step;
}

/// Rows of pixels in any order, in memory of exactly their size.
class Rows {
public:
    Rows(FuzzedDataProvider& input, int width, int height, int bytesOfPixel)
        : rows_(std::clamp(height, 0, 64)),
          rowBytes_(std::ptrdiff_t{std::clamp(width, 0, 64)} * bytesOfPixel),
          step(anyStep(input, rowBytes_, rows_)) {
        const std::ptrdiff_t reach = rows_ > 1 ? step * (rows_ - 1) : 0;
        start_ = std::max<std::ptrdiff_t>(0, -reach) + number(input, 0, 1);
        memory_.resize(static_cast<std::size_t>(start_ + std::max<std::ptrdiff_t>(0, reach) +
                                                (rows_ > 0 ? rowBytes_ : 0)));
        memory_.shrink_to_fit();
    }

    unsigned char* first() { return memory_.data() + start_; }
    unsigned char* row(int y) { return first() + y * step; }

    void fill(FuzzedDataProvider& input) {
        const Bytes some =
            input.ConsumeBytes<unsigned char>(static_cast<std::size_t>(number(input, 1, 300)));
        for (std::size_t i = 0; i < memory_.size() && !some.empty(); ++i)
            memory_[i] = some[i * 7 / 5 % some.size()];
    }

    cv::Mat matrix(int type) {
        cv::Mat copy(rows_, static_cast<int>(rowBytes_) / CV_ELEM_SIZE(type), type);
        for (int y = 0; y < copy.rows; ++y)
            std::memcpy(copy.ptr(y), row(y), static_cast<std::size_t>(rowBytes_));
        return copy;
    }

    bool overlap() const { return rows_ > 1 && std::abs(step) < rowBytes_; }

private:
    int rows_;
    std::ptrdiff_t rowBytes_, start_ = 0;
    Bytes memory_;

public:
    const std::ptrdiff_t step;
};

/// The caller's memory for a reason, of any size.
class ReasonBuffer {
public:
    explicit ReasonBuffer(FuzzedDataProvider& input)
        : text_(static_cast<std::size_t>(number(input, 0, 120)), 'x'), isMissing_(seldom(input)) {}

    char* data() { return isMissing_ ? nullptr : text_.data(); }
    std::size_t size() const { return text_.size(); }

    void check(int result, bool isExpected) const {
        require(result == (isExpected ? LUMETRA_OK : LUMETRA_FAILED), "ended otherwise");
        if (result == LUMETRA_OK || isMissing_ || text_.empty())
            return;
        const auto end = std::find(text_.begin(), text_.end(), '\0');
        require(end != text_.end(), "a reason without an end");
        require(end != text_.begin() || text_.size() < 5, "a failure without a reason");
    }

private:
    std::vector<char> text_;
    bool isMissing_;
};

/// Planes and their memory.
struct Planes {
    std::vector<Rows> rows;
    std::vector<lumetra_plane> structures;
};

Planes anyPlanes(FuzzedDataProvider& input, int count) {
    Planes planes;
    const int width = number(input, 1, 40), height = number(input, 1, 8);
    const int bits = input.ConsumeBool() ? 16 : 8;
    for (int i = 0; i < count; ++i) {
        const int depth = seldom(input) ? 24 - bits : bits;
        const int columns = seldom(input) ? number(input, -3, 40) : width;
        const int lines = seldom(input) ? number(input, -3, 8) : height;
        Rows& rows = planes.rows.emplace_back(input, columns, lines, depth / 8);
        rows.fill(input);
        planes.structures.push_back({0, seldom(input) ? nullptr : rows.first(), rows.step, columns,
                                     lines, seldom(input) ? number(input, 0, 32) : depth});
        if (const int told = planes.structures.back().bit_depth; told != 8 && told != depth)
            planes.structures.back().bit_depth = told == 16 ? 8 : told; // within the memory
    }
    return planes;
}

lumetra_channel anyChannel(FuzzedDataProvider& input) {
    const int most = seldom(input) ? std::numeric_limits<int>::max() : 5;
    lumetra_channel channel{};
    for (std::int32_t* each : {&channel.red, &channel.green, &channel.blue})
        *each = anyNumber(input, 0, 255);
    channel.offset_x = anyNumber(input, -most, most);
    channel.offset_y = anyNumber(input, -1, 1);
    channel.has_limits = number(input, 0, 3);
    channel.low = anyNumber(input, 0, 300);
    channel.high = anyNumber(input, 200, 65535);
    channel.hidden = number(input, 0, 7) == 7 ? -1 : 0;
    channel.gamma = input.ConsumeBool() ? 1 : anyDouble(input, 0, 3);
    channel.blend = anyNumber(input, 0, 2);
    return channel;
}

std::vector<lumetra_channel> anyChannels(FuzzedDataProvider& input, int count) {
    std::vector<lumetra_channel> channels(static_cast<std::size_t>(count));
    for (lumetra_channel& channel : channels)
        channel = anyChannel(input);
    return channels;
}

/// What the classes behind the interface take for such channels; none if any of them is none.
std::optional<std::vector<lumetra::Channel>>
channelsOf(const std::optional<std::vector<lumetra_channel>>& given) {
    if (!given)
        return {};
    const auto isWithin = [](auto value, auto least, auto most) {
        return value >= least && value <= most;
    };
    std::vector<lumetra::Channel> channels;
    for (const lumetra_channel& each : *given) {
        const double gamma = each.gamma == 0 ? 1 : each.gamma;
        if (!isWithin(each.red, 0, 255) || !isWithin(each.green, 0, 255) ||
            !isWithin(each.blue, 0, 255) || !isWithin(each.blend, 0, 2) ||
            !isWithin(gamma, 0.01, 100.0))
            return {};
        if (each.has_limits != 0 && !(each.low >= 0 && each.low < each.high && each.high <= 65535))
            return {};
        lumetra::Channel& channel = channels.emplace_back();
        channel.colour = {static_cast<std::uint8_t>(each.red),
                          static_cast<std::uint8_t>(each.green),
                          static_cast<std::uint8_t>(each.blue)};
        channel.offset = {each.offset_x, each.offset_y};
        channel.visible = each.hidden == 0;
        channel.gamma = gamma;
        channel.blend = static_cast<lumetra::Blend>(each.blend);
        if (each.has_limits != 0)
            channel.levels = lumetra::ContrastLimits{each.low, each.high};
    }
    return channels;
}

/// The pixels of structures; none if any of them has none.
template<class Struct>
std::optional<std::vector<cv::Mat>> matricesOf(const std::optional<std::vector<Struct>>& seen,
                                               std::vector<Rows>& rows, int components) {
    if (!seen)
        return {};
    std::vector<cv::Mat> matrices;
    for (std::size_t i = 0; i < seen->size(); ++i) {
        const Struct& each = (*seen)[i];
        if (!each.pixels || each.width <= 0 || each.height <= 0 ||
            (each.bit_depth != 8 && each.bit_depth != 16))
            return {};
        cv::Mat& matrix = matrices.emplace_back(
            each.height, each.width, CV_MAKETYPE(each.bit_depth == 8 ? CV_8U : CV_16U, components));
        for (int y = 0; y < matrix.rows; ++y) // by the step that is seen, which may be none
            std::memcpy(matrix.ptr(y), rows[i].first() + y * each.row_step,
                        matrix.elemSize() * static_cast<std::size_t>(matrix.cols));
    }
    return matrices;
}

/// What `draw` makes; none where it throws.
template<class Draw>
std::optional<cv::Mat> drawn(Draw draw) {
    try {
        cv::Mat image;
        draw(image);
        return image;
    } catch (const std::exception&) {
        return {};
    }
}

/// Lets `call` fill memory for an image, mostly of the right size, and compares.
template<class Call>
void checkImage(FuzzedDataProvider& input, const std::optional<cv::Mat>& expected, int format,
                Call call) {
    const bool isOther = !expected || seldom(input);
    lumetra_image image{0, nullptr, 0, 0, 0, 0, format};
    image.width = isOther ? anyNumber(input, -1, 40) : expected->cols;
    image.height = isOther ? anyNumber(input, -1, 8) : expected->rows;
    image.bit_depth = isOther ? number(input, 7, 17) : expected->depth() == CV_8U ? 8 : 16;
    const int bytes = expected ? static_cast<int>(expected->elemSize()) : 8;
    Rows rows(input, image.width, image.height, bytes);
    image.pixels = seldom(input) ? nullptr : rows.first();
    image.row_step = rows.step;
    Structures<lumetra_image> given(input, {image});
    const auto seen = given.seen();
    const bool isRight = expected && seen && seen->front().pixels &&
                         seen->front().format == format && seen->front().width == expected->cols &&
                         seen->front().height == expected->rows &&
                         seen->front().bit_depth == (expected->depth() == CV_8U ? 8 : 16);
    ReasonBuffer reason(input);
    reason.check(call(given.data(), reason.data(), reason.size()), isRight);
    if (isRight && !rows.overlap())
        require(sameImage(rows.matrix(expected->type()), *expected), "wrong pixels");
}

void checkSize(FuzzedDataProvider& input, Structures<lumetra_plane>& planes,
               Structures<lumetra_channel>& channels, std::size_t count, int format,
               const std::optional<cv::Mat>& expected) {
    Structures<lumetra_image> given(input, {{0, nullptr, 0, -7, -7, -7, format}});
    ReasonBuffer reason(input);
    const int result = lumetra_image_size(planes.data(), channels.data(), count, given.data(),
                                          reason.data(), reason.size());
    if (!expected || !given.seen() || given.seen()->front().format != format)
        return;
    reason.check(result, true);
    lumetra_image told{};
    std::memcpy(&told, given.data(), std::min(given.data()->struct_size, sizeof told));
    require(told.width == expected->cols && told.height == expected->rows &&
                told.bit_depth == (expected->depth() == CV_8U ? 8 : 16),
            "another size than the image has");
}

void checkRender(FuzzedDataProvider& input) {
    const int count = number(input, 0, 4), format = number(input, -1, 4);
    Planes made = anyPlanes(input, count);
    Structures planes(input, made.structures);
    Structures channels(input, anyChannels(input, count));
    const auto matrices = matricesOf(planes.seen(), made.rows, 1);
    const auto settings = channelsOf(channels.seen());
    std::optional<cv::Mat> expected;
    if (matrices && settings && format >= LUMETRA_BGR && format <= LUMETRA_BGRA)
        expected = drawn([&](cv::Mat& image) {
            lumetra::Renderer().render(*matrices, *settings, image,
                                       static_cast<lumetra::PixelFormat>(format));
        });
    const auto n = static_cast<std::size_t>(count);
    checkSize(input, planes, channels, n, format, expected);
    checkImage(input, expected, format, [&](auto* image, char* reason, std::size_t bytes) {
        return lumetra_render(planes.data(), channels.data(), n, image, reason, bytes);
    });
}

void checkColormap(FuzzedDataProvider& input) {
    const int format = number(input, -1, 4);
    Planes made = anyPlanes(input, 1);
    Structures planes(input, made.structures);
    Structures channels(input, anyChannels(input, 1));
    const auto matrices = matricesOf(planes.seen(), made.rows, 1);
    const auto settings = channelsOf(channels.seen());
    const bool isMissing = seldom(input);
    const lumetra::Colormap colormap = lumetra::oklabColormap();
    Bytes colours;
    for (const auto [red, green, blue] : colormap)
        colours.insert(colours.end(), {red, green, blue});
    colours.shrink_to_fit();
    std::optional<cv::Mat> expected;
    if (matrices && settings && !isMissing && format >= LUMETRA_BGR && format <= LUMETRA_BGRA)
        expected = drawn([&](cv::Mat& image) {
            const lumetra::Channel& channel = settings->front();
            lumetra::Renderer().applyColormap(matrices->front(), channel.levels, channel.gamma,
                                              colormap, image,
                                              static_cast<lumetra::PixelFormat>(format));
        });
    checkImage(input, expected, format, [&](auto* image, char* reason, std::size_t bytes) {
        return lumetra_apply_colormap(planes.data(), channels.data(),
                                      isMissing ? nullptr : colours.data(), image, reason, bytes);
    });
}

void checkComposite(FuzzedDataProvider& input) {
    const int count = number(input, 0, 4), format = number(input, -1, 4);
    const int width = number(input, 1, 40), height = number(input, 1, 8);
    const int bits = input.ConsumeBool() ? 16 : 8;
    std::vector<Rows> rows;
    std::vector<lumetra_image> structures;
    bool areAlike = true;
    for (int i = 0; i < count; ++i) {
        const int columns = seldom(input) ? number(input, 1, 40) : width;
        Rows& each = rows.emplace_back(input, columns, height, bits / 8 * 3);
        each.fill(input);
        const int its = seldom(input) ? number(input, -1, 4) : format;
        structures.push_back({0, seldom(input) ? nullptr : each.first(), each.step, columns, height,
                              seldom(input) ? 8 : bits, its});
    }
    Structures images(input, structures);
    Structures channels(input, anyChannels(input, count));
    const auto matrices = matricesOf(images.seen(), rows, 3);
    const auto settings = channelsOf(channels.seen());
    if (matrices)
        for (const lumetra_image& each : *images.seen())
            areAlike = areAlike && each.format == format;
    std::optional<cv::Mat> expected;
    if (matrices && settings && areAlike && (format == LUMETRA_BGR || format == LUMETRA_RGB))
        expected =
            drawn([&](cv::Mat& image) { lumetra::compositeImages(*matrices, *settings, image); });
    const auto n = static_cast<std::size_t>(count);
    checkImage(input, expected, format, [&](auto* image, char* reason, std::size_t bytes) {
        return lumetra_composite(images.data(), channels.data(), n, image, reason, bytes);
    });
}

void checkProjection(FuzzedDataProvider& input) {
    const int count = number(input, 0, 5), method = anyNumber(input, 0, 2);
    const int format = seldom(input) ? number(input, -1, 5) : LUMETRA_GRAY;
    Planes made = anyPlanes(input, count);
    Structures planes(input, made.structures);
    const auto matrices = matricesOf(planes.seen(), made.rows, 1);
    std::optional<cv::Mat> expected;
    if (matrices && format == LUMETRA_GRAY && method >= LUMETRA_MAX && method <= LUMETRA_SUM)
        expected = drawn([&](cv::Mat& image) {
            lumetra::Projection projection(static_cast<lumetra::ProjectionMethod>(method));
            for (const cv::Mat& matrix : *matrices)
                projection.add(matrix);
            image = projection.result();
        });
    checkImage(input, expected, format, [&](auto* image, char* reason, std::size_t bytes) {
        return lumetra_project(planes.data(), static_cast<std::size_t>(count), method, image,
                               reason, bytes);
    });
}

void checkLimits(FuzzedDataProvider& input) {
    Planes made = anyPlanes(input, 1);
    Structures planes(input, made.structures);
    const auto matrices = matricesOf(planes.seen(), made.rows, 1);
    const double percent = anyDouble(input, -1, 51);
    const bool isShare = percent >= 0 && percent < 50, isMissing = seldom(input);
    std::int32_t low = -1, high = -1, lowOfCounts = -1, highOfCounts = -1;
    ReasonBuffer reason(input);
    reason.check(lumetra_measure_limits(planes.data(), percent, &low, isMissing ? nullptr : &high,
                                        reason.data(), reason.size()),
                 matrices && isShare && !isMissing);

    const int bits = matrices && matrices->front().depth() == CV_16U ? 16 : 8;
    std::vector<std::uint64_t> counts(bits == 8 ? 256 : 65536);
    reason.check(lumetra_count_values(planes.data(), counts.data(), reason.data(), reason.size()),
                 matrices.has_value());
    const auto limitsOfCounts = [&](int depth) {
        return lumetra_contrast_limits(counts.data(), depth, percent, &lowOfCounts, &highOfCounts,
                                       reason.data(), reason.size());
    };
    reason.check(limitsOfCounts(bits), isShare);
    if (matrices && isShare && !isMissing)
        require(low == lowOfCounts && high == highOfCounts && 0 <= low && low < high &&
                    high < (1 << bits),
                "limits that are none");
    reason.check(limitsOfCounts(input.ConsumeIntegralInRange(9, 15)), false);
    for (int left = number(input, 0, 6); left > 0; --left) // as if of very many planes
        counts[input.ConsumeIntegral<std::uint16_t>() % counts.size()] =
            input.ConsumeIntegral<std::uint64_t>();
    reason.check(limitsOfCounts(bits), isShare);
    require(!isShare ||
                (0 <= lowOfCounts && lowOfCounts < highOfCounts && highOfCounts < 1 << bits),
            "limits that are none");
}

/// A part of a text in UTF-8 that was cut between two characters, or all of it.
bool isCutBetweenCharacters(const std::string& whole, const char* part) {
    const std::size_t length = std::strlen(part);
    return whole.compare(0, length, part) == 0 &&
           (length == whole.size() || (static_cast<unsigned char>(whole[length]) & 0xC0) != 0x80);
}

void checkTexts(FuzzedDataProvider& input) {
    const int kind = number(input, 0, 3);
    const auto bytes = static_cast<std::size_t>(number(input, 1, 90));
    const double emission = anyDouble(input, -10, 2000);
    Structures<lumetra_dye> dyes(input, {lumetra_dye{}});
    Structures<lumetra_level_policy> policies(input, {lumetra_level_policy{}});
    Bytes colours(768);
    const std::size_t index = input.ConsumeBool() ? input.ConsumeIntegral<std::size_t>() : bytes;
    const std::string text = input.ConsumeBytesAsString(200);
    const auto call = [&](char* reason, std::size_t size) {
        switch (kind) {
        case 0:
            return lumetra_find_dye(text.c_str(), dyes.data(), reason, size);
        case 1:
            return lumetra_nearest_dye(emission, dyes.data(), reason, size);
        case 2:
            return lumetra_parse_level_policy(text.c_str(), policies.data(), reason, size);
        default:
            return lumetra_find_colormap(text.c_str(), colours.data(), reason, size);
        }
    };
    std::vector<char> whole(100000), cut(bytes);
    const int result = call(whole.data(), whole.size());
    require(call(cut.data(), cut.size()) == result && call(nullptr, bytes) == result,
            "the memory for the reason changes the result");
    if (kind == 1)
        require((result == LUMETRA_OK) == (dyes.seen() && std::isfinite(emission) && emission > 0),
                "ended otherwise");
    if (kind == 2 && result == LUMETRA_OK) {
        lumetra_level_policy policy{};
        std::memcpy(&policy, policies.data(),
                    std::min(policies.data()->struct_size, sizeof policy));
        require(policy.method >= LUMETRA_CLIP && policy.method <= LUMETRA_KEEP_VALUES, "no method");
        require(policy.method != LUMETRA_FIXED || policies.data()->struct_size < sizeof policy ||
                    (0 <= policy.low && policy.low < policy.high && policy.high <= 65535),
                "limits that are none");
    }
    if (result != LUMETRA_OK)
        require(isCutBetweenCharacters(whole.data(), cut.data()),
                "a reason cut within a character");
    lumetra_dye_at(index, dyes.data());
    lumetra_colormap_name(index);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    constexpr std::array checks{checkRender,     checkRender, checkColormap, checkComposite,
                                checkProjection, checkLimits, checkTexts};
    checks.at(static_cast<std::size_t>(number(input, 0, static_cast<int>(checks.size()) - 1)))(
        input);
    return 0;
}
