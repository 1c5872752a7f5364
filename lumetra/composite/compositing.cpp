#include "lumetra/composite/compositing.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

namespace lumetra {
namespace {

template<class Value>
Value saturatedSum(Value a, Value b) {
    const auto room = static_cast<Value>(std::numeric_limits<Value>::max() - a);
    return static_cast<Value>(a + std::min(b, room));
}

/// Makes `sums` what is in it already, or the first row, and all the other rows.
template<bool isBegun, std::size_t others, class Value>
void sumLoop(const Value* first, const std::array<const Value*, 3>& rows, Value* __restrict sums,
             std::size_t count) {
    const Value *const a = rows[0], *const b = rows[1], *const c = rows[2];
    for (std::size_t i = 0; i < count; ++i) {
        Value sum = saturatedSum(isBegun ? sums[i] : first[i], a[i]);
        if constexpr (others > 1)
            sum = saturatedSum(sum, b[i]);
        if constexpr (others > 2)
            sum = saturatedSum(sum, c[i]);
        sums[i] = sum;
    }
}

/// @param first   May be the sums themselves.
/// @param others  How many rows count.
template<std::size_t others, class Value>
void sumOf(const Value* first, const std::array<const Value*, 3>& rows, Value* sums,
           std::size_t count) {
    if (first == sums)
        sumLoop<true, others>(first, rows, sums, count);
    else
        sumLoop<false, others>(first, rows, sums, count);
}

/// Up to four parts in one loop, and then three more at a time, in pieces of a row so short that
/// they stay in the cache meanwhile.
template<class Value>
void sumRows(const std::vector<cv::Mat>& parts, cv::Mat& canvas) {
    constexpr std::size_t pieceValues = 1024;
    const auto rowValues = static_cast<std::size_t>(canvas.cols) * 3;
    for (int y = 0; y < canvas.rows; ++y) {
        for (std::size_t first = 0; first < rowValues; first += pieceValues) {
            const std::size_t count = std::min(pieceValues, rowValues - first);
            auto* const sums = canvas.ptr<Value>(y) + first;
            const Value* before = parts[0].ptr<Value>(y) + first;
            for (std::size_t k = 1; k < parts.size(); k += 3) {
                std::array<const Value*, 3> rows{};
                const std::size_t others = std::min(rows.size(), parts.size() - k);
                for (std::size_t i = 0; i < others; ++i)
                    rows[i] = parts[k + i].ptr<Value>(y) + first;
                if (others == 1)
                    sumOf<1>(before, rows, sums, count);
                else if (others == 2)
                    sumOf<2>(before, rows, sums, count);
                else
                    sumOf<3>(before, rows, sums, count);
                before = sums;
            }
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
