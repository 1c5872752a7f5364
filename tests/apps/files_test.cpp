#include "apps/common/failure.h"
#include "apps/common/stack.h"
#include "apps/common/writing.h"

#include "planes.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include <sys/stat.h>

namespace apps {
namespace {

TEST(Files, ComeBackAsTheyWereWritten) {
    const QTemporaryDir folder;
    for (const char* extension : {"png", "tif", "TIFF"}) {
        for (const int type : {CV_8UC1, CV_16UC1, CV_8UC3, CV_16UC3}) {
            const QString file = folder.filePath(QStringLiteral("ä 'q\" \n.") + extension);
            cv::Mat picture = noisePlane({301 * CV_MAT_CN(type), 77}, CV_MAT_DEPTH(type), 3)
                                  .reshape(CV_MAT_CN(type));
            writePicture(file, picture);
            EXPECT_TRUE(areEqual(Stack(file).page(1), picture)) << extension << ' ' << type;
        }
    }
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).size(), 3);
}

TEST(Files, HoldManyPages) {
    const QTemporaryDir folder;
    const QString file = folder.filePath("stack.tif");
    std::vector<cv::Mat> pages;
    {
        StackWriter writer(file, 0);
        for (int i = 0; i < 5; ++i) {
            pages.push_back(noisePlane({40, 30}, CV_16UC1, i));
            writer.add(pages.back());
        }
        EXPECT_FALSE(QFile::exists(file)); // nothing is seen before it is whole
        writer.commit();
    }
    const Stack stack(file);
    ASSERT_EQ(stack.pages(), 5);
    for (int i = 4; i >= 0; --i)
        EXPECT_TRUE(areEqual(stack.grayPage(i + 1), pages[static_cast<std::size_t>(i)]));
    EXPECT_THROW(stack.page(0), Failure);
    EXPECT_THROW(stack.page(6), Failure);
}

TEST(Files, ThatAreGivenUpLeaveNothing) {
    const QTemporaryDir folder;
    {
        StackWriter writer(folder.filePath("stack.tif"), 0);
        writer.add(noisePlane({40, 30}, CV_8UC1, 1));
    }
    EXPECT_TRUE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).isEmpty());
}

TEST(Files, AreClearedOfLeftoversAndOfNothingElse) {
    const QTemporaryDir folder;
    const QStringList left{".a.png.part", ".a.png.part.AbCdEf"};
    const QStringList kept{".a.png.part.AbCdE",  ".a.png.part.AbCdEfG",
                           ".b.png.part.AbCdEf", "a.png",
                           "a.png.backup",       "x.a.png.part.AbCdEf"};
    for (const QString& name : left + kept) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    removeLeftovers({folder.filePath("a.png"), folder.filePath("nowhere/a.png")});
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name).size(), 6);
    for (const QString& name : kept)
        EXPECT_TRUE(QFile::exists(folder.filePath(name))) << name.toStdString();
}

TEST(Files, AreNotReplacedUnasked) {
    const QTemporaryDir folder;
    const QString file = folder.filePath("a.png"), link = folder.filePath("link.png");
    writePicture(file, noisePlane({4, 4}, CV_8UC1, 1));
    QFile::link(file, link);
    EXPECT_THROW(checkOutput(file, {}, false), Failure);
    EXPECT_NO_THROW(checkOutput(file, {}, true));
    EXPECT_THROW(checkOutput(link, {file}, true), Failure);
    EXPECT_THROW(checkOutput(folder.path(), {}, true), Failure);
    EXPECT_THROW(checkOutput("/dev/null", {}, true), Failure);

    const QByteArray pipe = QFile::encodeName(folder.filePath("pipe"));
    ASSERT_EQ(mkfifo(pipe.constData(), 0600), 0);
    EXPECT_THROW(writeBytes(folder.filePath("pipe"), "x", 1), Failure);
    EXPECT_FALSE(QFileInfo(folder.filePath("pipe")).isFile());

    writePicture(link, noisePlane({5, 5}, CV_8UC1, 1)); // what it leads to
    EXPECT_EQ(Stack(file).page(1).cols, 5);
    EXPECT_TRUE(QFileInfo(link).isSymLink());
}

TEST(Files, OfAnyLengthThatIsNotTheirsAreRefused) {
    const QTemporaryDir folder;
    for (const char* name : {"cut.tif", "cut.png", "cut.jpg"}) {
        const QString whole = folder.filePath(QStringLiteral("whole-") + name);
        const QString cut = folder.filePath(name);
        writePicture(whole, noisePlane({64, 64}, CV_8UC1, 9));
        QFile device(whole);
        ASSERT_TRUE(device.open(QIODevice::ReadOnly));
        const QByteArray bytes = device.readAll();
        for (int length = 0; length < static_cast<int>(bytes.size()) - 1; length += 61) {
            QFile shorter(cut);
            ASSERT_TRUE(shorter.open(QIODevice::WriteOnly));
            shorter.write(bytes.left(length));
            shorter.close();
            EXPECT_THROW(Stack(cut).page(1), Failure) << name << ' ' << length;
        }
    }
}

} // namespace
} // namespace apps
