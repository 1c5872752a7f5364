// Files that are cut short, or claim what they do not hold.
#include "imageio/file_error.h"
#include "imageio/image_file.h"

#include <gtest/gtest.h>

#include "images.h"

#include <QTemporaryDir>

namespace lumetra {
namespace {

TEST(DamagedFiles, OfEveryLengthButTheirOwnAreRefused) {
    const QTemporaryDir folder;
    const QString file = folder.filePath("cut");
    const std::vector<std::pair<const char*, std::vector<int>>> formats{
        {".tif", {}}, {".png", {}}, {".jpg", {}}, {".jpg", {cv::IMWRITE_JPEG_PROGRESSIVE, 1}},
        {".bmp", {}}, {".ppm", {}},
    };
    for (const auto& [extension, parameters] : formats) {
        const QByteArray bytes =
            encodedByOpenCv(extension, testImage({40, 30}, CV_8UC3), parameters);
        store(file, bytes);
        EXPECT_NO_THROW(ImageFile(file).page(1)) << extension;
        for (int length = 0; length < bytes.size(); length += length < 200 ? 3 : 61) {
            store(file, bytes.left(length));
            EXPECT_THROW(ImageFile(file).page(1), FileError) << extension << ' ' << length;
        }
        store(file, bytes.left(static_cast<int>(bytes.size()) - 1));
        EXPECT_THROW(ImageFile(file).page(1), FileError) << extension;
    }
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
