// Tinting and pseudo-colouring of any image with any arguments, against the formulas pixel by
// pixel.

#include "fuzz/input.h"
#include "tests/plain_colouring.h"

#include <lumetra>

#include <functional>

namespace {

/// Small, empty at times, or one to three rows longer than the strips that images are worked on in.
cv::Size imageSize(FuzzedDataProvider& input) {
    const bool isLong = input.ConsumeBool();
    return {number(input, 0, isLong ? 5000 : 60), number(input, 0, isLong ? 3 : 12)};
}

/// Half floats as floats: the plain rules know no others, and no value is lost.
cv::Mat withoutHalfFloats(const cv::Mat& image) {
    cv::Mat converted = image;
    if (image.depth() == CV_16F)
        image.convertTo(converted, CV_32F);
    return converted;
}

void check(const std::function<void(cv::Mat&, cv::Mat&)>& colour,
           const std::function<cv::Mat(const cv::Mat&)>& rule, const cv::Mat& image, bool inPlace) {
    const cv::Mat before = copyOf(image);
    cv::Mat src = image, other(2, 3, CV_8UC3);
    cv::Mat& dst = inPlace ? src : other;
    const bool isColourable = image.channels() != 2 && image.channels() != 5 && !image.empty();
    try {
        colour(src, dst);
        require(isColourable, "an image that cannot be coloured was");
        const cv::Mat expected = rule(withoutHalfFloats(before));
        require(sameImage(dst, expected), "wrong pixels");
        if (!inPlace) { // once more, into storage that is there already
            dst.setTo(cv::Scalar::all(77));
            colour(src, dst);
            require(sameImage(dst, expected), "wrong pixels the second time");
        }
    } catch (const cv::Exception&) {
        require(!isColourable, "an image that can be coloured was refused");
        require(image.empty() ? testing::AssertionResult(dst.empty()) : sameImage(dst, before),
                "no copy");
    }
    require(sameImage(image, before), "the source changed");
}

void checkDye(FuzzedDataProvider& input, const cv::Mat& image) {
    const auto component = [&] {
        return input.ConsumeBool() ? number(input, 0, 255) : input.ConsumeIntegral<int>();
    };
    const Tint tint = {component(), component(), component()};
    const Options options = {input.ConsumeBool(), input.ConsumeBool()};
    check(
        [&](cv::Mat& src, cv::Mat& dst) {
            Lumetra::Dye(src, dst, tint.red, tint.green, tint.blue, options.autoLevels,
                         options.dominantChannel);
        },
        [&](const cv::Mat& source) { return plainDyed(source, tint, options); }, image,
        input.ConsumeBool());
}

void checkPseudo(FuzzedDataProvider& input, const cv::Mat& image) {
    QVector<QColor> colours(number(input, 0, 300));
    const QRgb first = input.ConsumeIntegral<QRgb>(), step = input.ConsumeIntegral<QRgb>();
    for (int i = 0; i < colours.size(); ++i)
        colours[i] = QColor::fromRgba(first + step * static_cast<QRgb>(i));
    check([&](cv::Mat& src, cv::Mat& dst) { Lumetra::Pseudo(src, dst, colours); },
          [&](const cv::Mat& source) { return plainColoured(source, colours); }, image,
          input.ConsumeBool());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const bool dyes = input.ConsumeBool();
    const int type = imageType(input);
    const cv::Size extent = imageSize(input);
    const cv::Mat source = image(input, extent, type);
    if (dyes)
        checkDye(input, source);
    else
        checkPseudo(input, source);
    return 0;
}
