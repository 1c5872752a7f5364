#include "imageio/image_writer.h"

#include "imageio/jpeg_encoder.h"
#include "imageio/png_encoder.h"
#include "imageio/tiff_writer.h"

#include <opencv2/core.hpp>

namespace lumetra {

void writeImage(const QString& file, const cv::Mat& image, Existing existing,
                std::optional<double> pixelSize, TiffCompression compression) {
    CV_Assert(!image.empty() && (image.channels() == 1 || image.channels() == 3));
    CV_Assert(image.depth() == CV_8U || image.depth() == CV_16U);
    switch (outputFormat(file)) {
    case OutputFormat::png:
        return writeFile(file, existing, [&](QIODevice& out) { encodePng(image, out, pixelSize); });
    case OutputFormat::jpeg:
        return writeFile(file, existing, [&](QIODevice& out) { encodeJpeg(image, out); });
    case OutputFormat::tiff:
        TiffWriter writer(file, existing, image.total() * image.elemSize(), pixelSize, compression);
        writer.add(image);
        return writer.commit();
    }
}

} // namespace lumetra
