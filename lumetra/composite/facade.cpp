#include "lumetra/composite/facade.h"

#include "vantrel/vantrel.h"

#include <opencv2/core.hpp>

#include <QApplication>
#include <QMessageBox>
#include <QThread>

#include <algorithm>
#include <iterator>

namespace lumetra {
namespace {

/// Widgets exist only for a QApplication, and only on its thread.
bool canShowWidgets() {
    const auto* application = qobject_cast<QApplication*>(QCoreApplication::instance());
    return application && application->thread() == QThread::currentThread();
}

} // namespace

std::vector<cv::Point> pointsOf(const QList<QPoint>& offsets) {
    std::vector<cv::Point> points;
    points.reserve(static_cast<std::size_t>(offsets.size()));
    std::transform(offsets.begin(), offsets.end(), std::back_inserter(points),
                   [](const QPoint& offset) { return cv::Point(offset.x(), offset.y()); });
    return points;
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

} // namespace lumetra
