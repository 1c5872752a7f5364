#include "imageio/orientation.h"

#include <opencv2/core.hpp>

#include <cstdint>

namespace lumetra {

cv::Mat oriented(const cv::Mat& stored, int orientation) {
    constexpr int topToBottom = 0, leftToRight = 1, both = -1;
    cv::Mat seen = stored;
    const bool isTransposed = orientation >= 5 && orientation <= 8;
    if (isTransposed)
        cv::transpose(stored, seen);
    switch (orientation) {
    case 2:
    case 6:
        cv::flip(seen, seen, leftToRight);
        break;
    case 3:
    case 7:
        cv::flip(seen, seen, both);
        break;
    case 4:
    case 8:
        cv::flip(seen, seen, topToBottom);
        break;
    default:
        break;
    }
    return seen;
}

int exifOrientation(const unsigned char* bytes, std::size_t count) {
    constexpr std::size_t beginBytes = 8, entryBytes = 12;
    constexpr std::uint32_t orientationTag = 0x112;
    if (count < beginBytes || bytes[0] != bytes[1] || (bytes[0] != 'I' && bytes[0] != 'M'))
        return 1;
    const bool isBigEndian = bytes[0] == 'M';
    const auto number = [&](std::size_t at, std::size_t length) {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < length; ++i)
            value = value << 8 | bytes[at + (isBigEndian ? i : length - 1 - i)];
        return value;
    };
    const std::size_t directory = number(4, 4);
    if (number(2, 2) != 42 || directory > count - 2)
        return 1;
    const std::size_t entries = number(directory, 2), first = directory + 2;
    for (std::size_t i = 0; i < entries && first + (i + 1) * entryBytes <= count; ++i)
        if (number(first + i * entryBytes, 2) == orientationTag)
            return static_cast<int>(number(first + i * entryBytes + 8, 2));
    return 1;
}

} // namespace lumetra
