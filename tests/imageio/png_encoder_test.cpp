#include "imageio/deflate_encoder.h"
#include "imageio/image_file.h"
#include "imageio/png_encoder.h"
#include "imageio/prefix_code.h"
#include "imageio/reason.h"

#include <gtest/gtest.h>

#include "images.h"

#include <QBuffer>
#include <QTemporaryDir>
#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

#include <zlib.h>

namespace lumetra {
namespace {

using Bytes = std::vector<std::uint8_t>;

std::size_t bitsOf(const std::vector<std::uint32_t>& frequencies,
                   const std::vector<unsigned>& lengths) {
    return std::inner_product(frequencies.begin(), frequencies.end(), lengths.begin(),
                              std::size_t{0});
}

/// The least bits that any lengths up to `longest` need, all of them tried.
std::size_t leastBits(const std::vector<std::uint32_t>& frequencies, unsigned longest) {
    std::vector<unsigned> lengths(frequencies.size(), 1);
    std::size_t least = SIZE_MAX;
    for (;;) {
        unsigned share = 0; // of all bit strings of the longest length
        for (const unsigned length : lengths)
            share += 1U << (longest - length);
        if (share <= 1U << longest)
            least = std::min(least, bitsOf(frequencies, lengths));
        auto next = std::find_if(lengths.begin(), lengths.end(),
                                 [=](unsigned length) { return length < longest; });
        if (next == lengths.end())
            return least;
        std::fill(lengths.begin(), next, 1U);
        ++*next;
    }
}

TEST(PrefixCodes, AreTheBestOnesWithinTheLongestLength) {
    cv::RNG random(1);
    for (int round = 0; round < 40; ++round)
        for (const unsigned longest : {3U, 4U, 5U}) {
            std::vector<std::uint32_t> frequencies(static_cast<std::size_t>(random.uniform(2, 7)));
            for (auto& frequency : frequencies) // some rare, some common
                frequency =
                    static_cast<std::uint32_t>(random.uniform(1, 2 << random.uniform(0, 12)));
            const std::vector<PrefixCode> codes = prefixCodes(frequencies, longest);
            std::vector<unsigned> lengths(codes.size());
            std::transform(codes.begin(), codes.end(), lengths.begin(),
                           [](const PrefixCode& code) { return code.length; });
            EXPECT_EQ(bitsOf(frequencies, lengths), leastBits(frequencies, longest));
        }
}

/// What zlib makes of a DEFLATE stream that ends where it says; nothing if it finds a fault.
Bytes inflated(const Bytes& stream, std::size_t expected) {
    Bytes out(expected + 1);
    z_stream state{};
    inflateInit2(&state, -MAX_WBITS);
    state.next_in = const_cast<Bytef*>(stream.data());
    state.avail_in = static_cast<uInt>(stream.size());
    state.next_out = out.data();
    state.avail_out = static_cast<uInt>(out.size());
    const bool isWhole = inflate(&state, Z_FINISH) == Z_STREAM_END && state.avail_in == 0;
    out.resize(isWhole ? state.total_out : 0);
    inflateEnd(&state);
    return out;
}

Bytes randomBytes(std::size_t count, int values, std::uint64_t seed) {
    cv::RNG random(seed);
    Bytes bytes(count);
    for (auto& byte : bytes)
        byte = static_cast<std::uint8_t>(random.uniform(0, values));
    return bytes;
}

/// Runs of all lengths up to `most`, of several bytes, each behind a few bytes of noise.
Bytes runsUpTo(std::size_t most) {
    Bytes bytes;
    for (std::size_t length = 0; length <= most; ++length) {
        const Bytes noise = randomBytes(length % 11, 256, length);
        bytes.insert(bytes.end(), noise.begin(), noise.end());
        bytes.insert(bytes.end(), length, static_cast<std::uint8_t>(length % 3));
    }
    return bytes;
}

TEST(DeflateEncoder, GivesStreamsOfAllKindsOfBlocks) {
    constexpr std::size_t most = DeflateEncoder::largestBlock;
    const std::vector<Bytes> blocks{
        {7},
        Bytes(most, 0),
        randomBytes(most, 256, 1), // stored, in more than one piece
        randomBytes(1, 256, 2),
        randomBytes(65535, 256, 3),
        randomBytes(5000, 5, 4),
        {0, 0},
        runsUpTo(300),
        Bytes(300, 255),
        randomBytes(most, 3, 5),
    };
    DeflateEncoder encoder;
    Bytes stream, all;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        const bool isLast = i + 1 == blocks.size();
        encoder.encode(blocks[i].data(), blocks[i].size(), isLast, stream);
        all.insert(all.end(), blocks[i].begin(), blocks[i].end());

        Bytes alone;
        DeflateEncoder().encode(blocks[i].data(), blocks[i].size(), true, alone);
        EXPECT_EQ(inflated(alone, blocks[i].size()), blocks[i]) << i;
    }
    EXPECT_EQ(inflated(stream, all.size()), all);
}

TEST(DeflateEncoder, FindsRunsWhereverTheyBeginAndEnd) {
    for (std::size_t before = 1; before < 20; ++before)
        for (const std::size_t length : {15U, 16U, 23U, 258U, 259U, 600U, 1023U}) {
            Bytes bytes = randomBytes(before + length + 3, 256, before);
            std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(before), length, bytes[0] + 1);
            Bytes stream;
            DeflateEncoder().encode(bytes.data(), bytes.size(), true, stream);
            EXPECT_EQ(inflated(stream, bytes.size()), bytes) << before << ' ' << length;
            if (length >= 258) { // what is left are a header and two dozen bytes
                EXPECT_LT(stream.size(), 90U) << before << ' ' << length;
            }
        }
}

/// What an image shows, and the share of its bytes that a file may take, a thousand bytes aside.
struct Content {
    const char* name;
    double share;
    std::function<void(cv::Mat&)> draw;
};

void fillNoise(cv::Mat& image, double mean, double deviation) {
    cv::RNG random(5);
    cv::Mat values(image.size(), CV_MAKETYPE(CV_32F, image.channels()));
    random.fill(values, cv::RNG::NORMAL, mean, deviation);
    values.convertTo(image, image.depth());
}

const std::vector<Content>& contents() {
    static const std::vector<Content> all{
        {"black", 0.002, [](cv::Mat& image) { image = cv::Scalar::all(0); }},
        {"saturated", 0.002, [](cv::Mat& image) { image = cv::Scalar::all(65535); }},
        {"random", 1.001,
         [](cv::Mat& image) { cv::RNG(1).fill(image, cv::RNG::UNIFORM, 0, 65536); }},
        {"camera", 0.66, [](cv::Mat& image) { fillNoise(image, 60, 4); }},
        {"mostly dark", 0.25, [](cv::Mat& image) { fillNoise(image, -6, 4); }},
        {"ramp", 0.2,
         [](cv::Mat& image) {
             for (int y = 0; y < image.rows; ++y)
                 image.row(y) = cv::Scalar(y, y * 3, y * 7);
         }},
        {"cells", 1.001,
         [](cv::Mat& image) { testImage(image.size(), image.type()).copyTo(image); }},
    };
    return all;
}

class PngFiles : public testing::Test {
protected:
    /// @return What the reader of the programs makes of the bytes.
    cv::Mat readBack(const QByteArray& bytes) const {
        const QString file = folder_.filePath("a.png");
        store(file, bytes);
        return ImageFile(file).page(1);
    }

    static QByteArray encoded(const cv::Mat& image, std::optional<double> pixelSize = {}) {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        encodePng(image, buffer, pixelSize);
        return buffer.data();
    }

    QTemporaryDir folder_;
};

TEST_F(PngFiles, OfEveryKindAndSizeAreReadAsTheyWere) {
    constexpr int longRow = 50000; // of which one fills more than a block
    for (const int type : {CV_8UC1, CV_8UC3, CV_16UC1, CV_16UC3})
        for (const Content& content : contents())
            for (const cv::Size size :
                 {cv::Size(1, 1), cv::Size(2, 1), cv::Size(1, 300), cv::Size(31, 17),
                  cv::Size(longRow, 3), cv::Size(400, 300)}) {
                cv::Mat whole(size + cv::Size(3, 0), type);
                content.draw(whole);
                const cv::Mat image = whole(cv::Rect({2, 0}, size)); // its rows lie apart
                image(cv::Rect(0, 0, 1, 1)) = cv::Scalar(1, 2, 3);   // a colour, not gray
                const QByteArray bytes = encoded(image);
                EXPECT_TRUE(areEqual(readBack(bytes), image)) << content.name << type << size;
                const cv::Mat raw(1, static_cast<int>(bytes.size()), CV_8U,
                                  const_cast<char*>(bytes.data()));
                EXPECT_TRUE(areEqual(cv::imdecode(raw, cv::IMREAD_UNCHANGED), image))
                    << content.name << type << size;
                if (size.width > 100) {
                    const auto most = content.share * static_cast<double>(image.total());
                    EXPECT_LE(bytes.size(), most * static_cast<double>(image.elemSize()) + 1000)
                        << content.name << type << size;
                }
            }
}

TEST_F(PngFiles, TellThePixelSizeThatTheyCanHold) {
    const cv::Mat image = testImage({5, 4}, CV_8UC1);
    const auto sizeIn = [&](double pixelSize) {
        readBack(encoded(image, pixelSize));
        return ImageFile(folder_.filePath("a.png")).metadata().pixelSizeX;
    };
    EXPECT_NEAR(sizeIn(0.325).value_or(0), 0.325, 1e-6);
    EXPECT_EQ(encoded(image, 1e-4), encoded(image)); // more pixels per metre than there is room for
    EXPECT_EQ(encoded(image, 1e9), encoded(image));
}

/// Takes some bytes and no more.
class FullDevice : public QIODevice {
public:
    explicit FullDevice(qint64 room) : room_(room) { open(WriteOnly | Unbuffered); }

protected:
    qint64 readData(char* /*bytes*/, qint64 /*most*/) override { return -1; }
    qint64 writeData(const char* /*bytes*/, qint64 count) override {
        const qint64 taken = std::min(count, room_);
        room_ -= taken;
        return taken;
    }

private:
    qint64 room_;
};

TEST_F(PngFiles, ThatADeviceDoesNotTakeAreAnError) {
    const cv::Mat image = testImage({700, 300}, CV_8UC3);
    const qint64 size = encoded(image, 1.0).size();
    for (const qint64 room :
         {qint64{0}, qint64{7}, qint64{20}, qint64{40}, qint64{1000}, size - 1}) {
        FullDevice device(room);
        EXPECT_THROW(encodePng(image, device, 1.0), Reason) << room;
    }
    FullDevice device(size);
    EXPECT_NO_THROW(encodePng(image, device, 1.0));
    EXPECT_THROW(encoded(cv::Mat(1, 1000001, CV_8UC1)), Reason); // which hardly anybody could read
}

/// A file of strips that were encoded from the last one to the first.
QByteArray inStrips(const cv::Mat& image, int rowsOfStrip) {
    QByteArray file;
    QBuffer device(&file);
    device.open(QIODevice::WriteOnly);
    PngStrips png(image.size(), image.type(), device, {});
    std::vector<PngStrips::Strip> strips;
    for (int i = (image.rows - 1) / rowsOfStrip; i >= 0; --i) {
        const int top = i * rowsOfStrip;
        strips.push_back(
            PngStrips::encode(image.rowRange(top, std::min(image.rows, top + rowsOfStrip)), i));
    }
    std::for_each(strips.rbegin(), strips.rend(),
                  [&](const PngStrips::Strip& strip) { png.add(strip); });
    png.finish();
    return file;
}

/// Whether zlib accepts the pixels of a file, whose checksum libpng does not insist on.
bool isWholeStream(const QByteArray& file, std::size_t bytes) {
    QByteArray stream;
    for (int at = 8; at < file.size();) {
        const auto length = static_cast<int>(qFromBigEndian<quint32>(file.constData() + at));
        if (file.mid(at + 4, 4) == "IDAT")
            stream += file.mid(at + 8, length);
        at += length + 12;
    }
    std::vector<std::uint8_t> pixels(bytes);
    auto count = static_cast<uLongf>(bytes);
    return uncompress(pixels.data(), &count,
                      reinterpret_cast<const std::uint8_t*>(stream.constData()),
                      static_cast<uLong>(stream.size())) == Z_OK &&
           count == bytes;
}

TEST(PngStrips, AreOneFileForEveryReader) {
    const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("strips.png"));
    for (const int type : {CV_8UC1, CV_8UC3, CV_16UC1, CV_16UC3})
        for (const cv::Size size : {cv::Size(1, 1), cv::Size(3, 7), cv::Size(301, 500)})
            for (const int rows : {1, 2, 64, 1000}) {
                const cv::Mat noise = testImage(size, type), dark = cv::Mat::zeros(size, type);
                for (const cv::Mat& image : {noise, dark}) {
                    const QByteArray file = inStrips(image, rows);
                    store(name, file);
                    ASSERT_TRUE(areEqual(readByOpenCv(name), image))
                        << size << " in strips of " << rows;
                    const std::size_t bytes = image.total() * image.elemSize();
                    ASSERT_TRUE(isWholeStream(file, bytes + static_cast<std::size_t>(image.rows)));
                }
            }
}

TEST(PngStrips, AreWhatALargeImageIsWrittenIn) {
    cv::Mat image(5000, 6800, CV_8UC3);
    ASSERT_TRUE(isLarge(image.size()) && !isLarge({5000, 6700}));
    for (int y = 0; y < image.rows; ++y)
        image.row(y).setTo(cv::Scalar(y % 251, y % 13, 7));
    QByteArray file;
    QBuffer device(&file);
    device.open(QIODevice::WriteOnly);
    encodePng(image, device);
    EXPECT_EQ(file, inStrips(image, PngStrips::rowsOf(image.size(), image.type())));
}

} // namespace
} // namespace lumetra
