#include "imageio/bmp_reader.h"

#include "imageio/reason.h"

#include <opencv2/core.hpp>

#include <QByteArray>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

namespace lumetra {
namespace {

// Where the header holds what, in bytes from the start of the file.
constexpr std::size_t headerBytes = 54, pixelsAt = 10, infoBytesAt = 14, widthAt = 18,
                      heightAt = 22, bitsAt = 28, compressionAt = 30, coloursAt = 46;
constexpr std::uint32_t plain = 0, withMasks = 3;
constexpr std::array<std::uint32_t, 3> usualMasks{0xFF0000, 0xFF00, 0xFF}; // red, green, blue

/// Spreads rows of 1, 4 or 8 bits per pixel, the leftmost pixel in the highest bits.
void unpack(const std::uint8_t* packed, int bits, std::uint8_t* indices, int count) {
    const int perByte = 8 / bits, mask = (1 << bits) - 1;
    for (int x = 0; x < count; ++x) {
        const int shift = 8 - bits * (x % perByte + 1);
        indices[x] = static_cast<std::uint8_t>(packed[x / perByte] >> shift & mask);
    }
}

} // namespace

struct BmpReader::Header {
    struct Colour {
        std::uint8_t blue, green, red, unused;
    };

    int bits = 0; ///< Of a pixel.
    std::int32_t width = 0;
    std::int64_t height = 0; ///< Negative from the top down.
    std::uint32_t pixelsAt = 0;
    std::vector<Colour> palette{}; ///< 256 of up to 8 bits, otherwise none.

    bool hasPalette() const { return !palette.empty(); }
    bool isGray() const {
        return hasPalette() &&
               std::all_of(palette.begin(), palette.end(), [](const Colour& colour) {
                   return colour.blue == colour.green && colour.green == colour.red;
               });
    }
    std::size_t rowBytes() const {
        return (static_cast<std::size_t>(width) * static_cast<std::size_t>(bits) + 31) / 32 * 4;
    }
    int rowOf(int i, int rows) const { return height > 0 ? rows - 1 - i : i; }
};

bool BmpReader::recognises(const QByteArray& start) { return start.startsWith("BM"); }

BmpReader::Header BmpReader::readHeader() {
    file().seek(0);
    std::array<char, headerBytes> bytes{};
    readBytes(bytes.data(), bytes.size());
    const auto number = [&](std::size_t at) {
        return qFromLittleEndian<std::uint32_t>(&bytes.at(at));
    };
    Header header;
    header.bits = qFromLittleEndian<std::uint16_t>(&bytes.at(bitsAt));
    header.width = qFromLittleEndian<std::int32_t>(&bytes.at(widthAt));
    header.height = qFromLittleEndian<std::int32_t>(&bytes.at(heightAt));
    header.pixelsAt = number(pixelsAt);

    const bool isSmall = header.bits == 1 || header.bits == 4 || header.bits == 8;
    bool isKnown = number(infoBytesAt) >= 40 && (isSmall || header.bits == 24 || header.bits == 32);
    if (number(compressionAt) == withMasks && header.bits == 32) {
        std::array<std::uint32_t, 3> masks{};
        readBytes(masks.data(), sizeof masks);
        for (std::uint32_t& mask : masks)
            mask = qFromLittleEndian(mask);
        isKnown = isKnown && masks == usualMasks;
    } else {
        isKnown = isKnown && number(compressionAt) == plain;
    }
    if (!isKnown)
        throw Reason("is a BMP file of a kind that is not supported; uncompressed ones of 1, 4, 8, "
                     "24 and 32 bits are");
    if (header.width <= 0)
        throw Reason("has no pixels");
    if (isSmall) {
        header.palette.resize(256);
        const std::size_t most = std::size_t{1} << header.bits;
        const std::uint32_t stated = number(coloursAt);
        const std::size_t colours = stated == 0 ? most : std::min<std::size_t>(stated, most);
        file().seek(static_cast<qint64>(infoBytesAt) + number(infoBytesAt));
        readBytes(header.palette.data(), colours * sizeof(Header::Colour));
    }
    return header;
}

cv::Mat BmpReader::indicesOf(const Header& header) {
    cv::Mat indices = newImage(static_cast<std::uint64_t>(header.width),
                               static_cast<std::uint64_t>(std::abs(header.height)), CV_8UC1);
    std::vector<std::uint8_t> row(header.rowBytes());
    file().seek(header.pixelsAt);
    for (int i = 0; i < indices.rows; ++i) {
        readBytes(row.data(), row.size());
        unpack(row.data(), header.bits, indices.ptr(header.rowOf(i, indices.rows)), indices.cols);
    }
    return indices;
}

cv::Mat BmpReader::coloursOf(const Header& header) {
    cv::Mat image = newImage(static_cast<std::uint64_t>(header.width),
                             static_cast<std::uint64_t>(std::abs(header.height)), CV_8UC3);
    const auto pixelBytes = static_cast<std::size_t>(header.bits) / 8;
    std::vector<std::uint8_t> row(header.rowBytes());
    file().seek(header.pixelsAt);
    for (int i = 0; i < image.rows; ++i) {
        readBytes(row.data(), row.size());
        std::uint8_t* out = image.ptr(header.rowOf(i, image.rows));
        const std::uint8_t* in = row.data();
        for (int x = 0; x < image.cols; ++x, in += pixelBytes, out += 3)
            std::copy_n(in, 3, out);
    }
    return image;
}

cv::Mat BmpReader::read(int /*index*/) {
    const Header header = readHeader();
    if (!header.hasPalette())
        return coloursOf(header);
    const cv::Mat indices = indicesOf(header);
    cv::Mat image(indices.size(), header.isGray() ? CV_8UC1 : CV_8UC3);
    for (int y = 0; y < image.rows; ++y) {
        std::uint8_t* out = image.ptr(y);
        for (int x = 0; x < image.cols; ++x, out += image.channels())
            std::copy_n(&header.palette[indices.ptr(y)[x]].blue, image.channels(), out);
    }
    return image;
}

cv::Mat BmpReader::readPlane(int index, int component) {
    const Header header = readHeader();
    return header.hasPalette() && !header.isGray() ? indicesOf(header)
                                                   : PageReader::readPlane(index, component);
}

FileDescription BmpReader::describe() {
    const Header header = readHeader();
    FileDescription description = PageReader::describe();
    if (header.hasPalette() && !header.isGray())
        for (const Header::Colour& colour : header.palette)
            description.metadata.channels[0].lut.push_back(
                static_cast<std::uint32_t>(colour.red << 16 | colour.green << 8 | colour.blue));
    return description;
}

} // namespace lumetra
