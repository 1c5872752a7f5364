// Functions at work on several threads at once, which read the same sources.

#include "plain_custom_dyes.h"
#include "support.h"

#include <lumetra>

#include <opencv2/imgcodecs.hpp>

#include <QTemporaryDir>

#include <chrono>
#include <thread>
#include <utility>

namespace {

/// What all threads read.
struct Sources {
    std::vector<cv::Mat> images; ///< The first one gray, the second one coloured, of 8 bits.
    QVector<QColor> colours;
    QList<QString> files;
};

/// One round of what may run on any thread.
std::vector<cv::Mat> work(Sources& sources, const QString& ownFile) {
    std::vector<cv::Mat> results;
    for (cv::Mat& src : sources.images) {
        Lumetra::Dye(src, results.emplace_back(), 255, 90, 10, true, true);
        Lumetra::Pseudo(src, results.emplace_back(), sources.colours);
    }
    QList<QString> files = sources.files;
    QList<QPoint> offsets = {{0, 0}, {2, 3}};
    Lumetra::FluorescenceSynthesis(&files, &offsets, results.emplace_back());

    unsigned short low = 0, high = 0;
    cv::Mat& gray = sources.images[0];
    Lumetra::AutoCountHistoGray(gray.data, gray.cols, gray.rows, &low, &high);
    cv::Mat own = results.emplace_back(gray.clone());
    Lumetra::StretchLevelsGray(low, high, own.data, own.cols, own.rows);
    TS_LEVELS levels = {};
    cv::Mat& colour = sources.images[1];
    Lumetra::AutoCountHistoRGB24(colour.data, colour.cols, colour.rows, levels);
    own = results.emplace_back(colour.clone());
    Lumetra::StretchLevelsRGB24(levels, own.data, own.cols, own.rows);

    Dyes dyes = {{"DAPI", QColor(1, 2, 3)}, {"none", QColor()}}, loaded;
    Lumetra::SaveCustomDyeType(dyes, ownFile);
    Lumetra::LoadCustomDyeType(loaded, ownFile);
    EXPECT_EQ(loaded, dyes);
    for (const QString& name : std::as_const(Lumetra::m_vecSldFluo))
        EXPECT_TRUE(std::as_const(Lumetra::g_mapFluo).contains(name));
    return results;
}

TEST(Threads, ShareSourcesAndNothingElse) {
    const QTemporaryDir folder;
    Sources sources;
    sources.files = {folder.filePath("a.png"), folder.filePath("b.bmp")};
    sources.colours.fill(QColor(9, 200, 30), 255);
    for (int type : {CV_8UC1, CV_8UC3, CV_16UC1, CV_16UC3, CV_32FC3})
        sources.images.push_back(mediumContrast({150, 110}, type));
    for (int i : {0, 1})
        cv::imwrite(sources.files[i].toStdString(), sources.images[static_cast<std::size_t>(i)]);
    Lumetra::InitFluoDyeType();
    const std::vector<cv::Mat> expected = work(sources, folder.filePath("dyes.ini"));

    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    std::vector<std::thread> threads;
    threads.reserve(8);
    for (int thread = 0; thread < 8; ++thread)
        threads.emplace_back([&, ownFile = folder.filePath(QString::number(thread) + ".ini")] {
            do {
                const std::vector<cv::Mat> results = work(sources, ownFile);
                for (std::size_t i = 0; i < expected.size(); ++i)
                    EXPECT_TRUE(sameImage(results[i], expected[i])) << i;
            } while (std::chrono::steady_clock::now() < end);
        });
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace
