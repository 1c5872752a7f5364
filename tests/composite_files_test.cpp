// Compositing of image files: into a new image, and into the caller's.

#include "canvas.h"

#include <lumetra>

#include <opencv2/imgcodecs.hpp>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <memory>

#if QT_VERSION_MAJOR < 6
#include <QTextCodec>
#endif

namespace {

/// A photo that says of itself to be turned clockwise before it is shown.
QByteArray lyingOnItsSide(const cv::Mat& image) {
    std::vector<uchar> jpeg;
    cv::imencode(".jpg", image, jpeg);
    const auto exif = QByteArray::fromHex("ffe10022"
                                          "457869660000"
                                          "4d4d002a00000008" // of one entry
                                          "0001"
                                          "011200030000000100060000"
                                          "00000000");
    return QByteArray(reinterpret_cast<const char*>(jpeg.data()), static_cast<int>(jpeg.size()))
        .insert(2, exif);
}

/// A folder of image files of 20 × 10 pixels, and of files that only look like images.
class ImageFiles : public testing::Test {
protected:
    ImageFiles() {
        const cv::Size size(20, 10);
        write("gray.png", randomImage(size, CV_8UC1));
        write("colour.png", randomImage(size, CV_8UC3));
        write("deep.png", randomImage(size, CV_16UC1));
        write("alpha.png", randomImage(size, CV_8UC4));
        write("colour.tif", cv::Scalar::all(255) - randomImage(size, CV_8UC3));
        write("deep.tif", randomImage(size, CV_16UC3));
        write("gray.bmp", randomImage(size, CV_8UC1) / 3);
        write("photo.jpg", randomImage(size, CV_8UC3));
        write("zellkern grün – 細胞 ядро.png", randomImage(size, CV_8UC3) / 2);
        save("gray.pfm", "Pf\n20 10\n-1.0\n" + QByteArray(800, '\x42')); // floats of 48.6
        save("lying.jpg", lyingOnItsSide(randomImage({10, 20}, CV_8UC3)));
        write("shorter.png", randomImage({20, 9}, CV_8UC3));
        write("narrower.bmp", randomImage({19, 10}, CV_8UC1));
        write("turned.tif", randomImage({10, 20}, CV_8UC3));
        save("empty.png", "");
        save("text.png", "not an image at all");
        for (auto [cut, whole, bytes] :
             {std::tuple("cut.png", "colour.png", 60), {"cut.tif", "colour.tif", 100}}) {
            QFile::copy(path(whole), path(cut));
            QFile::resize(path(cut), bytes);
        }
        QDir(folder.path()).mkdir("folder.png");
    }

    /// Whatever was done with them, no word was said about them.
    ~ImageFiles() override { EXPECT_EQ(log.lines, QStringList()); }

    QString path(const QString& name) const { return folder.filePath(name); }

    cv::Mat imageOf(const QString& name) const {
        const std::string file = path(name).toLocal8Bit().constData(); // ends with a NUL
        return plainUnified(cv::imread(file, cv::IMREAD_COLOR), CV_8U);
    }

    std::unique_ptr<cv::Mat> composite(const QStringList& names, QList<QPoint> offsets) const {
        QList<QString> files = paths(names);
        return std::unique_ptr<cv::Mat>(Lumetra::Composite(&files, &offsets));
    }

    void synthesise(const QStringList& names, QList<QPoint> offsets, cv::Mat& dst) const {
        QList<QString> files = paths(names);
        Lumetra::FluorescenceSynthesis(&files, &offsets, dst);
    }

    QTemporaryDir folder;

private:
    QList<QString> paths(const QStringList& names) const {
        QList<QString> files;
        for (const QString& name : names)
            files.append(path(name));
        return files;
    }

    void write(const QString& name, const cv::Mat& image) const {
        ASSERT_TRUE(cv::imwrite(path(name).toStdString(), image));
    }

    void save(const QString& name, const QByteArray& bytes) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QFile::WriteOnly));
        file.write(bytes);
    }

    DebugLog log;
};

const char* const unusable[] = {"missing.png", "empty.png",    "text.png",
                                "cut.png",     "cut.tif",      "folder.png",
                                "shorter.png", "narrower.bmp", "turned.tif"};

TEST_F(ImageFiles, AreAddedOverTheirCommonAreaInBothWays) {
    const QStringList lists[] = {
        {"colour.png", "colour.tif"},
        {"gray.png", "colour.png"},
        {"deep.png", "gray.bmp", "photo.jpg"},
        {"alpha.png", "deep.tif"},
        {"photo.jpg", "photo.jpg", "gray.bmp", "colour.png"},
        {"gray.bmp", "zellkern grün – 細胞 ядро.png"},
        {"gray.pfm", "lying.jpg", "gray.pfm"},
        {"lying.jpg", "gray.pfm", "colour.png"},
        {"gray.png", QString("colour.png") + QChar() + "more"},
        {"../" + QDir(folder.path()).dirName() + "/colour.png", "gray.bmp"}};
    const QPoint shapes[][4] = {{{0, 0}, {0, 0}, {0, 0}, {0, 0}},
                                {{0, 0}, {10, 5}, {4, 2}, {0, 9}},
                                {{-3, -3}, {0, 0}, {-1, 5}, {0, 0}},
                                {{INT_MAX, 0}, {INT_MAX - 19, 9}, {INT_MAX - 2, 0}, {INT_MAX, 0}},
                                {{0, INT_MIN}, {2, INT_MIN + 9}, {0, INT_MIN}, {0, INT_MIN}}};
    for (const QStringList& names : lists)
        for (const auto& shape : shapes) {
            std::vector<cv::Mat> images;
            QList<QPoint> offsets;
            for (const QString& name : names) {
                offsets.append(shape[images.size()]);
                images.push_back(imageOf(name));
                ASSERT_EQ(images.back().size(), cv::Size(20, 10)) << qPrintable(name);
            }
            const cv::Mat expected = plainCanvas(images, offsets);
            const std::unique_ptr<cv::Mat> canvas = composite(names, offsets);
            ASSERT_NE(canvas, nullptr);
            EXPECT_TRUE(sameImage(*canvas, expected)) << qPrintable(names[0]);
            cv::Mat dst;
            synthesise(names, offsets, dst);
            EXPECT_TRUE(sameImage(dst, expected)) << qPrintable(names[0]);
        }
}

TEST_F(ImageFiles, InListsThatCannotBeCompositedChangeNothing) {
    const QStringList all = {"colour.png", "gray.png", "photo.jpg"};
    cv::Mat dst = randomImage({5, 4}, CV_8UC3);
    const cv::Mat storage = dst, old = dst.clone();
    for (const auto& [count, offsets] :
         {std::pair{0, 0}, {1, 1}, {2, 1}, {1, 2}, {3, 2}, {2, 3}, {0, 2}}) {
        QList<QPoint> points;
        while (points.size() < offsets)
            points.append({0, 0});
        EXPECT_EQ(composite(all.mid(0, count), points), nullptr);
        synthesise(all.mid(0, count), points, dst);
        EXPECT_EQ(dst.data, storage.data);
        EXPECT_TRUE(sameImage(dst, old));
    }
}

TEST_F(ImageFiles, ThatDoNotFitEndACompositeAndAreLeftOutOfASynthesis) {
    const QList<QPoint> offsets = {{0, 0}, {10, 5}, {4, 2}};
    const cv::Mat expected = plainCanvas(
        {imageOf("colour.png"), cv::Mat::zeros(10, 20, CV_8UC3), imageOf("gray.bmp")}, offsets);
    for (const char* odd : unusable)
        EXPECT_EQ(composite({"colour.png", odd, "gray.png"}, offsets), nullptr);
    const Running<QApplication> application;
    for (const char* odd : unusable) {
        const BoxReader reader;
        cv::Mat dst;
        synthesise({"colour.png", odd, "gray.bmp"}, offsets, dst);
        EXPECT_TRUE(sameImage(dst, expected)) << odd;
        EXPECT_EQ(reader.boxes, QStringList());
        EXPECT_EQ(composite({"colour.png", "gray.png", odd}, offsets), nullptr);
        expectSizeBox(reader);
    }
}

TEST_F(ImageFiles, WithoutACommonArea) {
    for (const QStringList& names :
         {QStringList{"colour.png", "gray.png"}, QStringList{"colour.png", "missing.png"}})
        for (auto [far, rows, cols] :
             {std::tuple(QPoint(0, 10), 0, 20), {QPoint(-20, 0), 10, 0}, {QPoint(20, -10), 0, 0}}) {
            const std::unique_ptr<cv::Mat> canvas = composite(names, {{0, 0}, far});
            EXPECT_EQ(canvas != nullptr, names[1] == "gray.png");
            EXPECT_TRUE(!canvas || sameImage(*canvas, cv::Mat(rows, cols, CV_8UC3)));
            cv::Mat dst(4, 4, CV_8UC3);
            synthesise(names, {{0, 0}, far}, dst);
            EXPECT_TRUE(sameImage(dst, cv::Mat(rows, cols, CV_8UC3)));
        }
    for (auto [a, b] : {std::pair(QPoint(0, 0), QPoint(0, 11)),
                        {QPoint(0, 0), QPoint(-21, 0)},
                        {QPoint(0, 0), QPoint(30, 10)},
                        {QPoint(0, INT_MIN), QPoint(0, INT_MAX)},
                        {QPoint(INT_MAX, 0), QPoint(INT_MIN, 0)}}) {
        EXPECT_THROW(composite({"colour.png", "gray.png"}, {a, b}), cv::Exception);
        cv::Mat dst(4, 4, CV_8UC3);
        EXPECT_THROW(synthesise({"colour.png", "gray.png"}, {a, b}, dst), cv::Exception);
        EXPECT_TRUE(dst.empty());
        EXPECT_EQ(dst.data, nullptr);
    }
}

TEST_F(ImageFiles, WithAnUnreadableFirstOne) {
    const Running<QApplication> application;
    const cv::Mat nothing(0, 0, CV_8UC3);
    for (const char* first : {"missing.png", "text.png", "cut.png", "folder.png"}) {
        SCOPED_TRACE(first);
        const BoxReader reader;
        const std::unique_ptr<cv::Mat> canvas =
            composite({first, "missing.png", "cut.png"}, {{5, 5}, {5, 5}, {5, 5}});
        EXPECT_TRUE(canvas && sameImage(*canvas, nothing));
        EXPECT_EQ(reader.boxes, QStringList());
        EXPECT_EQ(composite({first, "gray.png"}, {{5, 5}, {5, 5}}), nullptr);
        expectSizeBox(reader);
        EXPECT_THROW(composite({first, "gray.png"}, {{5, 5}, {5, 6}}), cv::Exception);
        cv::Mat dst(10, 20, CV_8UC3);
        synthesise({first, "gray.png", "missing.png"}, {{5, 5}, {5, 5}, {5, 5}}, dst);
        EXPECT_TRUE(sameImage(dst, nothing));
    }
}

TEST_F(ImageFiles, FillADestinationThatFitsInItsOwnStorage) {
    const QList<QPoint> offsets = {{0, 0}, {3, 1}};
    const cv::Mat expected = plainCanvas({imageOf("colour.png"), imageOf("gray.bmp")}, offsets);
    cv::Mat dst(9, 17, CV_8UC3, cv::Scalar::all(250));
    const cv::Mat storage = dst;
    synthesise({"colour.png", "gray.bmp"}, offsets, dst);
    EXPECT_EQ(dst.data, storage.data);
    EXPECT_TRUE(sameImage(storage, expected));

    cv::Mat view = viewInto(cv::Mat(9, 17, CV_8UC3, cv::Scalar::all(250)));
    const cv::Mat parent = parentOf(view);
    cv::Mat expectedParent = parent.clone();
    expected.copyTo(expectedParent(cv::Rect(2, 1, 17, 9)));
    synthesise({"colour.png", "gray.bmp"}, offsets, view);
    EXPECT_TRUE(sameImage(parent, expectedParent));
}

#if QT_VERSION_MAJOR < 6 // later ones take every file name for UTF-8, as long as it is bytes

TEST_F(ImageFiles, HaveNamesInTheEncodingOfTheUser) {
    const QList<QPoint> offsets = {{0, 0}, {0, 0}};
    const cv::Mat image = imageOf("colour.png");
    const std::string file = folder.path().toStdString() + "/gr\xFCn.bmp";
    if (!cv::imwrite(file, image))
        GTEST_SKIP() << "this file system keeps no names in Latin-1";
    cv::Mat dst;
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    const std::unique_ptr<cv::Mat> canvas = composite({"grün.bmp", "grün.bmp"}, offsets);
    synthesise({"grün.bmp", "grün.bmp"}, offsets, dst);
    QTextCodec::setCodecForLocale(nullptr);
    std::remove(file.c_str()); // which the folder would not find
    ASSERT_NE(canvas, nullptr);
    EXPECT_TRUE(sameImage(*canvas, plainCanvas({image, image}, offsets)));
    EXPECT_TRUE(sameImage(dst, *canvas));
}

#endif

} // namespace
