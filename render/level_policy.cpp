#include "render/level_policy.h"

#include "render/parsed_number.h"
#include "render/render_error.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace lumetra {
namespace {

constexpr std::string_view clipPrefix = "clip:";

std::string quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

/// The shortest text that stands for this number, without an exponent where it has few digits.
std::string shortest(double number) {
    constexpr double manyDigits = 1e9;
    std::array<char, 32> text{};
    const bool isPlain = number == std::floor(number) && std::abs(number) < manyDigits;
    const auto [end, error] =
        std::to_chars(text.data(), text.data() + text.size(), number,
                      isPlain ? std::chars_format::fixed : std::chars_format::general);
    return {text.data(), end};
}

double parsePercent(std::string_view text) {
    const auto percent = parsed<double>(text.substr(clipPrefix.size()));
    if (!percent || !(*percent >= 0 && *percent < 50))
        throw RenderError(quoted(text) + ": the share of pixels to saturate at each end is a "
                                         "percentage from 0 to below 50");
    return *percent;
}

ValueLimits parseLimits(std::string_view text) {
    const std::size_t colon = text.find(':');
    const auto low = parsed<double>(text.substr(0, colon));
    const auto high = parsed<double>(text.substr(colon + 1));
    if (!low || !high || !std::isfinite(*low) || !std::isfinite(*high) || *low >= *high)
        throw RenderError(quoted(text) + " is not a range LOW:HIGH of two numbers, LOW below HIGH");
    return {*low, *high};
}

bool isWhole16(double value) { return value >= 0 && value <= 65535 && value == std::floor(value); }

} // namespace

std::optional<ContrastLimits> LevelPolicy::known() const {
    if (method != Method::fixed || !isWhole16(limits.low) || !isWhole16(limits.high))
        return std::nullopt;
    return ContrastLimits{static_cast<int>(limits.low), static_cast<int>(limits.high)};
}

std::string LevelPolicy::text() const {
    switch (method) {
    case Method::none:
        return "none";
    case Method::fixed:
        return shortest(limits.low) + ":" + shortest(limits.high);
    case Method::clip:
        break;
    }
    return percent == 0 ? "auto" : std::string(clipPrefix) + shortest(percent);
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
