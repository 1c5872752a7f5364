// Functions at work on several threads at once, which read the same sources.

#include "support.h"

#include <lumetra>

#include <opencv2/imgcodecs.hpp>

#include <QTemporaryDir>

#include <thread>

namespace {

/// One round of what may run on any thread, with sources that other threads read too.
std::vector<cv::Mat> work(std::vector<cv::Mat>& sources, const QVector<QColor>& colours,
                          QList<QString> files) {
    std::vector<cv::Mat> results;
    for (cv::Mat& src : sources) {
        Lumetra::Dye(src, results.emplace_back(), 255, 90, 10, true, true);
        Lumetra::Pseudo(src, results.emplace_back(), colours);
    }
    QList<QPoint> offsets = {{0, 0}, {2, 3}};
    Lumetra::FluorescenceSynthesis(&files, &offsets, results.emplace_back());
    return results;
}

TEST(Threads, ShareSourcesAndNothingElse) {
    const QTemporaryDir folder;
    const QList<QString> files = {folder.filePath("a.png"), folder.filePath("b.bmp")};
    std::vector<cv::Mat> sources;
    for (int type : {CV_8UC1, CV_8UC3, CV_16UC1, CV_16UC3, CV_32FC3})
        sources.push_back(mediumContrast({150, 110}, type));
    for (int i : {0, 1})
        cv::imwrite(files[i].toStdString(), sources[static_cast<std::size_t>(i)]);
    const QVector<QColor> colours(255, QColor(9, 200, 30));
    const std::vector<cv::Mat> expected = work(sources, colours, files);

    std::vector<std::vector<cv::Mat>> results(4);
    std::vector<std::thread> threads;
    threads.reserve(results.size());
    for (std::vector<cv::Mat>& result : results)
        threads.emplace_back([&] { result = work(sources, colours, files); });
    for (std::thread& thread : threads)
        thread.join();
    for (const std::vector<cv::Mat>& result : results)
        for (std::size_t i = 0; i < expected.size(); ++i)
            EXPECT_TRUE(sameImage(result[i], expected[i])) << i;
}

} // namespace
