#include "render/framing.h"

#include "render/parsed_number.h"
#include "render/render_error.h"
#include "render/shrink.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <string>

namespace lumetra {
namespace {

std::optional<int> parsedSide(std::string_view text) {
    const auto side = parsed<int>(text);
    return side && *side >= 1 ? side : std::nullopt;
}

std::string text(cv::Size size) {
    return std::to_string(size.width) + " x " + std::to_string(size.height) + " pixels";
}

void requireInside(cv::Rect crop, cv::Size image) {
    const std::int64_t right = std::int64_t{crop.x} + crop.width;
    const std::int64_t bottom = std::int64_t{crop.y} + crop.height;
    if (crop.x < 0 || crop.y < 0 || crop.width < 1 || crop.height < 1 || right > image.width ||
        bottom > image.height)
        throw RenderError("the crop of " + text(crop.size()) + " at " + std::to_string(crop.x) +
                          "," + std::to_string(crop.y) + " does not lie within the image of " +
                          text(image));
}

int scaled(int side, double factor) {
    return static_cast<int>(std::max(1.0, std::round(side * factor)));
}

cv::Size targetOf(const TargetSize& target, cv::Size image) {
    if (target.width == 0)
        return {scaled(image.width, target.percent / 100),
                scaled(image.height, target.percent / 100)};
    if (target.height > 0 || target.width > image.width) // beyond is refused as it is
        return {target.width, std::max(target.height, 1)};
    return {target.width, scaled(image.height, static_cast<double>(target.width) / image.width)};
}

} // namespace

cv::Size Framing::sizeOf(cv::Size image) const {
    if (crop)
        requireInside(*crop, image);
    const cv::Size cut = crop ? crop->size() : image;
    if (!size)
        return cut;
    const cv::Size target = targetOf(*size, cut);
    if (target.width < 1 || target.height < 1 || target.width > cut.width ||
        target.height > cut.height)
        throw RenderError("an image of " + text(cut) + " is not enlarged, to a width of " +
                          std::to_string(target.width) +
                          (size->height > 0 ? " and a height of " + std::to_string(target.height)
                                            : std::string()));
    return target;
}

double Framing::columnsInPixel(cv::Size image) const {
    const int columns = sizeOf(image).width;
    return static_cast<double>(crop ? crop->width : image.width) / columns;
}

bool Framing::keepsShape(cv::Size image) const {
    const cv::Size target = sizeOf(image);
    const cv::Size cut = crop ? crop->size() : image;
    const double rows = static_cast<double>(cut.height) * target.width / cut.width;
    return std::abs(rows - target.height) <= 1;
}

void Framing::apply(const cv::Mat& image, cv::Mat& result) const {
    const cv::Size target = sizeOf(image.size());
    const cv::Mat part = crop ? image(*crop) : image;
    if (part.size() == target)
        part.copyTo(result);
    else
        shrink(part, target, result);
}

cv::Rect parseCrop(std::string_view text) {
    std::array<int, 4> numbers{};
    std::string_view rest = text;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const std::size_t end = i + 1 < numbers.size() ? rest.find(',') : rest.size();
        const auto number = parsed<int>(rest.substr(0, end));
        if (end == std::string_view::npos || !number || *number < (i < 2 ? 0 : 1))
            throw RenderError("\"" + std::string(text) +
                              "\" is not X,Y,W,H: whole numbers, X and Y from 0, W and H from 1");
        numbers[i] = *number;
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return {numbers[0], numbers[1], numbers[2], numbers[3]};
}

TargetSize parseTargetSize(std::string_view text) {
    const std::size_t cross = text.find('x');
    if (!text.empty() && text.back() == '%') {
        const auto percent = parsed<double>(text.substr(0, text.size() - 1));
        if (percent && *percent > 0 && *percent <= 100)
            return {0, 0, *percent};
    } else if (const auto width = parsedSide(text.substr(0, cross))) {
        if (cross == std::string_view::npos)
            return {*width, 0, 0};
        if (const auto height = parsedSide(text.substr(cross + 1)))
            return {*width, *height, 0};
    }
    throw RenderError("\"" + std::string(text) +
                      "\" is not a size W, WxH or PERCENT%, whole numbers from 1 or a percentage "
                      "above 0 and at most 100");
}

} // namespace lumetra
