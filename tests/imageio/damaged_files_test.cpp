// Files that are cut short, or claim what they do not hold.
#include "imageio/file_error.h"
#include "imageio/image_file.h"

#include <gtest/gtest.h>

#include "images.h"

#include <QTemporaryDir>

namespace lumetra {
namespace {

/// A TIFF file of four gray pixels, which lie behind all that is told of them.
QByteArray withPixelsAtTheEnd() {
    const int fields[][2] = {{0x100, 2}, {0x101, 2},   {0x102, 8}, {0x103, 1},
                             {0x106, 1}, {0x111, 110}, {0x115, 1}, {0x117, 4}};
    QByteArray bytes("II*\0\x8\0\0\0\x8\0", 10);
    for (const auto& [tag, value] : fields) { // a short number each
        bytes += static_cast<char>(tag & 0xFF);
        bytes += QByteArray("\x1\x3\0\x1\0\0\0", 7) + static_cast<char>(value);
        bytes += QByteArray(3, 0);
    }
    return bytes + QByteArray(4, 0) + "1234";
}

TEST(DamagedFiles, OfEveryLengthButTheirOwnAreRefused) {
    const QTemporaryDir folder;
    const QString file = folder.filePath("cut");
    const cv::Mat image = testImage({40, 30}, CV_8UC3);
    std::vector<QByteArray> files{
        withPixelsAtTheEnd(), encodedByOpenCv(".jpg", image, {cv::IMWRITE_JPEG_PROGRESSIVE, 1})};
    for (const char* extension : {".tif", ".png", ".jpg", ".bmp", ".ppm"})
        files.push_back(encodedByOpenCv(extension, image));
    for (std::size_t i = 0; i < files.size(); ++i) {
        const int whole = static_cast<int>(files[i].size());
        store(file, files[i]);
        EXPECT_NO_THROW(ImageFile(file).page(1)) << i;
        for (int length = 0; length < whole; length += length < 200 ? 1 : 61) {
            store(file, files[i].left(length));
            EXPECT_THROW(ImageFile(file).page(1), FileError) << i << ' ' << length;
        }
        store(file, files[i].left(whole - 1));
        EXPECT_THROW(ImageFile(file).page(1), FileError) << i;
    }
    store(file, files[0].left(files[0].size() - 1));
    EXPECT_THROW(ImageFile(file).metadata(), FileError); // before its pixels are read
}

TEST(DamagedFiles, TakeNoMemoryForWhatTheyOnlyClaim) {
    const QTemporaryDir folder;
    const QString file = folder.filePath("claims");
    const auto refusal = [&](const QByteArray& bytes) -> std::string {
        store(file, bytes);
        try {
            ImageFile(file).page(1);
        } catch (const FileError& error) {
            return error.what();
        }
        return "nothing";
    };
    const std::string tooMany = file.toStdString() + ": claims more pixels than the file can hold";
    EXPECT_EQ(refusal("P5 90000 90000 255\n0"), tooMany);
    QByteArray jpeg = encodedByOpenCv(".jpg", testImage({40, 30}, CV_8UC1));
    const int frame = static_cast<int>(jpeg.indexOf("\xFF\xC0"));
    for (int i = 5; i < 9; ++i) // height and width
        jpeg[frame + i] = static_cast<char>(0xF0);
    EXPECT_EQ(refusal(jpeg), tooMany);
    QByteArray bmp = encodedByOpenCv(".bmp", testImage({40, 30}, CV_8UC3));
    bmp[20] = bmp[24] = 1; // 65536 more of each
    EXPECT_EQ(refusal(bmp), tooMany);
    EXPECT_EQ(refusal("P5 0 5 255\n"), file.toStdString() + ": has no pixels");
}

} // namespace
} // namespace lumetra
