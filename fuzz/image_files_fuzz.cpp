// Any bytes as image files, against what the decoder makes of them and the plain sum.

#include "fuzz/input.h"
#include "tests/canvas.h"

#include <lumetra>

#include <opencv2/imgcodecs.hpp>

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>

#include <unistd.h>

namespace {

QString saved(const char* name, const std::vector<uchar>& bytes) {
    static const QTemporaryDir folder("/dev/shm/images-XXXXXX");
    QFile file(folder.filePath(name));
    require(file.open(QFile::WriteOnly), "no file");
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<qint64>(bytes.size()));
    return file.fileName();
}

/// Whether OpenCV takes the file for a DICOM one, whose decoder, where it is built in, ends the
/// program by a failed assertion for some damaged files.
bool isDicom(const std::vector<uchar>& bytes) {
    static constexpr std::array<uchar, 4> mark{'D', 'I', 'C', 'M'};
    constexpr std::size_t place = 128;
    return bytes.size() >= place + mark.size() &&
           std::equal(mark.begin(), mark.end(), bytes.begin() + place);
}

/// Reads a file; nothing at all if the decoder refuses the size that the file states.
std::optional<cv::Mat> read(const QString& path) {
    try {
        const cv::Mat image = cv::imread(path.toStdString(), cv::IMREAD_COLOR);
        // The decoder of one format gives one channel although three are asked for.
        return image.type() == CV_8UC1 && !image.empty() ? plainUnified(image, CV_8U) : image;
    } catch (const cv::Exception&) {
        return {};
    }
}

void checkRefused(QList<QString> files) {
    QList<QPoint> offsets = {{0, 0}, {0, 0}};
    cv::Mat dst;
    try {
        delete Lumetra::Composite(&files, &offsets);
        require(false, "a refused file was composited");
    } catch (const cv::Exception&) { // as it must be
    }
    try {
        Lumetra::FluorescenceSynthesis(&files, &offsets, dst);
        require(false, "a refused file was synthesised");
    } catch (const cv::Exception&) { // as it must be
    }
}

/// The composite without the images of another size than the first.
cv::Mat expectedCanvas(std::vector<cv::Mat> images, const QList<QPoint>& offsets) {
    if (images[0].empty())
        return cv::Mat_<cv::Vec3b>();
    for (cv::Mat& image : images)
        if (image.size() != images[0].size())
            image = cv::Mat(images[0].size(), CV_8UC3, cv::Scalar());
    return plainCanvas(images, offsets);
}

void check(QList<QString> files, const std::vector<cv::Mat>& images, int shift) {
    const cv::Size size = images[0].size();
    QList<QPoint> offsets = {{shift, shift}, {0, 0}};
    const bool isTooFar = shift > size.height || shift > size.width;
    const bool isEmpty = shift == size.height || shift == size.width;
    const cv::Size extent(size.width - shift, size.height - shift);
    const cv::Mat expected = isTooFar || (isEmpty && !size.empty())
                                 ? cv::Mat(isTooFar ? cv::Size() : extent, CV_8UC3)
                                 : expectedCanvas(images, offsets);
    const bool isMisfit = images[1].size() != size;
    try {
        const std::unique_ptr<cv::Mat> canvas(Lumetra::Composite(&files, &offsets));
        require(!isTooFar && isMisfit == !canvas, "ended otherwise");
        require(canvas ? sameImage(*canvas, expected) : testing::AssertionSuccess(),
                "wrong pixels");
    } catch (const cv::Exception&) {
        require(isTooFar, "failed to composite");
    }
    cv::Mat dst;
    try {
        Lumetra::FluorescenceSynthesis(&files, &offsets, dst);
        require(!isTooFar, "a canvas of nothing");
        require(sameImage(dst, expected), "wrong pixels in the destination");
    } catch (const cv::Exception&) {
        require(isTooFar && dst.empty(), "failed to synthesise");
    }
}

} // namespace

/// Memory that a decoder leaves as it was given must not differ from one reading to the next.
extern "C" const char*
__asan_default_options() { // NOLINT(bugprone-reserved-identifier): the sanitizer's name
    return "max_malloc_fill_size=100000000:malloc_fill_byte=0";
}

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** argv) {
    silenceQt();
    // OpenCV reads its limit when it is loaded.
    if (setenv("OPENCV_IO_MAX_IMAGE_PIXELS", "1000000", 0) == 0 && !getenv("LUMETRA_LIMITED")) {
        setenv("LUMETRA_LIMITED", "1", 1);
        execv("/proc/self/exe", *argv);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const int shift = number(input, 0, 255) % 20; // taken from the end of the input
    const bool isOneFile = input.ConsumeBool();
    const std::size_t length =
        isOneFile ? input.remaining_bytes() : input.ConsumeIntegralInRange<std::size_t>(0, size);
    const auto firstBytes = input.ConsumeBytes<uchar>(length);
    const auto secondBytes = isOneFile ? firstBytes : input.ConsumeRemainingBytes<uchar>();
    if (isDicom(firstBytes) || isDicom(secondBytes))
        return 0;
    const QString first = saved("first", firstBytes);
    const QString second = isOneFile ? first : saved("second", secondBytes);
    const std::optional<cv::Mat> firstImage = read(first), secondImage = read(second);
    if (firstImage && secondImage)
        check({first, second}, {*firstImage, *secondImage}, shift);
    else
        checkRefused({first, second});
    return 0;
}
