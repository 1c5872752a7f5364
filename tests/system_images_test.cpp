// Image files that nobody wrote for these tests: those that the system's packages bring.

#include "canvas.h"

#include <lumetra>

#include <opencv2/imgcodecs.hpp>

#include <QDirIterator>
#include <QElapsedTimer>
#include <QSet>

#include <memory>

namespace {

/// Whatever may be an image, from all corners of the places where packages keep theirs.
QStringList imagePaths(int most) {
    QStringList paths;
    QSet<QString> contents; // icon themes hold many copies
    const QStringList patterns = {"*.png", "*.jpg",  "*.jpeg", "*.tif", "*.tiff", "*.bmp",  "*.gif",
                                  "*.ppm", "*.pgm",  "*.xpm",  "*.svg", "*.ico",  "*.webp", "*.jp2",
                                  "*.exr", "*.jfif", "*.hdr",  "*.ras", "*.pbm",  "*.pnm"};
    for (const char* place : {"/usr/share", "/usr/lib", "/usr/include", "/etc", "/var/lib"}) {
        QDirIterator files(place, patterns, QDir::Files | QDir::NoSymLinks,
                           QDirIterator::Subdirectories);
        QMap<QString, int> perFolder;
        while (files.hasNext() && paths.size() < most) {
            const QString path = files.next();
            const QFileInfo info = files.fileInfo();
            const QString content = info.fileName() + QString::number(info.size());
            if (info.size() < 300'000 && perFolder[info.path()]++ < 20 &&
                !contents.contains(content)) {
                contents.insert(content);
                paths.append(path);
            }
        }
    }
    return paths;
}

/// An image and the same once more, moved, through both operations.
void expectPlainSum(const QString& path, const cv::Mat& image) {
    SCOPED_TRACE(qPrintable(path));
    QList<QString> files = {path, path};
    QList<QPoint> offsets = {{0, 0}, {image.cols / 3, -(image.rows / 4)}};
    const cv::Mat expected =
        image.empty() ? cv::Mat(0, 0, CV_8UC3) : plainCanvas({image, image}, offsets);
    const std::unique_ptr<cv::Mat> canvas(Lumetra::Composite(&files, &offsets));
    ASSERT_NE(canvas, nullptr);
    EXPECT_TRUE(sameImage(*canvas, expected));
    cv::Mat dst;
    Lumetra::FluorescenceSynthesis(&files, &offsets, dst);
    EXPECT_TRUE(sameImage(dst, expected));
}

TEST(SystemImages, AreReadAsTheDecoderReadsThemAndSummed) {
    int decoded = 0, refused = 0;
    const QStringList paths = imagePaths(2000);
    QElapsedTimer time;
    time.start();
    for (const QString& path : paths) {
        if (time.elapsed() > 4000)
            break;
        const cv::Mat image = cv::imread(path.toStdString(), cv::IMREAD_COLOR);
        ++(image.empty() ? refused : decoded);
        expectPlainSum(path, image);
    }
    if (decoded + refused == 0)
        GTEST_SKIP() << "no package of this system brings an image file";
    std::cout << decoded << " files decoded, " << refused << " not\n";
}

} // namespace
