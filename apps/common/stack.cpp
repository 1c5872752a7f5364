#include "apps/common/stack.h"

#include "apps/common/failure.h"
#include "apps/common/tiff_facts.h"

#include <opencv2/imgcodecs.hpp>

#include <QFile>
#include <QFileInfo>

#include <cstring>
#include <utility>
#include <vector>

namespace apps {
namespace {

Failure failure(const QString& file, const QString& reason) {
    return Failure(QStringLiteral("%1: %2").arg(shown(file), reason));
}

/// Whether a JPEG file lacks its end, in place of which the decoder would put gray.
bool isCutJpeg(QFile& device) {
    const QByteArray bytes = device.read(3) == QByteArray("\xFF\xD8\xFF") ? device.readAll() : "";
    const auto lastScan = bytes.lastIndexOf("\xFF\xDA");
    return lastScan >= 0 && bytes.indexOf("\xFF\xD9", lastScan) < 0;
}

void requireReadable(const QString& file) {
    const QFileInfo info(file);
    if (!info.exists())
        throw failure(file, QStringLiteral("there is no such file"));
    if (!info.isFile())
        throw failure(file, QStringLiteral("is not a file"));
    QFile device(file);
    if (!device.open(QIODevice::ReadOnly))
        throw failure(file, device.errorString());
    if (isCutJpeg(device))
        throw failure(file, QStringLiteral("was cut short"));
}

} // namespace

Stack::Stack(QString file) : file_(std::move(file)) {
    requireReadable(file_);
    if (isTiff(file_))
        pages_ = checkedTiffPages(file_);
}

cv::Mat Stack::page(int number) const {
    if (number < 1 || number > pages_)
        throw failure(
            file_, QStringLiteral("there is no page %1; the file has %2").arg(number).arg(pages_));
    constexpr int asItIs = cv::IMREAD_ANYDEPTH | cv::IMREAD_ANYCOLOR;
    const std::string name = QFile::encodeName(file_).toStdString();
    std::vector<cv::Mat> read;
    try {
        if (pages_ == 1)
            read.push_back(cv::imread(name, asItIs));
        else
            cv::imreadmulti(name, read, number - 1, 1, asItIs);
    } catch (const std::exception& error) {
        // OpenCV names its own limits in its own words.
        const bool isLimit = std::strstr(error.what(), "CV_IO_MAX_IMAGE") != nullptr;
        throw failure(file_, isLimit ? QStringLiteral("has more pixels than are read (the "
                                                      "environment variable "
                                                      "OPENCV_IO_MAX_IMAGE_PIXELS says how many)")
                                     : currentReason());
    }
    if (read.empty() || read.front().empty())
        throw failure(file_, QStringLiteral("cannot be read as a picture; it may be damaged, cut "
                                            "short, too large or no picture at all"));
    const int depth = read.front().depth();
    if (depth != CV_8U && depth != CV_16U)
        throw failure(file_, QStringLiteral("has samples other than 8 or 16 bits, unsigned"));
    return read.front();
}

cv::Mat Stack::grayPage(int number) const {
    cv::Mat read = page(number);
    if (read.channels() != 1)
        throw failure(file_, QStringLiteral("has colours, and a channel must be gray"));
    return read;
}

QString sizeText(const cv::Mat& picture) {
    return QStringLiteral("%1 x %2").arg(picture.cols).arg(picture.rows);
}

void requireEqualSizes(const QString& firstFile, const cv::Mat& first, const QString& file,
                       const cv::Mat& picture) {
    if (picture.size() != first.size())
        throw Failure(QStringLiteral("the pictures have different sizes: %1 has %2 pixels, %3 has "
                                     "%4")
                          .arg(shown(firstFile), sizeText(first), shown(file), sizeText(picture)));
}

} // namespace apps
