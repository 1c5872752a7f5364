// TIFF files of all kinds, made by libtiff itself, beside what they were made of and beside what
// OpenCV reads.
#include "imageio/file_error.h"
#include "imageio/image_file.h"
#include "imageio/orientation.h"
#include "imageio/tiff_writer.h"

#include <gtest/gtest.h>

#include "images.h"

#include <QTemporaryDir>

#include <cstring>
#include <map>

#include <tiffio.h>

namespace lumetra {
namespace {

struct Kind {
    const char* mode = "w"; ///< "wb" for big-endian, "w8" for BigTIFF
    int compression = COMPRESSION_NONE;
    int predictor = PREDICTOR_NONE;
    int planes = PLANARCONFIG_CONTIG;
    int tile = 0; ///< Its side, or strips of `rows`.
    int rows = 16;
    int orientation = ORIENTATION_TOPLEFT;
    int extra = -1; ///< What a fourth value is; -1 for none.
    int photometric = -1;
    std::map<int, int> others{};
    bool isPaletteNarrow = false; ///< Of values of 8 bits in place of 16.
};

/// The components of the colours of palettes, all red ones first.
int paletteValue(int i) { return (i * 5 + i / 256 * 7) % 256; }

/// Writes a page of a kind through libtiff's tiles or strips, value by value.
void writePieces(TIFF* tiff, const cv::Mat& image, const Kind& kind) {
    const int stored = image.channels();
    const std::size_t bytes = image.elemSize1();
    const bool isPlanar = kind.planes == PLANARCONFIG_SEPARATE;
    const int width = kind.tile ? kind.tile : image.cols;
    const int height = kind.tile ? kind.tile : kind.rows;
    const int step = isPlanar ? 1 : stored;
    for (int plane = 0; plane < (isPlanar ? stored : 1); ++plane)
        for (int y0 = 0; y0 < image.rows; y0 += height)
            for (int x0 = 0; x0 < image.cols; x0 += width) {
                const int rows = kind.tile ? height : std::min(height, image.rows - y0);
                cv::Mat piece = cv::Mat::zeros(rows, width, CV_MAKETYPE(image.depth(), step));
                for (int y = 0; y < std::min(rows, image.rows - y0); ++y)
                    for (int x = 0; x < std::min(width, image.cols - x0); ++x)
                        for (int c = 0; c < step; ++c) {
                            const int from = isPlanar ? plane : c;
                            // The first three are blue, green and red, and stored the other way.
                            const int bgr = stored >= 3 && from < 3 ? 2 - from : from;
                            std::memcpy(piece.ptr(y, x) + static_cast<std::size_t>(c) * bytes,
                                        image.ptr(y0 + y, x0 + x) +
                                            static_cast<std::size_t>(bgr) * bytes,
                                        bytes);
                        }
                const auto size = static_cast<tmsize_t>(piece.total() * piece.elemSize());
                const auto x = static_cast<std::uint32_t>(x0), y = static_cast<std::uint32_t>(y0);
                const auto of = static_cast<std::uint16_t>(plane);
                ASSERT_GE(kind.tile ? TIFFWriteEncodedTile(tiff, TIFFComputeTile(tiff, x, y, 0, of),
                                                           piece.data, size)
                                    : TIFFWriteEncodedStrip(tiff, TIFFComputeStrip(tiff, y, of),
                                                            piece.data, size),
                          0);
            }
}

void writeTiff(const QString& file, const std::vector<cv::Mat>& pages, const Kind& kind) {
    TIFF* tiff = TIFFOpen(QFile::encodeName(file).constData(), kind.mode);
    ASSERT_NE(tiff, nullptr);
    for (const cv::Mat& image : pages) {
        const auto set = [&](int tag, auto value) {
            TIFFSetField(tiff, static_cast<std::uint32_t>(tag), value);
        };
        const bool isColour = image.channels() >= 3;
        set(TIFFTAG_IMAGEWIDTH, image.cols);
        set(TIFFTAG_IMAGELENGTH, image.rows);
        set(TIFFTAG_SAMPLESPERPIXEL, image.channels());
        set(TIFFTAG_BITSPERSAMPLE, 8 * static_cast<int>(image.elemSize1()));
        if (image.depth() != CV_8U && image.depth() != CV_16U)
            set(TIFFTAG_SAMPLEFORMAT,
                image.depth() >= CV_32F ? SAMPLEFORMAT_IEEEFP : SAMPLEFORMAT_INT);
        set(TIFFTAG_PHOTOMETRIC, kind.photometric >= 0 ? kind.photometric
                                 : isColour            ? PHOTOMETRIC_RGB
                                                       : PHOTOMETRIC_MINISBLACK);
        set(TIFFTAG_PLANARCONFIG, kind.planes);
        set(TIFFTAG_COMPRESSION, kind.compression);
        set(TIFFTAG_ORIENTATION, kind.orientation);
        if (kind.predictor != PREDICTOR_NONE)
            set(TIFFTAG_PREDICTOR, kind.predictor);
        if (kind.extra >= 0) {
            const auto meaning = static_cast<std::uint16_t>(kind.extra);
            TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &meaning);
        }
        if (kind.photometric == PHOTOMETRIC_PALETTE) {
            std::vector<std::uint16_t> map(3 * 256);
            for (std::size_t i = 0; i < map.size(); ++i)
                map[i] = static_cast<std::uint16_t>(paletteValue(static_cast<int>(i)) *
                                                    (kind.isPaletteNarrow ? 1 : 257));
            TIFFSetField(tiff, TIFFTAG_COLORMAP, map.data(), &map[256], &map[512]);
        }
        for (const auto& [tag, value] : kind.others)
            set(tag, value);
        if (kind.tile) {
            set(TIFFTAG_TILEWIDTH, kind.tile);
            set(TIFFTAG_TILELENGTH, kind.tile);
        } else {
            set(TIFFTAG_ROWSPERSTRIP, kind.rows);
        }
        writePieces(tiff, image, kind);
        ASSERT_TRUE(TIFFWriteDirectory(tiff));
    }
    TIFFClose(tiff);
}

/// A file of a single row, with fields of its own.
template<class SetFields>
void writeRow(const QString& file, const SetFields& setFields) {
    TIFF* tiff = TIFFOpen(QFile::encodeName(file).constData(), "w");
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 4);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 1);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    setFields(tiff);
    std::uint32_t row = 0;
    TIFFWriteScanline(tiff, &row, 0);
    TIFFClose(tiff);
}

std::string refusal(const QString& file) {
    try {
        ImageFile(file).page(1);
    } catch (const FileError& error) {
        return error.what();
    }
    return "nothing";
}

class TiffFile : public testing::Test {
protected:
    QTemporaryDir folder_;
    QString file_ = folder_.filePath("a.tif");
};

/// Four channels of an image, with the first three of it.
cv::Mat withAlpha(const cv::Mat& image) {
    cv::Mat wide(image.size(), CV_MAKETYPE(image.depth(), 4));
    const cv::Mat alpha = testImage(image.size(), CV_MAKETYPE(image.depth(), 1), 9);
    const std::vector<cv::Mat> parts{image, alpha};
    cv::mixChannels(parts, std::vector<cv::Mat>{wide}, {0, 0, 1, 1, 2, 2, 3, 3});
    return wide;
}

std::vector<Kind> kinds() {
    return {
        {},
        {"wb"},
        {"w8"},
        {"w8b"},
        {"w", COMPRESSION_LZW, PREDICTOR_HORIZONTAL},
        {"wb", COMPRESSION_LZW, PREDICTOR_HORIZONTAL},
        {"w", COMPRESSION_PACKBITS},
        {"w", COMPRESSION_ADOBE_DEFLATE, PREDICTOR_HORIZONTAL},
        {"w", COMPRESSION_DEFLATE},
        {"w", COMPRESSION_LZMA},
        {"w", COMPRESSION_ZSTD, PREDICTOR_HORIZONTAL},
        {"w", COMPRESSION_LERC},
        {"w", COMPRESSION_NONE, PREDICTOR_NONE, PLANARCONFIG_CONTIG, 16},
        {"wb", COMPRESSION_LZW, PREDICTOR_HORIZONTAL, PLANARCONFIG_CONTIG, 32},
        {"w", COMPRESSION_NONE, PREDICTOR_NONE, PLANARCONFIG_SEPARATE},
        {"wb", COMPRESSION_ZSTD, PREDICTOR_NONE, PLANARCONFIG_SEPARATE, 16},
        {"w", COMPRESSION_NONE, PREDICTOR_NONE, PLANARCONFIG_CONTIG, 0, 1},
        {"w", COMPRESSION_NONE, PREDICTOR_NONE, PLANARCONFIG_CONTIG, 0, 1000},
    };
}

TEST_F(TiffFile, ComesBackAsItWasStored) {
    for (const Kind& kind : kinds()) {
        if (!TIFFIsCODECConfigured(static_cast<std::uint16_t>(kind.compression)))
            continue;
        for (const int type : {CV_8UC1, CV_16UC1, CV_8UC3, CV_16UC3}) {
            const cv::Mat image = testImage({45, 33}, type);
            const std::string what = std::string(kind.mode) + ' ' +
                                     std::to_string(kind.compression) + ' ' + std::to_string(type);
            writeTiff(file_, {image}, kind);
            const cv::Mat page = ImageFile(file_).page(1);
            EXPECT_TRUE(areEqual(page, image)) << what;
            const bool isMisread = kind.planes == PLANARCONFIG_SEPARATE && type == CV_16UC3;
            EXPECT_TRUE(isMisread || areEqual(page, readByOpenCv(file_))) << what;
            if (type != CV_8UC3 && type != CV_16UC3)
                continue;
            Kind alpha = kind;
            alpha.extra = EXTRASAMPLE_ASSOCALPHA;
            writeTiff(file_, {withAlpha(image)}, alpha);
            EXPECT_TRUE(areEqual(ImageFile(file_).page(1), image)) << what << " with alpha";
        }
    }
}

TEST_F(TiffFile, OfOtherTypesOfValuesKeepsThem) {
    const std::pair<int, double> steps[] = {
        {CV_8S, 1. / 256}, {CV_16S, 1}, {CV_32S, 65535}, {CV_32F, 0.37}, {CV_64F, 0.37}};
    for (Kind kind : kinds())
        for (const auto& [type, step] : steps) {
            const bool isFloat = type == CV_32F || type == CV_64F;
            const bool isBigEndian = QByteArray(kind.mode).contains('b');
            if (isFloat && kind.predictor != PREDICTOR_NONE)
                kind.predictor = PREDICTOR_FLOATINGPOINT;
            if (!TIFFIsCODECConfigured(static_cast<std::uint16_t>(kind.compression)) ||
                (kind.predictor == PREDICTOR_FLOATINGPOINT && isBigEndian))
                continue; // which libtiff 4.5 itself writes wrong
            cv::Mat values, expected;
            testImage({45, 33}, CV_16UC1).convertTo(values, type, step, -32768 * step);
            writeTiff(file_, {values}, kind);
            const ImageFile file(file_);
            values.convertTo(expected, type == CV_32S || type == CV_64F ? CV_64F : CV_32F);
            EXPECT_TRUE(areEqual(file.plane(1, 1, 1), expected))
                << kind.mode << ' ' << kind.compression << ' ' << type;
            EXPECT_THROW(file.page(1), FileError);
            EXPECT_THROW(file.grayPage(1), FileError);
        }
}

TEST_F(TiffFile, IsTurnedAsItsOrientationTells) {
    for (int orientation = 0; orientation <= 9; ++orientation)
        for (const int type : {CV_8UC1, CV_8UC3, CV_16UC1, CV_16UC3}) {
            Kind kind;
            kind.orientation = orientation;
            kind.rows = 1000;
            const cv::Mat image = testImage({45, 33}, type);
            writeTiff(file_, {image}, kind);
            const cv::Mat page = ImageFile(file_).page(1);
            EXPECT_TRUE(areEqual(page, readByOpenCv(file_))) << orientation << ' ' << type;
            kind.rows = 16; // the same in many strips
            writeTiff(file_, {image}, kind);
            EXPECT_TRUE(areEqual(ImageFile(file_).page(1), page)) << orientation << ' ' << type;
        }
}

TEST_F(TiffFile, OfOtherColoursIsConvertedAsByOpenCv) {
    const auto expectAsOpenCv = [&](const cv::Mat& image, Kind kind, const char* what) {
        for (const int tile : {0, 16}) {
            kind.tile = tile;
            kind.orientation = 1;
            writeTiff(file_, {image}, kind);
            const cv::Mat expected = readByOpenCv(file_);
            ASSERT_EQ(expected.type(), CV_8UC3);
            EXPECT_TRUE(areEqual(ImageFile(file_).page(1), expected)) << what << ' ' << tile;
            kind.orientation = 6; // OpenCV mirrors the pieces of a page, not the page
            writeTiff(file_, {image}, kind);
            EXPECT_TRUE(areEqual(ImageFile(file_).page(1), oriented(expected, 6)))
                << what << ' ' << tile << ", turned";
        }
    };
    Kind palette;
    palette.photometric = PHOTOMETRIC_PALETTE;
    expectAsOpenCv(testImage({45, 33}, CV_8UC1), palette, "palette");
    Kind cmyk;
    cmyk.photometric = PHOTOMETRIC_SEPARATED;
    expectAsOpenCv(testImage({45, 33}, CV_8UC4), cmyk, "CMYK");
    Kind loose;
    loose.extra = EXTRASAMPLE_UNASSALPHA;
    expectAsOpenCv(testImage({45, 33}, CV_8UC4), loose, "alpha apart");
    Kind jpeg{"w", COMPRESSION_JPEG};
    jpeg.photometric = PHOTOMETRIC_YCBCR;
    jpeg.others = {{TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB}};
    expectAsOpenCv(testImage({48, 32}, CV_8UC3), jpeg, "YCbCr");
}

TEST_F(TiffFile, ThatWouldBeMisreadIsRefused) {
    const auto expect = [&](const char* reason) {
        const std::string expected = QFile::encodeName(file_).toStdString() + ": page 1 " + reason;
        EXPECT_EQ(refusal(file_).substr(0, expected.size()), expected);
    };
    Kind kind;
    kind.photometric = PHOTOMETRIC_MINISBLACK;
    for (const int type : {CV_16UC2, CV_16UC3, CV_8UC4}) {
        writeTiff(file_, {testImage({20, 10}, type)}, kind);
        expect(("has " + std::to_string(CV_MAT_CN(type)) + " channels; choose one").c_str());
    }
    kind.photometric = PHOTOMETRIC_SEPARATED;
    writeTiff(file_, {testImage({20, 10}, CV_16UC4)}, kind);
    expect("has colours of a kind that is not supported");
    kind.photometric = -1;
    kind.others = {{TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_COMPLEXINT}};
    writeTiff(file_, {testImage({20, 10}, CV_16UC1)}, kind);
    expect("has pixel values of 16 bits that are complex numbers");
    kind.others = {{TIFFTAG_BITSPERSAMPLE, 64}};
    writeTiff(file_, {testImage({20, 14}, CV_16UC1)}, kind);
    expect("has pixel values of 64 bits that are unsigned integers");
}

TEST_F(TiffFile, OfSeveralValuesPerPixelHasChannels) {
    for (const int planes : {PLANARCONFIG_CONTIG, PLANARCONFIG_SEPARATE})
        for (const int tile : {0, 16})
            for (const int type : {CV_8UC2, CV_16UC2}) {
                Kind kind{"w", COMPRESSION_LZW, PREDICTOR_NONE, planes, tile};
                kind.photometric = PHOTOMETRIC_MINISBLACK;
                const cv::Mat image = testImage({45, 33}, type);
                writeTiff(file_, {image, image}, kind);
                const ImageFile file(file_);
                EXPECT_EQ(file.axes().channels, 2);
                EXPECT_EQ(file.axes().slices, 2);
                for (int c = 0; c < 2; ++c) {
                    cv::Mat expected;
                    cv::extractChannel(image, expected, c);
                    EXPECT_TRUE(areEqual(file.plane(c + 1, 2, 1), expected)) << type << ' ' << c;
                    EXPECT_TRUE(areEqual(file.planeOfPage(1, c + 1), expected)) << type;
                }
                kind.extra = EXTRASAMPLE_ASSOCALPHA; // which is no channel
                writeTiff(file_, {image}, kind);
                EXPECT_EQ(ImageFile(file_).axes().channels, 1);
            }
}

TEST_F(TiffFile, StoredInvertedIsTurned) {
    Kind kind;
    kind.photometric = PHOTOMETRIC_MINISWHITE;
    for (const int type : {CV_8UC1, CV_16UC1}) {
        const cv::Mat image = testImage({45, 33}, type);
        writeTiff(file_, {image}, kind);
        const cv::Mat expected = cv::Scalar(type == CV_8UC1 ? 255 : 65535) - image;
        EXPECT_TRUE(areEqual(ImageFile(file_).page(1), expected)) << type;
    }
}

/// Values of a few bits, packed; the rows begin with a byte of their own.
QByteArray packed(const cv::Mat& image, int bits) {
    QByteArray bytes;
    for (int y = 0; y < image.rows; ++y) {
        unsigned word = 0;
        int filled = 0;
        for (int x = 0; x < image.cols; ++x)
            for (int bit = bits - 1; bit >= 0; --bit) {
                word =
                    word << 1 | (static_cast<unsigned>(image.at<std::uint16_t>(y, x)) >> bit & 1);
                if (++filled % 8 == 0)
                    bytes += static_cast<char>(word);
            }
        if (filled % 8 != 0)
            bytes += static_cast<char>(word << (8 - filled % 8));
    }
    return bytes;
}

TEST_F(TiffFile, OfPackedValuesIsUnpacked) {
    for (const char* mode : {"w", "wb"})
        for (int bits = 1; bits < 16; ++bits)
            for (const bool isInverted : {false, true}) {
                if (bits == 8)
                    continue;
                const cv::Mat image = testImage({45, 33}, CV_16UC1) & ((1 << bits) - 1);
                QByteArray bytes = packed(image, bits);
                TIFF* tiff = TIFFOpen(QFile::encodeName(file_).constData(), mode);
                TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, image.cols);
                TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, image.rows);
                TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, bits);
                TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
                TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC,
                             isInverted ? PHOTOMETRIC_MINISWHITE : PHOTOMETRIC_MINISBLACK);
                TIFFWriteEncodedStrip(tiff, 0, bytes.data(), bytes.size());
                TIFFClose(tiff);
                cv::Mat expected = image;
                if (isInverted)
                    expected = cv::Scalar((1 << bits) - 1) - image;
                expected.convertTo(expected, bits <= 8 ? CV_8U : CV_16U);
                EXPECT_TRUE(areEqual(ImageFile(file_).grayPage(1), expected))
                    << mode << ' ' << bits;
            }
}

TEST_F(TiffFile, OfAPaletteGivesItsIndicesAndColours) {
    for (const bool isNarrow : {false, true}) {
        Kind kind;
        kind.photometric = PHOTOMETRIC_PALETTE;
        kind.isPaletteNarrow = isNarrow;
        const cv::Mat indices = testImage({45, 33}, CV_8UC1);
        writeTiff(file_, {indices}, kind);
        const ImageFile file(file_);
        EXPECT_TRUE(areEqual(file.plane(1, 1, 1), indices));
        EXPECT_TRUE(areEqual(file.grayPage(1), indices));
        const int i = indices.at<std::uint8_t>(5, 7);
        const cv::Vec3i colour(paletteValue(512 + i), paletteValue(256 + i), paletteValue(i));
        EXPECT_EQ(file.page(1).at<cv::Vec3b>(5, 7), cv::Vec3b(colour)) << isNarrow;
        EXPECT_EQ(file.metadata().channels[0].lut.at(static_cast<std::size_t>(i)),
                  static_cast<std::uint32_t>(colour[2] << 16 | colour[1] << 8 | colour[0]));
    }
}

TEST_F(TiffFile, TellsThePixelSizeOfMicroscopesNotOfPrinters) {
    struct Case {
        int unit;
        double resolution, expected;
    };
    const std::vector<Case> cases{
        {RESUNIT_CENTIMETER, 10000 / 0.325, 0.325},
        {RESUNIT_INCH, 50800, 0.5},
        {RESUNIT_INCH, 72, 0},
        {RESUNIT_INCH, 300, 0},
        {RESUNIT_NONE, 50800, 0},
        {RESUNIT_INCH, 0, 0},
    };
    for (const Case& c : cases) {
        writeRow(file_, [&c](TIFF* tiff) {
            TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, c.unit);
            TIFFSetField(tiff, TIFFTAG_XRESOLUTION, c.resolution);
        });
        EXPECT_NEAR(ImageFile(file_).metadata().pixelSizeX.value_or(0), c.expected, 1e-6);
    }
}

TEST_F(TiffFile, OfAnImageJStackBehindOneDirectoryIsRefused) {
    for (const int stated : {1, 3}) {
        const QByteArray text =
            "ImageJ=1.53t\nimages=" + QByteArray::number(stated) + "\nslices=3\n";
        writeRow(file_, [&](TIFF* tiff) {
            TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, text.constData());
        });
        EXPECT_EQ(refusal(file_).find("says that it has 3 pages, but only 1 can be reached") !=
                      std::string::npos,
                  stated == 3);
    }
}

/// How often this process has read something, where the system counts it.
qint64 callsThatRead() {
#ifdef Q_OS_LINUX
    QFile counts(QStringLiteral("/proc/self/io"));
    EXPECT_TRUE(counts.open(QFile::ReadOnly));
    const QByteArray text = counts.readAll();
    const QByteArray key = "syscr: ";
    const auto at = text.indexOf(key) + key.size();
    return text.mid(at, text.indexOf('\n', at) - at).toLongLong();
#else
    return 0;
#endif
}

TEST_F(TiffFile, OfManyPagesIsReadInAnyOrderAndFast) {
    constexpr int pages = 1000;
    std::vector<cv::Mat> written;
    {
        TiffWriter writer(file_, Existing::keep, 0);
        for (int i = 0; i < pages; ++i) {
            written.push_back(testImage({64, 64}, i % 3 ? CV_16UC1 : CV_8UC3, i));
            writer.add(written.back());
        }
        EXPECT_FALSE(QFile::exists(file_)); // not seen before it is whole
        writer.commit();
    }
    const qint64 before = callsThatRead();
    const ImageFile file(file_);
    ASSERT_EQ(file.pages(), pages);
    for (int i = 0; i < pages; ++i) {
        const int page = i * 37 % pages;
        ASSERT_TRUE(areEqual(file.page(page + 1), written[static_cast<std::size_t>(page)])) << page;
    }
    EXPECT_LT(callsThatRead() - before, 20 * pages); // and no search from the first page each time
    EXPECT_THROW(file.page(0), FileError);
    EXPECT_THROW(file.page(pages + 1), FileError);
    EXPECT_THROW(file.grayPage(1), FileError);
    EXPECT_EQ(file.grayPage(2).type(), CV_16UC1);
}

} // namespace
} // namespace lumetra
