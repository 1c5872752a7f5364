#include "render/shrink.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace lumetra {
namespace {

/// The part of a line of pixels that becomes one: whole pixels from `first` to before `end`, of
/// which the first and the last may count in part.
struct Span {
    int first, end;
    float firstShare, innerShare, lastShare; ///< Of the mean.

    float shareOf(int place) const {
        return place == first ? firstShare : place == end - 1 ? lastShare : innerShare;
    }
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

/// Adds the means of a row's spans, times a share, to sums.
template<class Value>
void addRow(const Value* row, std::size_t channels, const std::vector<Span>& spans, float rowShare,
            float* sums) {
    for (const Span& span : spans) {
        for (int x = span.first; x < span.end; ++x) {
            const float share = rowShare * span.shareOf(x);
            for (std::size_t k = 0; k < channels; ++k)
                sums[k] +=
                    share * static_cast<float>(row[static_cast<std::size_t>(x) * channels + k]);
        }
        sums += channels;
    }
}

template<class Value>
void shrinkValues(const cv::Mat& image, cv::Mat& result) {
    const auto channels = static_cast<std::size_t>(image.channels());
    const std::vector<Span> columns = spansOf(image.cols, result.cols);
    const std::vector<Span> rows = spansOf(image.rows, result.rows);
    std::vector<float> sums(static_cast<std::size_t>(result.cols) * channels);
    for (int y = 0; y < result.rows; ++y) {
        const Span& span = rows[static_cast<std::size_t>(y)];
        std::fill(sums.begin(), sums.end(), 0.5F); // to round
        for (int row = span.first; row < span.end; ++row)
            addRow(image.ptr<Value>(row), channels, columns, span.shareOf(row), sums.data());
        std::transform(sums.begin(), sums.end(), result.ptr<Value>(y),
                       [](float sum) { return static_cast<Value>(sum); });
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
