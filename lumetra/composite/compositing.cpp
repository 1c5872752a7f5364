#include "lumetra/composite/compositing.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace lumetra {
namespace {

template<class Value>
Value saturatedSum(Value a, Value b) {
    const auto room = static_cast<Value>(std::numeric_limits<Value>::max() - a);
    return static_cast<Value>(a + std::min(b, room));
}

template<class Value>
void addSaturated(const Value* __restrict values, Value* __restrict sums, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        sums[i] = saturatedSum(sums[i], values[i]);
}

template<class Value>
void sumOfTwo(const Value* first, const Value* second, Value* __restrict sums, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        sums[i] = saturatedSum(first[i], second[i]);
}

/// The sum in pieces of a row so short that the processor keeps fetching all parts ahead.
template<class Value>
void sumRows(const std::vector<cv::Mat>& parts, cv::Mat& canvas) {
    constexpr std::size_t pieceValues = 1024;
    const auto rowValues = static_cast<std::size_t>(canvas.cols) * 3;
    for (int y = 0; y < canvas.rows; ++y) {
        for (std::size_t first = 0; first < rowValues; first += pieceValues) {
            const std::size_t count = std::min(pieceValues, rowValues - first);
            const auto values = [&](std::size_t k) { return parts[k].ptr<Value>(y) + first; };
            auto* const sums = canvas.ptr<Value>(y) + first;
            if (values(0) == sums)
                addSaturated(values(1), sums, count);
            else
                sumOfTwo(values(0), values(1), sums, count);
            for (std::size_t k = 2; k < parts.size(); ++k)
                addSaturated(values(k), sums, count);
        }
    }
}

} // namespace

Alignment::Alignment(const std::vector<cv::Point>& offsets)
    : minX_(offsets.front().x), maxX_(minX_), minY_(offsets.front().y), maxY_(minY_) {
    for (const cv::Point& offset : offsets) {
        minX_ = std::min<std::int64_t>(minX_, offset.x);
        maxX_ = std::max<std::int64_t>(maxX_, offset.x);
        minY_ = std::min<std::int64_t>(minY_, offset.y);
        maxY_ = std::max<std::int64_t>(maxY_, offset.y);
    }
}

cv::Mat Alignment::visiblePart(const cv::Mat& image, cv::Point offset,
                               const cv::Mat& canvas) const {
    // Only a canvas with pixels bounds the differences: they are then below the image's size.
    if (canvas.empty())
        return {};
    return image(cv::Rect(static_cast<int>(firstColumn(offset)), static_cast<int>(firstRow(offset)),
                          canvas.cols, canvas.rows));
}

void composite(const std::vector<cv::Mat>& parts, cv::Mat& canvas) {
    if (canvas.depth() == CV_8U)
        sumRows<unsigned char>(parts, canvas);
    else if (canvas.depth() == CV_16U)
        sumRows<unsigned short>(parts, canvas);
    else
        canvas.setTo(cv::Scalar::all(0));
}

} // namespace lumetra
