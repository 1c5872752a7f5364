#include "render/shrink.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

namespace lumetra {
namespace {

/// The part of a line of pixels that becomes one: whole pixels from `first` to before `end`, of
/// which the first and the last may count in part.
struct Span {
    int first, end;
    float firstShare, innerShare, lastShare; ///< Of the mean.

    int innerEnd() const { return std::max(first + 1, end - 1); }
    bool isOnePixel() const { return end - first == 1; }
};

/// The spans that cut a line of `from` pixels into `to` equal parts.
std::vector<Span> spansOf(int from, int to) {
    const double length = static_cast<double>(from) / to;
    std::vector<Span> spans;
    for (int i = 0; i < to; ++i) {
        const double start = i * length, stop = std::min<double>(from, start + length);
        const int first = static_cast<int>(start + 1e-6);
        const int end = std::clamp(static_cast<int>(std::ceil(stop - 1e-6)), first + 1, from);
        const auto share = [&](int place) {
            const double covered = std::min(place + 1.0, stop) - std::max<double>(place, start);
            return static_cast<float>(covered / length);
        };
        spans.push_back({first, end, share(first), static_cast<float>(1 / length), share(end - 1)});
    }
    return spans;
}

/// Adds rows of pixels, in numbers as short as hold so many of them.
constexpr int rowsAtOnce = 256;
template<class Value>
using RowSum = std::conditional_t<sizeof(Value) == 1, std::uint16_t, std::uint32_t>;

template<class Value>
void addRow(const Value* __restrict row, std::size_t count, RowSum<Value>* __restrict sums) {
    for (std::size_t i = 0; i < count; ++i)
        sums[i] = static_cast<RowSum<Value>>(sums[i] + row[i]);
}

template<class Value>
void addShare(const Value* __restrict row, std::size_t count, float share,
              float* __restrict means) {
    for (std::size_t i = 0; i < count; ++i)
        means[i] += share * static_cast<float>(row[i]);
}

/// Makes the mean of a span of rows.
template<class Value>
void meanOfRows(const cv::Mat& image, const Span& span, std::vector<RowSum<Value>>& sums,
                std::vector<float>& means) {
    const std::size_t count = means.size();
    std::fill(means.begin(), means.end(), 0.0F);
    addShare(image.ptr<Value>(span.first), count, span.firstShare, means.data());
    for (int row = span.first + 1; row < span.innerEnd();) {
        std::fill(sums.begin(), sums.end(), RowSum<Value>{0});
        for (const int stop = std::min(row + rowsAtOnce, span.innerEnd()); row < stop; ++row)
            addRow(image.ptr<Value>(row), count, sums.data());
        addShare(sums.data(), count, span.innerShare, means.data());
    }
    if (!span.isOnePixel())
        addShare(image.ptr<Value>(span.end - 1), count, span.lastShare, means.data());
}

/// The means of a line's spans, rounded.
template<class Value>
void meansOfSpans(const float* line, std::size_t channels, const std::vector<Span>& spans,
                  Value* out) {
    constexpr auto largest = static_cast<float>(std::numeric_limits<Value>::max());
    for (const Span& span : spans) {
        const float* pixel = line + static_cast<std::size_t>(span.first) * channels;
        const float* const last = line + static_cast<std::size_t>(span.end - 1) * channels;
        for (std::size_t k = 0; k < channels; ++k) {
            float inner = 0;
            for (const float* in = pixel + channels; in < last; in += channels)
                inner += in[k];
            float mean = pixel[k] * span.firstShare + inner * span.innerShare;
            if (!span.isOnePixel())
                mean += last[k] * span.lastShare;
            *out++ = static_cast<Value>(std::min(mean + 0.5F, largest));
        }
    }
}

template<class Value>
void shrinkValues(const cv::Mat& image, cv::Mat& result) {
    const auto channels = static_cast<std::size_t>(image.channels());
    const std::vector<Span> columns = spansOf(image.cols, result.cols);
    const std::vector<Span> rows = spansOf(image.rows, result.rows);
    std::vector<float> means(static_cast<std::size_t>(image.cols) * channels);
    std::vector<RowSum<Value>> sums(means.size());
    for (int y = 0; y < result.rows; ++y) {
        meanOfRows<Value>(image, rows[static_cast<std::size_t>(y)], sums, means);
        meansOfSpans(means.data(), channels, columns, result.ptr<Value>(y));
    }
}

} // namespace

void shrink(const cv::Mat& image, cv::Size size, cv::Mat& result) {
    CV_Assert(image.depth() == CV_8U || image.depth() == CV_16U);
    CV_Assert(size.width >= 1 && size.height >= 1 && size.width <= image.cols &&
              size.height <= image.rows);
    result.create(size, image.type());
    if (image.depth() == CV_8U)
        shrinkValues<unsigned char>(image, result);
    else
        shrinkValues<std::uint16_t>(image, result);
}

} // namespace lumetra
