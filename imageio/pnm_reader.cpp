#include "imageio/pnm_reader.h"

#include "imageio/reason.h"

#include <QByteArray>
#include <QtEndian>

#include <algorithm>
#include <cctype>

namespace lumetra {
namespace {

bool isSpace(char letter) { return std::isspace(static_cast<unsigned char>(letter)) != 0; }
bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }

} // namespace

bool PnmReader::recognises(const QByteArray& start) {
    return start.size() > 2 && start[0] == 'P' && QByteArray("2356").contains(start[1]) &&
           isSpace(start[2]);
}

/// The next decimal number, and the one letter after it.
std::uint32_t PnmReader::readNumber() {
    constexpr std::uint32_t largest = 100'000'000;
    char letter = ' ';
    while (isSpace(letter) || letter == '#') {
        if (letter == '#')
            file().readLine();
        readBytes(&letter, 1);
    }
    if (!isDigit(letter))
        throw Reason("is damaged");
    std::uint32_t number = 0;
    do {
        number = number * 10 + static_cast<std::uint32_t>(letter - '0');
        if (number > largest)
            throw Reason("is damaged");
    } while (file().getChar(&letter) && isDigit(letter));
    return number;
}

cv::Mat PnmReader::read(int /*index*/) {
    file().seek(0);
    const QByteArray kind = file().read(2);
    const bool isBinary = kind[1] >= '5', isColour = kind[1] == '3' || kind[1] == '6';
    const std::uint32_t width = readNumber(), height = readNumber(), largest = readNumber();
    if (largest == 0 || largest > 65535)
        throw Reason("is damaged");
    const int bytes = largest > 255 ? 2 : 1;
    cv::Mat image =
        newImage(width, height, CV_MAKETYPE(bytes == 1 ? CV_8U : CV_16U, isColour ? 3 : 1));
    const std::size_t rowValues =
        static_cast<std::size_t>(image.cols) * static_cast<std::size_t>(image.channels());
    for (int y = 0; y < image.rows; ++y) {
        std::uint8_t* const row = image.ptr(y);
        auto* const wide = reinterpret_cast<std::uint16_t*>(row);
        if (isBinary) {
            readBytes(row, rowValues * static_cast<std::size_t>(bytes));
            if (bytes == 2)
                qFromBigEndian<std::uint16_t>(row, static_cast<qsizetype>(rowValues), row);
        } else {
            for (std::size_t i = 0; i < rowValues; ++i) {
                const std::uint32_t value = std::min(readNumber(), largest);
                if (bytes == 2)
                    wide[i] = static_cast<std::uint16_t>(value);
                else
                    row[i] = static_cast<std::uint8_t>(value);
            }
        }
        for (std::size_t i = 0; isColour && i < rowValues; i += 3) {
            if (bytes == 2)
                std::swap(wide[i], wide[i + 2]);
            else
                std::swap(row[i], row[i + 2]);
        }
    }
    return image;
}

} // namespace lumetra
