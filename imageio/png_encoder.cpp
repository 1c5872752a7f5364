#include "imageio/png_encoder.h"

#include "imageio/atomic_file.h"
#include "imageio/deflate_encoder.h"
#include "imageio/reason.h"

#include <QBuffer>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include <libdeflate.h>

// A PNG file (RFC 2083) is a signature and chunks: length of the content, type, content, CRC-32 of
// the two. IHDR tells the size, pHYs the size of a pixel; IDAT chunks hold the pixels, and IEND is
// empty.
//
// The content of all IDAT chunks is one zlib stream (RFC 1950): two bytes of header, a DEFLATE
// stream, the Adler-32 of what it holds. That is row after row: the number of a filter, then the
// filtered bytes. Filter 1, Sub, stands for each byte's difference to that of the pixel before,
// modulo 256. Pixels are gray, or red, green and blue; values of 16 bits have the high byte first.
//
// Differences of pixels are small numbers, which have short codes, and 0 where nothing is.

namespace lumetra {
namespace {

using Bytes = std::vector<std::uint8_t>;

void appendNumber(Bytes& bytes, std::uint32_t number) {
    std::array<std::uint8_t, 4> bigEndian{};
    qToBigEndian(number, bigEndian.data());
    bytes.insert(bytes.end(), bigEndian.begin(), bigEndian.end());
}

/// As PNG has it; 0 for none, and for what its 31 bits do not hold.
std::uint32_t pixelsPerMetre(std::optional<double> micrometres) {
    constexpr double most = std::numeric_limits<std::int32_t>::max();
    const double perMetre = micrometres ? std::round(1e6 / *micrometres) : 0;
    return perMetre >= 1 && perMetre <= most ? static_cast<std::uint32_t>(perMetre) : 0;
}

[[noreturn]] void failWriting() { throw Reason("cannot be written (the file takes no more)"); }

void writeOut(QIODevice& device, const Bytes& bytes) {
    if (!writeAll(device, reinterpret_cast<const char*>(bytes.data()),
                  static_cast<qint64>(bytes.size())))
        failWriting();
}

/// A chunk, or one after another of the same type.
class Chunk {
public:
    explicit Chunk(const char* type) : bytes_(start) { std::copy_n(type, 4, bytes_.begin() + 4); }

    /// Content can be appended to it.
    Bytes& bytes() { return bytes_; }

    /// Writes the chunk; what is appended then is for another one.
    void writeTo(QIODevice& device) {
        qToBigEndian(static_cast<quint32>(bytes_.size() - start), bytes_.data());
        appendNumber(bytes_, libdeflate_crc32(0, bytes_.data() + 4, bytes_.size() - 4));
        writeOut(device, bytes_);
        bytes_.resize(start);
    }

private:
    static constexpr std::size_t start = 8; ///< Length and type.
    Bytes bytes_;
};

/// Differences of the bytes of two values, each modulo 256, in the order that PNG has them in.
std::uint8_t storedDifference(std::uint8_t value, std::uint8_t before) {
    return static_cast<std::uint8_t>(value - before);
}

std::uint16_t storedDifference(std::uint16_t value, std::uint16_t before) {
    constexpr unsigned highBits = 0x8080;
    const unsigned ofLowBits = (value | highBits) - (before & ~highBits);
    const unsigned difference = ofLowBits ^ (~(value ^ before) & highBits); // no byte borrows
    return qToBigEndian(static_cast<std::uint16_t>(difference));
}

/// Filters pixels that have another one before them.
template<class Value, std::size_t channels>
void filterSub(const Value* in, std::size_t pixels, std::uint8_t* out) {
    constexpr std::size_t atOnce = 1024;
    std::array<Value, atOnce * channels> filtered; // which is aligned
    for (std::size_t left = pixels; left > 0;) {
        const std::size_t count = std::min(left, atOnce);
        for (std::size_t x = 0; x < count; ++x)
            for (std::size_t c = 0; c < channels; ++c) {
                const Value* value = in + x * channels + (channels - 1 - c);
                filtered[x * channels + c] = storedDifference(value[0], *(value - channels));
            }
        std::memcpy(out, filtered.data(), count * channels * sizeof(Value));
        in += count * channels;
        out += count * channels * sizeof(Value);
        left -= count;
    }
}

/// The zlib stream of an image, in chunks of one DEFLATE block each.
template<class Value, std::size_t channels>
class ImageData {
public:
    ImageData(const cv::Mat& image, QIODevice& device)
        : image_(image), device_(device), block_(DeflateEncoder::largestBlock) {}

    void write() {
        beginStream();
        addRows();
        writeBlock(End::stream);
    }

    /// Writes a part of a stream, and tells the Adler-32 of what it holds.
    std::uint32_t writePart(bool isFirst) {
        if (isFirst)
            beginStream();
        addRows();
        writeBlock(End::part);
        return adler_;
    }

private:
    enum class End { none, part, stream };

    void beginStream() {
        constexpr std::array<std::uint8_t, 2> header{0x78, 0x01}; // window of 32 KiB, fastest
        chunk_.bytes().insert(chunk_.bytes().end(), header.begin(), header.end());
    }

    void addRows() {
        for (int y = 0; y < image_.rows; ++y)
            addRow(image_.ptr<Value>(y));
    }

    static constexpr std::size_t pixelBytes = channels * sizeof(Value);

    void addRow(const Value* row) {
        constexpr std::uint8_t sub = 1;
        const std::array<Value, 2 * channels> start = startOf(row);
        makeRoom(1 + pixelBytes);
        block_[size_++] = sub;
        addPixels(start.data() + channels, 1);
        const auto width = static_cast<std::size_t>(image_.cols);
        for (std::size_t x = 1; x < width;) {
            makeRoom(pixelBytes);
            const std::size_t room = (DeflateEncoder::largestBlock - size_) / pixelBytes;
            const std::size_t pixels = std::min(room, width - x);
            addPixels(row + x * channels, pixels);
            x += pixels;
        }
    }

    /// The first pixel of a row behind a black one, which the filter takes to be there.
    static std::array<Value, 2 * channels> startOf(const Value* row) {
        std::array<Value, 2 * channels> start{};
        std::copy_n(row, channels, start.begin() + channels);
        return start;
    }

    void addPixels(const Value* pixels, std::size_t count) {
        filterSub<Value, channels>(pixels, count, block_.data() + size_);
        size_ += count * pixelBytes;
    }

    void makeRoom(std::size_t bytes) {
        if (size_ + bytes > DeflateEncoder::largestBlock)
            writeBlock(End::none);
    }

    void writeBlock(End end) {
        adler_ = libdeflate_adler32(adler_, block_.data(), size_);
        deflate_.encode(block_.data(), size_, end == End::stream, chunk_.bytes());
        if (end == End::part)
            deflate_.endPart(chunk_.bytes());
        if (end == End::stream)
            appendNumber(chunk_.bytes(), adler_);
        chunk_.writeTo(device_);
        size_ = 0;
    }

    const cv::Mat& image_;
    QIODevice& device_;
    Bytes block_;
    std::size_t size_ = 0; ///< Of what the block holds so far.
    Chunk chunk_{"IDAT"};
    DeflateEncoder deflate_;
    std::uint32_t adler_ = 1;
};

/// Calls `act` with the data of an image of any type.
template<class Act>
void withImageData(const cv::Mat& image, QIODevice& device, const Act& act) {
    const bool isColour = image.channels() == 3, isNarrow = image.depth() == CV_8U;
    if (isNarrow && isColour)
        act(ImageData<std::uint8_t, 3>(image, device));
    else if (isNarrow)
        act(ImageData<std::uint8_t, 1>(image, device));
    else if (isColour)
        act(ImageData<std::uint16_t, 3>(image, device));
    else
        act(ImageData<std::uint16_t, 1>(image, device));
}

/// The Adler-32 of bytes and others behind them (RFC 1950, section 8.2): a sum of the bytes, 1
/// before the first one, and a sum of these sums.
std::uint32_t joinedAdler(std::uint32_t first, std::uint32_t second, std::uint64_t secondBytes) {
    constexpr std::uint64_t base = 65521, half = 0xffff;
    const std::uint64_t sum = (first & half) + (second & half) + base - 1;
    const std::uint64_t sumOfSums =
        (first >> 16) + (second >> 16) + secondBytes % base * ((first & half) + base - 1);
    return static_cast<std::uint32_t>(sumOfSums % base << 16 | sum % base);
}

void checkSides(cv::Size size) {
    constexpr int most = 1000000; // which nearly every reader takes, as libpng does
    if (std::max(size.width, size.height) > most)
        throw Reason("cannot be written (as PNG it has more than a million pixels a side)");
}

void writeHeader(cv::Size size, int type, QIODevice& device) {
    constexpr std::uint8_t gray = 0, rgb = 2;
    const std::uint8_t bits = CV_MAT_DEPTH(type) == CV_8U ? 8 : 16;
    Chunk header("IHDR");
    appendNumber(header.bytes(), static_cast<std::uint32_t>(size.width));
    appendNumber(header.bytes(), static_cast<std::uint32_t>(size.height));
    header.bytes().push_back(bits);
    header.bytes().push_back(CV_MAT_CN(type) == 3 ? rgb : gray);
    header.bytes().resize(header.bytes().size() + 3); // of compression, filters and order the only
    header.writeTo(device);
}

void writePixelSize(std::uint32_t perMetre, QIODevice& device) {
    constexpr std::uint8_t metre = 1;
    Chunk size("pHYs");
    appendNumber(size.bytes(), perMetre);
    appendNumber(size.bytes(), perMetre);
    size.bytes().push_back(metre);
    size.writeTo(device);
}

/// Writes all that comes before the pixels.
void writeStart(cv::Size size, int type, QIODevice& device, std::optional<double> pixelSize) {
    checkSides(size);
    writeOut(device, {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'});
    writeHeader(size, type, device);
    if (const std::uint32_t perMetre = pixelsPerMetre(pixelSize); perMetre > 0)
        writePixelSize(perMetre, device);
}

void encodeInStrips(const cv::Mat& image, QIODevice& device, std::optional<double> pixelSize) {
    PngStrips file(image.size(), image.type(), device, pixelSize);
    const int rows = PngStrips::rowsOf(image.size(), image.type());
    for (int top = 0; top < image.rows; top += std::min(rows, image.rows - top))
        file.add(PngStrips::encode(image.rowRange(top, top + std::min(rows, image.rows - top)),
                                   top / rows));
    file.finish();
}

} // namespace

bool isLarge(cv::Size size) {
    constexpr std::int64_t most = std::int64_t{1} << 25;
    return std::int64_t{size.width} * size.height > most;
}

PngStrips::PngStrips(cv::Size size, int type, QIODevice& device, std::optional<double> pixelSize)
    : device_(device) {
    writeStart(size, type, device, pixelSize);
}

int PngStrips::rowsOf(cv::Size size, int type) {
    constexpr std::size_t stripBytes = 1 << 22; // many blocks, and yet little memory
    const std::size_t rowBytes = CV_ELEM_SIZE(type) * static_cast<std::size_t>(size.width);
    return static_cast<int>(std::max<std::size_t>(1, stripBytes / rowBytes));
}

PngStrips::Strip PngStrips::encode(const cv::Mat& rows, int number) {
    Strip strip;
    QBuffer buffer(&strip.chunks);
    buffer.open(QIODevice::WriteOnly);
    withImageData(rows, buffer, [&](auto&& data) { strip.adler = data.writePart(number == 0); });
    const std::size_t rowBytes = 1 + rows.elemSize() * static_cast<std::size_t>(rows.cols);
    strip.bytes = std::uint64_t{rowBytes} * static_cast<std::uint64_t>(rows.rows);
    return strip;
}

void PngStrips::add(const Strip& strip) {
    if (!writeAll(device_, strip.chunks.constData(), strip.chunks.size()))
        failWriting();
    adler_ = joinedAdler(adler_, strip.adler, strip.bytes);
}

void PngStrips::finish() {
    Chunk last("IDAT");
    const auto block = DeflateEncoder::lastBlock();
    last.bytes().insert(last.bytes().end(), block.begin(), block.end());
    appendNumber(last.bytes(), adler_);
    last.writeTo(device_);
    Chunk("IEND").writeTo(device_);
}

void encodePng(const cv::Mat& image, QIODevice& device, std::optional<double> pixelSize) {
    if (isLarge(image.size()))
        return encodeInStrips(image, device, pixelSize);
    writeStart(image.size(), image.type(), device, pixelSize);
    withImageData(image, device, [](auto&& data) { data.write(); });
    Chunk("IEND").writeTo(device);
}

} // namespace lumetra
