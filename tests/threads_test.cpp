// Functions at work on several threads at once, which read the same sources.

#include "plain_colouring.h"
#include "plain_custom_dyes.h"

#include <opencv2/imgcodecs.hpp>

#include <QTemporaryDir>

#include <chrono>
#include <thread>
#include <utility>

namespace {

/// What all threads read.
struct Sources {
    std::vector<cv::Mat> images; ///< The last one of 24 bits.
    QList<QString> files;
};

/// One round of what may run on any thread.
std::vector<cv::Mat> work(Sources& sources, const QString& ownFile) {
    std::vector<cv::Mat> results;
    for (const Operation& colour : allOperations())
        for (cv::Mat& src : sources.images)
            colour(src, results.emplace_back());
    QList<QString> files = sources.files;
    QList<QPoint> offsets = {{0, 0}, {2, 3}};
    Lumetra::FluorescenceSynthesis(&files, &offsets, results.emplace_back());

    TS_LEVELS levels = {};
    cv::Mat& read = sources.images.back();
    Lumetra::AutoCountHistoRGB24(read.data, read.cols, read.rows, levels);
    cv::Mat own = results.emplace_back(read.clone());
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
    for (int type : {CV_8UC1, CV_16UC1, CV_16UC3, CV_32FC1, CV_32FC3, CV_8UC3})
        sources.images.push_back(mediumContrast({150, 110}, type));
    for (const QString& file : sources.files)
        cv::imwrite(file.toStdString(), sources.images.back());
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
