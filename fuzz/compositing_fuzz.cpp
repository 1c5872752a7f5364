// Compositing of images of any types, some of unlike sizes, with any offsets, against the plain
// sum.

#include "fuzz/input.h"
#include "tests/canvas.h"

#include "vantrel/vantrel.h"

#include <lumetra>

#include <memory>

namespace {

using Images = std::vector<cv::Mat>;

QPoint offset(FuzzedDataProvider& input) {
    if (input.ConsumeBool())
        return {number(input, -9, 9), number(input, -9, 9)};
    return {input.ConsumeIntegral<int>(), input.ConsumeIntegral<int>()};
}

bool isConvertible(const cv::Mat& image, int type) {
    return image.type() == type || image.empty() ||
           (image.channels() != 2 && image.channels() != 5);
}

/// In the canvas type: by the plain rule for unsigned samples, which are the ones that are added.
cv::Mat unified(const cv::Mat& image, int type) {
    const auto isUnsigned = [](int t) {
        return CV_MAT_DEPTH(t) == CV_8U || CV_MAT_DEPTH(t) == CV_16U;
    };
    if (isUnsigned(image.type()) && isUnsigned(type))
        return plainUnified(image, CV_MAT_DEPTH(type));
    cv::Mat converted = image;
    if (image.type() != type)
        Vantrel::ConvertColorMode(image, converted, type);
    return converted;
}

/// Smallest and largest of the offsets' coordinates, far enough apart to leave nothing in common?
bool haveCommonArea(const QList<QPoint>& offsets, cv::Size size) {
    for (QPoint a : offsets)
        for (QPoint b : offsets)
            if (std::int64_t{a.x()} - b.x() >= size.width ||
                std::int64_t{a.y()} - b.y() >= size.height)
                return false;
    return true;
}

enum class End { canvas, null, exception };

/// How the call must end, and how many of the images are converted by then.
std::pair<End, std::size_t> expectedEnd(const Images& images, const QList<QPoint>& offsets,
                                        int type) {
    if (images.size() < 2 || images.size() != static_cast<std::size_t>(offsets.size()))
        return {End::null, 0};
    if (!isConvertible(images[0], type))
        return {End::exception, 0};
    if (!haveCommonArea(offsets, images[0].size()))
        return {End::null, 1};
    for (std::size_t k = 0; k < images.size(); ++k) {
        if (!isConvertible(images[k], type))
            return {End::exception, k};
        if (images[k].size() != images[0].size())
            return {End::null, k + 1};
    }
    return {End::canvas, images.size()};
}

cv::Mat expectedCanvas(const Images& images, const QList<QPoint>& offsets, int type) {
    Images alike;
    for (const cv::Mat& image : images)
        alike.push_back(unified(image, type));
    if (CV_MAT_DEPTH(type) == CV_8U || CV_MAT_DEPTH(type) == CV_16U)
        return plainCanvas(alike, offsets);
    for (cv::Mat& image : alike)
        image = cv::Mat(image.size(), CV_MAKETYPE(CV_16U, 3), cv::Scalar());
    cv::Mat zero(plainCanvas(alike, offsets).size(), type);
    for (int y = 0; y < zero.rows; ++y)
        std::fill_n(zero.ptr(y), zero.elemSize() * static_cast<std::size_t>(zero.cols), uchar{0});
    return zero;
}

void check(const Images& images, const QList<QPoint>& offsets) {
    const int type = images.empty() ? CV_8UC3 : CV_MAKETYPE(images[0].depth(), 3);
    const auto [end, converted] = expectedEnd(images, offsets, type);
    Images before;
    for (const cv::Mat& image : images)
        before.push_back(copyOf(image));

    Images own = images;
    QList<cv::Mat*> list;
    for (cv::Mat& image : own)
        list.append(&image);
    QList<QPoint> points = offsets;
    std::unique_ptr<cv::Mat> canvas;
    End actual = End::exception;
    try {
        canvas.reset(Lumetra::Composite(&list, &points));
        actual = canvas ? End::canvas : End::null;
    } catch (const cv::Exception&) { // as it may be
    }
    require(actual == end, "ended otherwise");
    if (canvas)
        require(sameImage(*canvas, expectedCanvas(before, offsets, type)), "wrong pixels");
    for (std::size_t k = 0; k < own.size(); ++k)
        require(sameImage(own[k], k < converted ? unified(before[k], type) : before[k]),
                "an image is not as stated");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    silenceQt();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const cv::Size usual(number(input, 0, 24), number(input, 0, 12));
    const bool isMixed = input.ConsumeBool();
    const int usualType = CV_MAKETYPE(input.ConsumeBool() ? CV_16U : CV_8U, 3);
    Images images(static_cast<std::size_t>(number(input, 0, 5)));
    for (cv::Mat& each : images) {
        const bool isOdd = number(input, 0, 15) == 0;
        const cv::Size extent =
            isOdd ? cv::Size(number(input, 0, 24), number(input, 0, 12)) : usual;
        const int type = isMixed ? imageType(input) : usualType;
        each = image(input, extent, type);
    }
    QList<QPoint> offsets;
    const QPoint base = input.ConsumeBool() ? offset(input) : QPoint();
    for (int n = static_cast<int>(images.size()) + number(input, 0, 31) / 30; n > 0; --n) {
        const QPoint one = offset(input);
        const auto moved = [](int a, int b) {
            return static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b));
        };
        offsets.append({moved(base.x(), one.x()), moved(base.y(), one.y())});
    }
    check(images, offsets);
    return 0;
}
