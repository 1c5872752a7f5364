// Images for the tests of image files.
#pragma once

#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>

#include <QByteArray>
#include <QFile>
#include <QString>

#include <cstdint>
#include <string>
#include <vector>

namespace lumetra {

/// A smooth image with some noise, different in every row, column and channel.
inline cv::Mat testImage(cv::Size size, int type, int seed = 1) {
    cv::Mat image(size, type);
    cv::RNG random(static_cast<std::uint64_t>(seed));
    const int channels = image.channels();
    for (int y = 0; y < size.height; ++y)
        for (int i = 0; i < size.width * channels; ++i) {
            const int value = y * 5 + i * 7 + seed * 31 + random.uniform(0, 12);
            if (image.depth() == CV_8U)
                image.ptr<std::uint8_t>(y)[i] = static_cast<std::uint8_t>(value % 256);
            else
                image.ptr<std::uint16_t>(y)[i] = static_cast<std::uint16_t>(value * 37 % 65536);
        }
    return image;
}

inline bool areEqual(const cv::Mat& a, const cv::Mat& b) {
    return a.size() == b.size() && a.type() == b.type() &&
           (a.empty() || cv::norm(a, b, cv::NORM_INF) == 0);
}

inline void store(const QString& file, const QByteArray& bytes) {
    QFile device(file);
    ASSERT_TRUE(device.open(QIODevice::WriteOnly));
    ASSERT_EQ(device.write(bytes), bytes.size());
}

inline QByteArray contentOf(const QString& file) {
    QFile device(file);
    return device.open(QIODevice::ReadOnly) ? device.readAll() : QByteArray();
}

/// What OpenCV makes of an image in a file of this extension.
inline QByteArray encodedByOpenCv(const char* extension, const cv::Mat& image,
                                  const std::vector<int>& parameters = {}) {
    std::vector<std::uint8_t> bytes;
    cv::imencode(extension, image, bytes, parameters);
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())};
}

/// The first page of a file as OpenCV reads it.
inline cv::Mat readByOpenCv(const QString& file) {
    return cv::imread(QFile::encodeName(file).toStdString(),
                      cv::IMREAD_ANYDEPTH | cv::IMREAD_ANYCOLOR);
}

} // namespace lumetra
