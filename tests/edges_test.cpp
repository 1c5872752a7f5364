// Images that begin or end at a page without access: one byte beyond them ends the program.

#if __has_include(<sys/mman.h>)

#include "canvas.h"
#include "image_memory.h"
#include "plain_colouring.h"

#include <opencv2/imgcodecs.hpp>

#include <QTemporaryDir>

#include <sys/mman.h>
#include <unistd.h>

namespace {

class GuardedMemory : public ImageMemory {
public:
    explicit GuardedMemory(bool atEnd) : atEnd_(atEnd) {}

private:
    std::size_t inPages(std::size_t size) const { return (size + page_ - 1) / page_ * page_; }

    uchar* take(std::size_t size) const override {
        void* const all =
            mmap(nullptr, inPages(size) + 2 * page_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        uchar* const bytes = static_cast<uchar*>(all) + page_;
        if (all == MAP_FAILED || mprotect(bytes, inPages(size), PROT_READ | PROT_WRITE) != 0)
            throw std::bad_alloc();
        return bytes + (atEnd_ ? inPages(size) - size : 0);
    }
    void giveBack(uchar* bytes, std::size_t size) const override {
        munmap(bytes - (atEnd_ ? inPages(size) - size : 0) - page_, inPages(size) + 2 * page_);
    }

    const std::size_t page_ = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    bool atEnd_;
};

class Edges : public testing::TestWithParam<bool> {
protected:
    GuardedMemory memory{GetParam()};
    DefaultMemory used{memory};
};

INSTANTIATE_TEST_SUITE_P(Memory, Edges, testing::Bool());

TEST_P(Edges, AreNotCrossedByColouring) {
    for (const Operation& colour : allOperations())
        for (int type : {CV_8UC1, CV_8UC3, CV_8UC4, CV_16UC1, CV_16UC3, CV_16UC4, CV_16SC1,
                         CV_16SC3, CV_32FC1, CV_32FC3, CV_16FC3})
            for (cv::Size size : imageSizes()) {
                cv::Mat whole = mediumContrast(size, type), dst;
                cv::Mat src = whole(cv::Rect({size.width / 2, size.height / 2}, cv::Point(size)));
                colour(src, dst);
                colour(src, dst); // into its own storage
                src = whole(cv::Rect(0, 0, (size.width + 1) / 2, (size.height + 1) / 2));
                colour(src, dst);
                colour(whole, dst);
            }
}

TEST_P(Edges, AreNotCrossedByLevels) {
    for (int pixels = 1; pixels <= 200; ++pixels) {
        cv::Mat gray = randomImage({pixels, 1}, CV_8UC1),
                colour = randomImage({pixels, 1}, CV_8UC3);
        unsigned short low = 0, high = 0;
        TS_LEVELS levels = {};
        Lumetra::AutoCountHistoGray(gray.data, pixels, 1, &low, &high);
        Lumetra::StretchLevelsGray(low, high, gray.data, 1, pixels);
        Lumetra::AutoCountHistoRGB24(colour.data, pixels, 1, levels);
        Lumetra::StretchLevelsRGB24(levels, colour.data, 1, pixels);
    }
}

TEST_P(Edges, AreNotCrossedByCompositing) {
    const QTemporaryDir folder;
    for (cv::Size size : imageSizes())
        for (const QList<QPoint>& offsets : {QList<QPoint>{{0, 0}, {1, 1}, {0, 0}, {1, 0}},
                                             QList<QPoint>{{0, 0}, {0, 0}, {0, 0}, {0, 0}}}) {
            if (size.width == 1 || size.height == 1)
                continue;
            for (int depth : {CV_8U, CV_16U})
                for (int count : {2, 3, 4}) {
                    std::vector<cv::Mat> images;
                    for (int channels : {3, 3, 1, 4})
                        images.push_back(randomImage(size, CV_MAKETYPE(depth, channels)));
                    QList<cv::Mat*> list = {&images[0], &images[1], &images[2], &images[3]};
                    list = list.mid(0, count);
                    QList<QPoint> points = offsets.mid(0, count);
                    delete Lumetra::Composite(&list, &points);
                }
            QList<QString> files;
            for (const char* name : {"a.bmp", "b.bmp"}) {
                files.append(folder.filePath(name));
                cv::imwrite(files.back().toStdString(), randomImage(size, CV_8UC3));
            }
            cv::Mat dst;
            QList<QPoint> points = offsets.mid(0, 2);
            Lumetra::FluorescenceSynthesis(&files, &points, dst);
        }
}

} // namespace

#endif
