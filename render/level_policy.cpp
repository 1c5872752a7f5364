#include "render/level_policy.h"

#include "render/parsed_number.h"
#include "render/render_error.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace lumetra {
namespace {

constexpr std::string_view clipPrefix = "clip:";

std::string quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

/// The shortest text that stands for this number.
std::string shortest(double number) {
    std::array<char, 32> text{};
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), end};
}

double parsePercent(std::string_view text) {
    const auto percent = parsed<double>(text.substr(clipPrefix.size()));
    if (!percent || !(*percent >= 0 && *percent < 50))
        throw RenderError(quoted(text) + ": the share of pixels to saturate at each end is a "
                                         "percentage from 0 to below 50");
    return *percent;
}

} // namespace

std::string LevelPolicy::text() const {
    switch (method) {
    case Method::none:
        return "none";
    case Method::fixed:
        return std::to_string(limits.low) + ":" + std::to_string(limits.high);
    case Method::clip:
        break;
    }
    return percent == 0 ? "auto" : std::string(clipPrefix) + shortest(percent);
}

ContrastLimits parseLimits(std::string_view text) {
    constexpr std::size_t mostDigits = 5;
    const std::size_t colon = text.find(':');
    const auto number = [&](std::string_view digits) {
        return digits.size() <= mostDigits ? parsed<unsigned short>(digits) : std::nullopt;
    };
    const auto low = number(text.substr(0, colon));
    const auto high =
        colon < text.size() ? number(text.substr(colon + 1)) : std::optional<unsigned short>();
    if (!low || !high || *low >= *high)
        throw RenderError(quoted(text) + " is not a range LOW:HIGH within 0:65535");
    return {*low, *high};
}

LevelPolicy parseLevelPolicy(std::string_view text) {
    if (text == "none")
        return {LevelPolicy::Method::none, 0, {}};
    if (text == "auto")
        return {LevelPolicy::Method::clip, 0, {}};
    if (text.substr(0, clipPrefix.size()) == clipPrefix)
        return {LevelPolicy::Method::clip, parsePercent(text), {}};
    if (text.find(':') != std::string_view::npos)
        return LevelPolicy::fixedTo(parseLimits(text));
    throw RenderError(quoted(text) + ": contrast limits are auto, clip:PERCENT, LOW:HIGH or none");
}

std::optional<ContrastLimits> levelsOf(const Histogram& histogram, const LevelPolicy& policy) {
    if (!policy.isMeasured())
        return policy.known();
    const ContrastLimits limits = histogram.clipped(policy.percent);
    if (limits.low < limits.high)
        return limits;
    const ContrastLimits range = histogram.range();
    if (limits.high < range.high)
        return ContrastLimits{limits.low, range.high};
    if (range.low < limits.low)
        return ContrastLimits{range.low, limits.high};
    const int largest = histogram.bitDepth() == 8 ? 255 : 65535;
    return ContrastLimits{std::max(limits.low, 1) - 1, std::min(limits.high, largest - 1) + 1};
}

} // namespace lumetra
