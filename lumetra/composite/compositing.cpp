#include "lumetra/composite/compositing.h"

#include "vantrel/vantrel.h"

#include <opencv2/core.hpp>

#include <QApplication>
#include <QMessageBox>
#include <QThread>

#include <algorithm>
#include <cstddef>
#include <limits>

namespace lumetra {
namespace {

template<class Sample>
Sample saturatedSum(Sample a, Sample b) {
    const auto room = static_cast<Sample>(std::numeric_limits<Sample>::max() - a);
    return static_cast<Sample>(a + std::min(b, room));
}

template<class Sample>
void addSaturated(const Sample* __restrict samples, Sample* __restrict sums, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        sums[i] = saturatedSum(sums[i], samples[i]);
}

template<class Sample>
void sumOfTwo(const Sample* first, const Sample* second, Sample* __restrict sums,
              std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        sums[i] = saturatedSum(first[i], second[i]);
}

/// The sum in pieces of a row so short that the processor keeps fetching all parts ahead.
template<class Sample>
void sumRows(const std::vector<cv::Mat>& parts, cv::Mat& canvas) {
    constexpr std::size_t pieceSamples = 1024;
    const auto rowSamples = static_cast<std::size_t>(canvas.cols) * 3;
    for (int y = 0; y < canvas.rows; ++y) {
        for (std::size_t first = 0; first < rowSamples; first += pieceSamples) {
            const std::size_t count = std::min(pieceSamples, rowSamples - first);
            const auto samples = [&](std::size_t k) { return parts[k].ptr<Sample>(y) + first; };
            auto* const sums = canvas.ptr<Sample>(y) + first;
            if (samples(0) == sums)
                addSaturated(samples(1), sums, count);
            else
                sumOfTwo(samples(0), samples(1), sums, count);
            for (std::size_t k = 2; k < parts.size(); ++k)
                addSaturated(samples(k), sums, count);
        }
    }
}

/// Widgets exist only for a QApplication, and only on its thread.
bool canShowWidgets() {
    const auto* application = qobject_cast<QApplication*>(QCoreApplication::instance());
    return application && application->thread() == QThread::currentThread();
}

} // namespace

Alignment::Alignment(const QList<QPoint>& offsets)
    : minX_(offsets.front().x()), maxX_(minX_), minY_(offsets.front().y()), maxY_(minY_) {
    for (const QPoint& offset : offsets) {
        minX_ = std::min<std::int64_t>(minX_, offset.x());
        maxX_ = std::max<std::int64_t>(maxX_, offset.x());
        minY_ = std::min<std::int64_t>(minY_, offset.y());
        maxY_ = std::max<std::int64_t>(maxY_, offset.y());
    }
}

cv::Mat Alignment::visiblePart(const cv::Mat& image, QPoint offset, const cv::Mat& canvas) const {
    // Only a canvas with pixels bounds the differences: they are then below the image's size.
    if (canvas.empty())
        return {};
    return image(cv::Rect(static_cast<int>(offset.x() - minX_),
                          static_cast<int>(offset.y() - minY_), canvas.cols, canvas.rows));
}

int canvasType(const cv::Mat& first) { return CV_MAKETYPE(first.depth(), 3); }

void unifyColourMode(cv::Mat& image, int type) {
    if (image.dims > 2)
        CV_Error(cv::Error::StsBadSize, "an image to be composited has two dimensions");
    if (image.type() != type)
        Vantrel::ConvertColorMode(image, image, type);
}

void reportSizeMismatch() {
    if (canShowWidgets())
        QMessageBox::about(nullptr, QStringLiteral("Fluorescence"),
                           QStringLiteral("Image Size doesn't match!"));
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
