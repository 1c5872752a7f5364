#include "imageio/file_error.h"
#include "imageio/image_file.h"
#include "imageio/image_writer.h"
#include "imageio/output_conflicts.h"
#include "imageio/tiff_writer.h"
#include "platform/platform.h"

#include <gtest/gtest.h>

#include "images.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <atomic>
#include <csignal>
#include <filesystem>
#include <thread>

#include <tiffio.h>
#ifdef Q_OS_UNIX
#include <sys/resource.h>
#include <sys/stat.h>
#endif

namespace lumetra {
namespace {

class Writing : public testing::Test {
protected:
    QString path(const QString& name) const { return folder_.filePath(name); }
    int filesThere() const {
        return static_cast<int>(
            QDir(folder_.path()).entryList(QDir::Files | QDir::Hidden | QDir::System).size());
    }

    QTemporaryDir folder_;
};

TEST_F(Writing, GivesFilesThatOthersReadAsTheyWere) {
    for (const int type : {CV_8UC1, CV_8UC3, CV_16UC1, CV_16UC3})
        for (const cv::Size size : {cv::Size(1, 1), cv::Size(45, 33), cv::Size(700, 300)}) {
            const cv::Mat whole = testImage(size + cv::Size(3, 0), type);
            const cv::Mat image = whole(cv::Rect({1, 0}, size)); // its rows lie apart
            if (image.depth() == CV_8U) {
                writeImage(path("a.JPEG"), image, Existing::replace);
                EXPECT_EQ(contentOf(path("a.JPEG")), encodedByOpenCv(".jpg", image))
                    << type << size;
            }
            for (const char* name : {"a.tif", "a.png"}) {
                writeImage(path(name), image, Existing::replace, 0.325);
                EXPECT_TRUE(areEqual(readByOpenCv(path(name)), image)) << name << type << size;
                const ImageFile file(path(name));
                EXPECT_TRUE(areEqual(file.page(1), image)) << name << type << size;
                EXPECT_NEAR(file.metadata().pixelSizeX.value_or(0), 0.325, 1e-6) << name;
                EXPECT_NEAR(file.metadata().pixelSizeY.value_or(0), 0.325, 1e-6) << name;
            }
        }
}

TEST_F(Writing, CompressesTiffFilesAsAsked) {
    for (const int type : {CV_8UC1, CV_8UC3, CV_16UC1, CV_16UC3})
        for (const cv::Size size : {cv::Size(1, 1), cv::Size(701, 503), cv::Size(50000, 2)}) {
            const cv::Mat image = testImage(size, type), before = image.clone();
            for (const auto& [name, scheme] :
                 {std::pair("none", COMPRESSION_NONE), std::pair("lzw", COMPRESSION_LZW),
                  std::pair("deflate", COMPRESSION_ADOBE_DEFLATE),
                  std::pair("zstd", COMPRESSION_ZSTD)}) {
                const auto compression = tiffCompressionNamed(name);
                ASSERT_TRUE(compression);
                EXPECT_EQ(tiffCompressionName(*compression), name);
                if (!TIFFIsCODECConfigured(static_cast<std::uint16_t>(scheme))) {
                    EXPECT_THROW(writeImage(path("a.tif"), image, Existing::keep, {}, *compression),
                                 FileError);
                    continue;
                }
                writeImage(path("a.tif"), image, Existing::replace, {}, *compression);
                EXPECT_TRUE(areEqual(ImageFile(path("a.tif")).page(1), image)) << name << size;
                EXPECT_TRUE(areEqual(readByOpenCv(path("a.tif")), image)) << name << size;
                TIFF* tiff = TIFFOpen(QFile::encodeName(path("a.tif")).constData(), "r");
                std::uint16_t stored = 0, predictor = PREDICTOR_NONE;
                TIFFGetField(tiff, TIFFTAG_COMPRESSION, &stored);
                TIFFGetField(tiff, TIFFTAG_PREDICTOR, &predictor);
                TIFFClose(tiff);
                EXPECT_EQ(stored, scheme) << name;
                EXPECT_EQ(predictor == PREDICTOR_HORIZONTAL, scheme != COMPRESSION_NONE) << name;
            }
            EXPECT_TRUE(areEqual(image, before)); // differences are made in a copy
        }
    EXPECT_FALSE(tiffCompressionNamed("LZW"));
}

TEST_F(Writing, TakesNamesOfAllLettersAndLengths) {
#ifdef Q_OS_WIN
    const QString odd = QString::fromUtf8("ä 'q' 細胞 клетки%1.png");
#else
    const QString odd = QString::fromUtf8("ä 'q\" \n細胞%1.png");
#endif
    for (const QString& name : {odd, QString(251, 'x') + ".png", QString(251, 'y') + ".tif"}) {
        writeImage(path(name), testImage({5, 4}, CV_8UC1), Existing::keep);
        EXPECT_EQ(ImageFile(path(name)).page(1).cols, 5);
    }
    EXPECT_EQ(filesThere(), 3);
    EXPECT_THROW(writeImage(path("a.gif"), testImage({5, 4}, CV_8UC1), Existing::keep), FileError);
    EXPECT_THROW(writeImage(path("a.jpg"), testImage({5, 4}, CV_16UC1), Existing::keep), FileError);
    EXPECT_THROW(writeImage(path("no/a.png"), testImage({5, 4}, CV_8UC1), Existing::keep),
                 FileError);
    EXPECT_EQ(filesThere(), 3);
}

TEST_F(Writing, ReplacesOnlyWhatItMay) {
    const QString file = path("a.png");
    QStringList names{file}, noFiles{folder_.path()};
#ifdef Q_OS_UNIX
    names << path("link.png");
    ASSERT_TRUE(QFile::link(file, names.last()));
    noFiles << path("pipe.png");
    ASSERT_EQ(mkfifo(QFile::encodeName(noFiles.last()).constData(), 0600), 0);
#endif
    writeImage(file, testImage({4, 4}, CV_8UC1), Existing::keep);
    const int files = filesThere();
    for (const QString& name : names) {
        EXPECT_THROW(checkOutput(name, {}, Existing::keep), FileExistsError);
        EXPECT_THROW(writeImage(name, testImage({5, 5}, CV_8UC1), Existing::keep), FileExistsError);
        EXPECT_NO_THROW(checkOutput(name, {path("b.png")}, Existing::replace));
        EXPECT_THROW(checkOutput(name, {file}, Existing::replace), FileError); // also an input
        EXPECT_EQ(ImageFile(file).page(1).cols, 4);
    }
    for (const QString& name : noFiles) {
        EXPECT_THROW(checkOutput(name, {}, Existing::replace), FileError);
        EXPECT_THROW(writeBytes(name, "x", Existing::replace), FileError);
        EXPECT_FALSE(QFileInfo(name).isFile());
    }
    for (const QString& name : names) { // or what it leads to
        const int width = 5 + static_cast<int>(names.indexOf(name));
        writeImage(name, testImage({width, 5}, CV_8UC1), Existing::replace);
        EXPECT_EQ(ImageFile(file).page(1).cols, width);
        EXPECT_EQ(QFileInfo(name).isSymLink(), name != file);
    }
    EXPECT_EQ(filesThere(), files);
}

#ifdef Q_OS_UNIX

TEST_F(Writing, GivesFilesThePermissionsOfAnyOther) {
    const mode_t before = umask(027);
    for (const Existing existing : {Existing::keep, Existing::replace, Existing::replace}) {
        const QString file = path(existing == Existing::keep ? "a.png" : "b.png");
        writeImage(file, testImage({5, 4}, CV_8UC1), existing);
        struct stat status = {};
        ASSERT_EQ(stat(QFile::encodeName(file).constData(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777U, 0640U);
        EXPECT_EQ(status.st_nlink, 1U);
    }
    umask(before);
}

TEST_F(Writing, MakesTheFileThatALinkLeadsTo) {
    ASSERT_TRUE(QFile::link(path("later.png"), path("dangling.png")));
    writeImage(path("dangling.png"), testImage({6, 6}, CV_8UC1), Existing::keep);
    EXPECT_EQ(ImageFile(path("later.png")).page(1).cols, 6);
}

#endif

TEST_F(Writing, TellsFilesApartByWhatTheyAre) {
    writeBytes(path("a.tif"), "x", Existing::keep);
    ASSERT_TRUE(QDir(folder_.path()).mkdir("sub"));
#ifdef Q_OS_WIN
    const QString way = path("SUB/"); // links need rights there
#else
    const QString way = path("way/");
    ASSERT_TRUE(QFile::link(path("sub"), path("way")));
    EXPECT_EQ(resolvedPath(path("way/b/c.tif")), resolvedPath(path("sub/b/c.tif")));
#endif
    std::filesystem::create_hard_link(toPath(path("a.tif")), toPath(path("sub/hard.tif")));
    const auto isFound = [&](const QString& output, const QString& file) {
        OutputFiles outputs;
        outputs.add(path("else.tif"), 3);
        outputs.add(output, 7);
        return outputs.find(file) == std::optional<std::size_t>(7);
    };
    EXPECT_TRUE(isFound(path("a.tif"), way + "../a.tif"));
    EXPECT_TRUE(isFound(path("a.tif"), way + "hard.tif"));
    EXPECT_TRUE(isFound(way + "new.tif", path("sub/./new.tif")));
    EXPECT_TRUE(isFound(path("new.tif"), path("sub/../new.tif")));
    EXPECT_FALSE(isFound(way + "new.tif", path("new.tif")));
    EXPECT_FALSE(isFound(way + "new.tif", path("a.tif")));
    EXPECT_FALSE(isFound(path("a.tif"), path("new.tif")));

    EXPECT_THROW(checkOutputConflicts({way + "hard.tif"}, {path("a.tif")}), FileError);
    EXPECT_THROW(checkOutputConflicts({way + "o.png", path("sub/o.png")}, {}), FileError);
    EXPECT_NO_THROW(checkOutputConflicts({path("o.png"), path("sub/o.png"), "-", "-", "", ""},
                                         {path("a.tif"), "-", ""}));
}

TEST_F(Writing, LeavesNothingOfWhatIsGivenUp) {
    {
        TiffWriter writer(path("stack.tif"), Existing::keep, 0);
        writer.add(testImage({40, 30}, CV_8UC1));
        AtomicFile file(path("a.txt"), Existing::keep);
        EXPECT_TRUE(writeAll(file.device(), "abc", 3));
    }
    EXPECT_EQ(filesThere(), 0);
}

#ifdef Q_OS_UNIX

TEST_F(Writing, OnAFullDiskFailsAndLeavesWhatWasThere) {
    // As a full disk, a limit makes a write fall short and the next one fail.
    const auto ignored = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const cv::Mat image = testImage({300, 200}, CV_8UC3);
    writeBytes(path("a.png"), "old", Existing::keep);
    for (const rlim_t most : {10U, 5000U, 20000U}) {
        const rlimit small{most, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
        for (const char* name : {"a.png", "a.jpg", "a.tif"})
            EXPECT_THROW(writeImage(path(name), image, Existing::replace), FileError) << name;
        EXPECT_THROW(writeBytes(path("a.txt"), QByteArray(static_cast<int>(most) + 1, 'x'),
                                Existing::replace),
                     FileError);
        setrlimit(RLIMIT_FSIZE, &before);
        EXPECT_EQ(contentOf(path("a.png")), "old");
        EXPECT_EQ(filesThere(), 1);
    }
    std::signal(SIGXFSZ, ignored);
}

#endif

TEST_F(Writing, OfOneFileByManyAtOnceGivesOneOfThem) {
    constexpr int writers = 8, rounds = 30;
    for (const Existing existing : {Existing::keep, Existing::replace})
        for (int round = 0; round < rounds; ++round) {
            const QString file =
                path(QString::number(round) + (existing == Existing::keep ? "k.png" : "r.png"));
            std::atomic<int> ready{0}, written{0}, kept{0}, winner{0};
            std::vector<std::thread> threads;
            threads.reserve(writers);
            for (int i = 0; i < writers; ++i)
                threads.emplace_back([&, i] {
                    AtomicFile output(file, existing);
                    EXPECT_TRUE(writeAll(output.device(), "xxxxxxxxxx", i + 1));
                    for (++ready; ready < writers;) // all have found the name free
                        std::this_thread::yield();
                    try {
                        output.commit();
                        ++written;
                        winner = i + 1;
                    } catch (const FileExistsError&) {
                        ++kept;
                    } catch (const FileError& error) {
                        ADD_FAILURE() << error.what();
                    }
                });
            for (std::thread& thread : threads)
                thread.join();
            EXPECT_EQ(written, existing == Existing::keep ? 1 : writers);
            EXPECT_EQ(kept, writers - written);
            if (existing == Existing::keep) {
                EXPECT_EQ(QFileInfo(file).size(), winner);
            }
        }
    EXPECT_EQ(filesThere(), 2 * rounds);
}

} // namespace
} // namespace lumetra
