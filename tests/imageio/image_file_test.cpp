// PNG, JPEG, BMP, PGM and PPM files of all kinds, beside what OpenCV reads.
#include "imageio/file_error.h"
#include "imageio/image_file.h"

#include <gtest/gtest.h>

#include "images.h"
#include "plane_in_rows.h"

#include <QTemporaryDir>

#include <png.h>

namespace lumetra {
namespace {

class ImageFiles : public testing::Test {
protected:
    /// Stores bytes and compares what is read with what OpenCV reads.
    void expectAsOpenCv(const QByteArray& bytes, const std::string& what) {
        store(file_, bytes);
        const cv::Mat expected = readByOpenCv(file_);
        ASSERT_FALSE(expected.empty()) << what;
        EXPECT_TRUE(areEqual(ImageFile(file_).page(1), expected)) << what;
        const ImageFile file(file_);
        if (const auto rows = file.rows(1, 1, 1)) {
            ++inRows_;
            const cv::Mat plane = planeInRows(*rows);
            EXPECT_TRUE(areEqual(plane, file.plane(1, 1, 1))) << what;
        }
    }

    /// What is read of bytes by the plane.
    cv::Mat planeOf(const QByteArray& bytes) {
        store(file_, bytes);
        return ImageFile(file_).plane(1, 1, 1);
    }

    int inRows_ = 0; ///< How many files were read row by row as well.
    QTemporaryDir folder_;
    QString file_ = folder_.filePath("without an extension");
};

/// EXIF data that tell an orientation.
QByteArray exif(int orientation, bool isBigEndian) {
    const auto number = [&](int value, int length) {
        QByteArray bytes;
        for (int i = 0; i < length; ++i)
            bytes += static_cast<char>(value >> 8 * (isBigEndian ? length - 1 - i : i));
        return bytes;
    };
    return (isBigEndian ? "MM" : "II") + number(42, 2) + number(8, 4) + number(2, 2) +
           number(0x10F, 2) + number(2, 2) + number(4, 4) + number(0, 4) + number(0x112, 2) +
           number(3, 2) + number(1, 4) + number(orientation, 2) + number(0, 2) + number(0, 4);
}

struct PngKind {
    int colourType, bits;
    bool isInterlaced, isTransparent;
    QByteArray exif;
};

QByteArray encodedPng(const PngKind& kind) {
    QByteArray out;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &out,
        [](png_structp of, png_bytep bytes, std::size_t count) {
            static_cast<QByteArray*>(png_get_io_ptr(of))
                ->append(reinterpret_cast<const char*>(bytes), static_cast<int>(count));
        },
        nullptr);
    constexpr png_uint_32 width = 45, height = 33;
    png_set_IHDR(png, info, width, height, kind.bits, kind.colourType,
                 kind.isInterlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, 0, 0);
    std::vector<png_color> palette;
    for (int i = 0; i < 1 << std::min(kind.bits, 8); ++i) {
        const auto value = static_cast<png_byte>(i * 3);
        palette.push_back({value, static_cast<png_byte>(255 - value), 7});
    }
    if (kind.colourType == PNG_COLOR_TYPE_PALETTE)
        png_set_PLTE(png, info, palette.data(), static_cast<int>(palette.size()));
    const png_byte alphas[] = {0, 128};
    const png_color_16 clear{1, 1, 1, 1, 1};
    if (kind.isTransparent)
        png_set_tRNS(png, info, alphas, 2, &clear);
    QByteArray block = kind.exif;
    if (!block.isEmpty())
        png_set_eXIf_1(png, info, static_cast<png_uint_32>(block.size()),
                       reinterpret_cast<png_bytep>(block.data()));
    png_set_pHYs(png, info, 2000000, 4000000, PNG_RESOLUTION_METER); // 0.5 x 0.25 µm
    png_write_info(png, info);
    const std::size_t rowBytes = png_get_rowbytes(png, info);
    const cv::Mat noise = testImage({static_cast<int>(rowBytes), height}, CV_8UC1);
    const int passes = png_set_interlace_handling(png);
    for (int pass = 0; pass < passes; ++pass)
        for (int y = 0; y < noise.rows; ++y)
            png_write_row(png, noise.ptr(y));
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return out;
}

TEST_F(ImageFiles, OfPngAreReadAsByOpenCv) {
    const std::vector<std::pair<int, std::vector<int>>> kinds{
        {PNG_COLOR_TYPE_GRAY, {1, 2, 4, 8, 16}},
        {PNG_COLOR_TYPE_PALETTE, {1, 2, 4, 8}},
        {PNG_COLOR_TYPE_RGB, {8, 16}},
        {PNG_COLOR_TYPE_RGB_ALPHA, {8, 16}},
    };
    for (const auto& [colourType, depths] : kinds)
        for (const int bits : depths)
            for (const bool isInterlaced : {false, true})
                for (const bool isTransparent : {false, true}) {
                    if (isTransparent && (colourType & PNG_COLOR_MASK_ALPHA) != 0)
                        continue;
                    expectAsOpenCv(encodedPng({colourType, bits, isInterlaced, isTransparent, {}}),
                                   "type " + std::to_string(colourType) + ", bits " +
                                       std::to_string(bits) + (isInterlaced ? ", interlaced" : "") +
                                       (isTransparent ? ", transparent" : ""));
                }
    for (int orientation = 1; orientation <= 8; ++orientation)
        expectAsOpenCv(encodedPng({PNG_COLOR_TYPE_GRAY, 8, false, false, exif(orientation, true)}),
                       "orientation " + std::to_string(orientation));
    EXPECT_EQ(ImageFile(file_).metadata().pixelSizeX, 0.5);
    EXPECT_EQ(ImageFile(file_).metadata().pixelSizeY, 0.25);
    EXPECT_EQ(inRows_, 11); // gray of five bit depths, also transparent, and one that is not turned
}

TEST_F(ImageFiles, OfJpegAreReadAsByOpenCv) {
    for (const int type : {CV_8UC1, CV_8UC3})
        for (const int progressive : {0, 1}) {
            const QByteArray bytes =
                encodedByOpenCv(".jpg", testImage({45, 33}, type),
                                {cv::IMWRITE_JPEG_PROGRESSIVE, progressive,
                                 cv::IMWRITE_JPEG_RST_INTERVAL, progressive * 2});
            expectAsOpenCv(bytes, "type " + std::to_string(type));
            for (int orientation = 0; orientation <= 9; ++orientation)
                for (const bool isBigEndian : {false, true}) {
                    const QByteArray block =
                        QByteArray("Exif\0\0", 6) + exif(orientation, isBigEndian);
                    QByteArray marked = bytes;
                    marked.insert(2, QByteArray("\xFF\xE1\0", 3) +
                                         static_cast<char>(block.size() + 2) + block);
                    expectAsOpenCv(marked, "orientation " + std::to_string(orientation));
                }
        }
}

TEST_F(ImageFiles, OfSimpleFormatsAreReadAsByOpenCv) {
    for (const int type : {CV_8UC1, CV_8UC3, CV_16UC1, CV_16UC3}) {
        const cv::Mat image = testImage({45, 33}, type);
        const char* extension = image.channels() == 1 ? ".pgm" : ".ppm";
        expectAsOpenCv(encodedByOpenCv(extension, image), "binary");
        expectAsOpenCv(encodedByOpenCv(extension, image, {cv::IMWRITE_PXM_BINARY, 0}), "decimal");
        if (image.depth() == CV_8U)
            expectAsOpenCv(encodedByOpenCv(".bmp", image), "BMP");
    }
    expectAsOpenCv(encodedByOpenCv(".bmp", testImage({45, 33}, CV_8UC4)), "BMP with masks");
    QByteArray palette = encodedByOpenCv(".bmp", testImage({45, 33}, CV_8UC1));
    palette[54 + 4 * 100] = 3; // one colour that is not gray
    expectAsOpenCv(palette, "BMP with a palette");
    for (const int bits : {1, 4}) { // rows of 45 pixels in fewer bytes, the rest left over
        palette[28] = static_cast<char>(bits);
        expectAsOpenCv(palette, "BMP of " + std::to_string(bits) + " bits");
    }
    QByteArray fromTheTop = encodedByOpenCv(".bmp", testImage({45, 33}, CV_8UC3));
    for (int i = 22; i < 26; ++i) // the height, negative
        fromTheTop[i] = static_cast<char>(i == 22 ? -33 : -1);
    expectAsOpenCv(fromTheTop, "BMP from the top down");
    expectAsOpenCv("P2 # a comment\n3 1\n255\n 1 2\t300\n", "PGM with too large a value");
}

TEST_F(ImageFiles, OfEqualColoursAreGray) {
    for (const char* extension : {".png", ".jpg", ".bmp", ".ppm", ".tif"})
        for (const int depth : {CV_8U, CV_16U}) {
            const bool isDeep = QByteArray(extension) != ".jpg" && QByteArray(extension) != ".bmp";
            if (depth == CV_16U && !isDeep)
                continue;
            const cv::Mat gray = testImage({45, 33}, CV_MAKETYPE(depth, 1));
            cv::Mat colours;
            cv::merge(std::vector<cv::Mat>{gray, gray, gray}, colours);
            const cv::Mat plane = planeOf(encodedByOpenCv(extension, colours));
            const ImageFile file(file_);
            EXPECT_EQ(plane.channels(), 1) << extension;
            EXPECT_LE(cv::norm(plane, gray, cv::NORM_INF), isDeep ? 0 : 24) << extension; // JPEG
            EXPECT_TRUE(areEqual(file.page(1), plane)) << extension;
            EXPECT_TRUE(areEqual(file.grayPage(1), plane)) << extension;
            // One pixel, the last of all, has a colour.
            colours.ptr(32)[(45 * 3 - 1) * static_cast<int>(colours.elemSize1())] ^= 0x40;
            if (QByteArray(extension) == ".jpg")
                continue; // which loses such a thing
            store(file_, encodedByOpenCv(extension, colours));
            EXPECT_TRUE(areEqual(ImageFile(file_).page(1), colours)) << extension;
            EXPECT_THROW(ImageFile(file_).grayPage(1), FileError) << extension;
            EXPECT_THROW(ImageFile(file_).plane(1, 1, 1), FileError) << extension;
        }
}

TEST_F(ImageFiles, OfPngWithAlphaOrAPaletteGivePlanes) {
    for (const int bits : {8, 16})
        for (const bool isInterlaced : {false, true}) {
            const PngKind kind{PNG_COLOR_TYPE_GRAY_ALPHA, bits, isInterlaced, false, {}};
            const cv::Mat plane = planeOf(encodedPng(kind));
            cv::Mat expected;
            cv::extractChannel(readByOpenCv(file_), expected, 0);
            EXPECT_TRUE(areEqual(plane, expected)) << bits;
            EXPECT_TRUE(areEqual(ImageFile(file_).page(1), expected)) << bits;
        }
    for (const int bits : {1, 2, 4, 8}) {
        const cv::Mat indices =
            planeOf(encodedPng({PNG_COLOR_TYPE_PALETTE, bits, false, false, {}}));
        ASSERT_EQ(indices.type(), CV_8UC1) << bits;
        const ImageFile file(file_);
        const std::vector<std::uint32_t>& lut = file.metadata().channels[0].lut;
        ASSERT_EQ(lut.size(), 256) << bits;
        const cv::Mat colours = file.page(1);
        for (int y = 0; y < indices.rows; ++y)
            for (int x = 0; x < indices.cols; ++x) {
                const auto& c = colours.at<cv::Vec3b>(y, x);
                const std::uint32_t colour =
                    static_cast<std::uint32_t>(c[2] << 16 | c[1] << 8 | c[0]);
                ASSERT_EQ(lut[indices.at<std::uint8_t>(y, x)], colour) << bits;
            }
    }
}

TEST_F(ImageFiles, OfOtherKindsAreRefusedByName) {
    const auto refusal = [](const QString& file) -> std::string {
        try {
            ImageFile(file).page(1);
        } catch (const FileError& error) {
            return error.what();
        }
        return "nothing";
    };
    const cv::Mat image = testImage({44, 33}, CV_8UC3);
    const std::string name = file_.toStdString();
    for (const char* extension : {".webp", ".jp2", ".ras", ".hdr"}) {
        if (!cv::haveImageWriter(std::string("a") +
                                 extension)) // OpenCV is built with fewer of them
            continue;
        cv::Mat written = image;
        if (QLatin1String(extension) == QLatin1String(".hdr"))
            image.convertTo(written, CV_32F);
        const QByteArray bytes = encodedByOpenCv(extension, written);
        ASSERT_FALSE(bytes.isEmpty());
        store(file_, bytes);
        EXPECT_EQ(refusal(file_), name + ": is not a TIFF, PNG, JPEG, BMP, PGM or PPM file");
    }
    store(file_, {});
    EXPECT_EQ(refusal(file_), name + ": is empty");
    EXPECT_EQ(refusal(folder_.path()), folder_.path().toStdString() + ": is not a file");
    EXPECT_EQ(refusal("nowhere.tif"), "nowhere.tif: there is no such file");
}

} // namespace
} // namespace lumetra
