#include "apps/common/image_size.h"

#include "apps/common/error.h"

namespace lumetra {

QString sizeText(cv::Size size) {
    return QStringLiteral("%1 x %2").arg(size.width).arg(size.height);
}

QString sizeText(const cv::Mat& image) { return sizeText(image.size()); }

void requireEqualSizes(const QString& firstFile, const cv::Mat& first, const QString& file,
                       const cv::Mat& image) {
    if (image.size() != first.size())
        throw Error(QStringLiteral("the images have different sizes: %1 has %2 pixels, %3 has %4")
                        .arg(firstFile, sizeText(first), file, sizeText(image)));
}

} // namespace lumetra
