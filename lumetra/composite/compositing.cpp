#include "lumetra/composite/compositing.h"

#include "vantrel/vantrel.h"

#include <QApplication>
#include <QMessageBox>
#include <QThread>

#include <algorithm>
#include <cstddef>
#include <limits>

namespace lumetra {
namespace {

template<class Sample>
void addSaturated(const Sample* samples, Sample* sums, std::size_t count) {
    constexpr Sample largest = std::numeric_limits<Sample>::max();
    for (std::size_t i = 0; i < count; ++i) {
        const auto room = static_cast<Sample>(largest - sums[i]);
        sums[i] = static_cast<Sample>(sums[i] + std::min(samples[i], room));
    }
}

template<class Sample>
void accumulateRows(const cv::Mat& part, cv::Mat& canvas) {
    const auto count = static_cast<std::size_t>(canvas.cols) * 3;
    for (int y = 0; y < canvas.rows; ++y)
        addSaturated(part.ptr<Sample>(y), canvas.ptr<Sample>(y), count);
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
    if (image.type() != type)
        Vantrel::ConvertColorMode(image, image, type);
}

void reportSizeMismatch() {
    if (canShowWidgets())
        QMessageBox::about(nullptr, QStringLiteral("Fluorescence"),
                           QStringLiteral("Image Size doesn't match!"));
}

void place(const cv::Mat& part, cv::Mat& canvas) {
    if (part.empty())
        return;
    if (canvas.depth() == CV_8U || canvas.depth() == CV_16U)
        part.copyTo(canvas);
    else
        canvas.setTo(cv::Scalar::all(0));
}

void accumulate(const cv::Mat& part, cv::Mat& canvas) {
    if (part.empty())
        return;
    if (canvas.depth() == CV_8U)
        accumulateRows<unsigned char>(part, canvas);
    else if (canvas.depth() == CV_16U)
        accumulateRows<unsigned short>(part, canvas);
}

} // namespace lumetra
