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

struct PaletteColour {
    std::uint8_t blue, green, red, unused;
};

} // namespace

bool BmpReader::recognises(const QByteArray& start) { return start.startsWith("BM"); }

cv::Mat BmpReader::read(int /*index*/) {
    file().seek(0);
    std::array<char, headerBytes> header{};
    readBytes(header.data(), header.size());
    const auto number = [&](std::size_t at) {
        return qFromLittleEndian<std::uint32_t>(&header.at(at));
    };
    const auto bits = qFromLittleEndian<std::uint16_t>(&header.at(bitsAt));
    const auto width = qFromLittleEndian<std::int32_t>(&header.at(widthAt));
    const auto height = static_cast<std::int64_t>(
        qFromLittleEndian<std::int32_t>(&header.at(heightAt))); // negative from the top down

    bool isKnown = number(infoBytesAt) >= 40 && (bits == 8 || bits == 24 || bits == 32);
    if (number(compressionAt) == withMasks && bits == 32) {
        std::array<std::uint32_t, 3> masks{};
        readBytes(masks.data(), sizeof masks);
        for (std::uint32_t& mask : masks)
            mask = qFromLittleEndian(mask);
        isKnown = isKnown && masks == usualMasks;
    } else {
        isKnown = isKnown && number(compressionAt) == plain;
    }
    if (!isKnown)
        throw Reason("is a BMP file of a kind that is not supported; uncompressed ones of 8, 24 "
                     "and 32 bits are");
    if (width <= 0)
        throw Reason("has no pixels");

    std::array<PaletteColour, 256> palette{};
    if (bits == 8) {
        const std::uint32_t stated = number(coloursAt);
        const std::size_t colours =
            stated == 0 ? palette.size() : std::min<std::size_t>(stated, palette.size());
        file().seek(static_cast<qint64>(infoBytesAt) + number(infoBytesAt));
        readBytes(palette.data(), colours * sizeof(PaletteColour));
    }
    const bool isGray =
        bits == 8 && std::all_of(palette.begin(), palette.end(), [](const PaletteColour& colour) {
            return colour.blue == colour.green && colour.green == colour.red;
        });

    cv::Mat image =
        newImage(static_cast<std::uint64_t>(width), static_cast<std::uint64_t>(std::abs(height)),
                 isGray ? CV_8UC1 : CV_8UC3);
    const std::size_t pixelBytes = bits / 8U;
    std::vector<std::uint8_t> row((static_cast<std::size_t>(width) * pixelBytes + 3) / 4 * 4);
    file().seek(number(pixelsAt));
    for (int i = 0; i < image.rows; ++i) {
        readBytes(row.data(), row.size());
        std::uint8_t* out = image.ptr(height > 0 ? image.rows - 1 - i : i);
        const std::uint8_t* in = row.data();
        for (int x = 0; x < image.cols; ++x, in += pixelBytes, out += image.channels()) {
            const PaletteColour& colour = palette[bits == 8 ? *in : 0];
            if (isGray)
                *out = colour.blue;
            else if (bits == 8)
                std::copy_n(&colour.blue, 3, out);
            else
                std::copy_n(in, 3, out);
        }
    }
    return image;
}

} // namespace lumetra
