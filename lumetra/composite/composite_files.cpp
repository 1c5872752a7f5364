#include "lumetra/lumetra"

#include "lumetra/composite/compositing.h"
#include "lumetra/composite/facade.h"

#include <opencv2/imgcodecs.hpp>

#include <algorithm>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace {

/// Reads an image file as 8-bit colour; an empty image if that fails.
cv::Mat readColour(const QString& path) {
    const std::string name = path.toLocal8Bit().constData();
    return cv::imread(name, cv::IMREAD_COLOR);
}

bool areComposable(const QList<QString>& files, const QList<QPoint>& offsets) {
    return files.size() >= 2 && files.size() == offsets.size();
}

/// An extent as a matrix takes it; one below the range of `int` is as negative as any.
int matrixExtent(std::int64_t extent) {
    return static_cast<int>(std::max<std::int64_t>(extent, std::numeric_limits<int>::min()));
}

enum class Misfit { leaveOut, giveUp };

/// Composites the files into the canvas, which is given its size and type. One decoded image is
/// held at a time.
///
/// @return False if it gave up on a file, other than the first, of another size.
/// @throws cv::Exception if the offsets spread further than the first image.
bool compositeFiles(const QList<QString>& files, const std::vector<cv::Point>& offsets,
                    Misfit misfit, cv::Mat& canvas) {
    const lumetra::Alignment alignment(offsets);
    cv::Mat image = readColour(files.front());
    const int type = lumetra::canvasType(image);
    lumetra::unifyColourMode(image, type);
    const cv::Size size = image.size();
    canvas.create(matrixExtent(alignment.commonRows(size.height)),
                  matrixExtent(alignment.commonColumns(size.width)), type);
    if (!canvas.empty())
        alignment.visiblePart(image, offsets.front(), canvas).copyTo(canvas); // takes no memory

    for (std::size_t k = 1; k < offsets.size(); ++k) {
        image.release(); // before the next one is decoded
        image = readColour(files[static_cast<int>(k)]);
        lumetra::unifyColourMode(image, type);
        if (image.size() != size) {
            if (misfit == Misfit::giveUp)
                return false;
        } else if (!canvas.empty()) {
            lumetra::composite({canvas, alignment.visiblePart(image, offsets[k], canvas)}, canvas);
        }
    }
    return true;
}

} // namespace

cv::Mat* Lumetra::Composite(QList<QString>* fileList, QList<QPoint>* offsetPointList) {
    if (!areComposable(*fileList, *offsetPointList))
        return nullptr;
    auto canvas = std::make_unique<cv::Mat>();
    if (!compositeFiles(*fileList, lumetra::pointsOf(*offsetPointList), Misfit::giveUp, *canvas)) {
        lumetra::reportSizeMismatch();
        return nullptr;
    }
    return canvas.release();
}

void Lumetra::FluorescenceSynthesis(QList<QString>* fileList, QList<QPoint>* offsetPointList,
                                    cv::Mat& dst) {
    if (areComposable(*fileList, *offsetPointList))
        compositeFiles(*fileList, lumetra::pointsOf(*offsetPointList), Misfit::leaveOut, dst);
}
