// Images of any bytes as PNG, against what a decoder makes of the file.

#include "fuzz/input.h"
#include "imageio/png_encoder.h"

#include <opencv2/imgcodecs.hpp>

#include <QBuffer>

#include <array>

namespace {

/// Lays runs and noise over an image, of any length and anywhere.
void scatter(FuzzedDataProvider& input, cv::Mat& pixels) {
    cv::Mat bytes = pixels.reshape(1);
    while (input.remaining_bytes() > 0) {
        cv::Mat row = bytes.row(number(input, 0, bytes.rows - 1));
        const int from = number(input, 0, row.cols - 1), to = number(input, from + 1, row.cols);
        cv::Mat part = row.colRange(from, to);
        const int value = number(input, 0, 65535);
        if (input.ConsumeBool())
            part.setTo(value);
        else
            cv::RNG(static_cast<uint64>(value)).fill(part, cv::RNG::UNIFORM, 0, 65536);
    }
}

void checkDecoded(const QByteArray& file, const cv::Mat& expected) {
    const cv::Mat bytes(1, static_cast<int>(file.size()), CV_8U, const_cast<char*>(file.data()));
    require(sameImage(cv::imdecode(bytes, cv::IMREAD_UNCHANGED), expected), "wrong pixels");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    silenceQt();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    constexpr std::array types{CV_8UC1, CV_8UC3, CV_16UC1, CV_16UC3};
    const int type = input.PickValueInArray(types);
    const bool isLong = input.ConsumeBool(); // rows of more than a block
    const cv::Size sides(number(input, 1, isLong ? 60000 : 200),
                         number(input, 1, isLong ? 3 : 200));
    cv::Mat pixels = image(input, sides, type);
    scatter(input, pixels);

    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    lumetra::encodePng(pixels, buffer);
    checkDecoded(buffer.data(), pixels);
    return 0;
}
