#include "lumetra/lumetra"

#include "lumetra/composite/compositing.h"
#include "lumetra/composite/facade.h"

#include <QMessageLogger>

#include <memory>
#include <vector>

cv::Mat* Lumetra::Composite(QList<cv::Mat*>* matList, QList<QPoint>* offsetPointList) {
    const QMessageLogger log(nullptr, 0, nullptr);
    const auto count = static_cast<int>(matList->size());
    const auto offsetCount = static_cast<int>(offsetPointList->size());
    if (count < 2 || count != offsetCount) {
        log.debug("[Lumetra::Composite] matList:%d offsetPointList:%d", count, offsetCount);
        return nullptr;
    }

    const std::vector<cv::Point> offsets = lumetra::pointsOf(*offsetPointList);
    const lumetra::Alignment alignment(offsets);
    cv::Mat& first = *matList->at(0);
    const int type = lumetra::canvasType(first);
    lumetra::unifyColourMode(first, type);

    const std::int64_t newRows = alignment.commonRows(first.rows);
    const std::int64_t newCols = alignment.commonColumns(first.cols);
    if (newRows < 1 || newCols < 1) {
        log.debug("[Lumetra::Composite] newRows:%lld newCols:%lld", static_cast<long long>(newRows),
                  static_cast<long long>(newCols));
        return nullptr;
    }

    auto canvas =
        std::make_unique<cv::Mat>(static_cast<int>(newRows), static_cast<int>(newCols), type);
    std::vector<cv::Mat> parts;
    for (int k = 0; k < count; ++k) {
        cv::Mat& image = *matList->at(k);
        lumetra::unifyColourMode(image, type);
        if (image.rows != first.rows || image.cols != first.cols) {
            lumetra::reportSizeMismatch();
            return nullptr;
        }
        parts.push_back(
            alignment.visiblePart(image, offsets[static_cast<std::size_t>(k)], *canvas));
    }
    lumetra::composite(parts, *canvas);
    return canvas.release();
}
