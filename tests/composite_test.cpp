// Compositing of images in memory.

#include "canvas.h"

#include <lumetra>

#include <QRegularExpression>

#include <memory>
#include <thread>

namespace {

using Images = std::vector<cv::Mat>;

std::unique_ptr<cv::Mat> composite(Images& images, QList<QPoint> offsets) {
    QList<cv::Mat*> list;
    for (cv::Mat& image : images)
        list.append(&image);
    const QList<cv::Mat*> listBefore = list;
    const QList<QPoint> offsetsBefore = offsets;
    std::unique_ptr<cv::Mat> canvas(Lumetra::Composite(&list, &offsets));
    EXPECT_EQ(list, listBefore);
    EXPECT_EQ(offsets, offsetsBefore);
    return canvas;
}

/// Images of these types, no two alike, by turns of their own and views into larger ones.
Images noise(cv::Size size, const std::vector<int>& types) {
    Images images;
    for (int type : types) {
        cv::Mat image = randomImage(size, type);
        for (int k = 0; k < static_cast<int>(images.size()); ++k)
            cv::flip(image, image, k - 1);
        images.push_back(images.size() % 2 == 0 ? image : viewInto(image));
    }
    return images;
}

TEST(Composite, AddsWhatAllShiftedImagesCover) {
    const std::vector<int> mixes[] = {{CV_8UC3, CV_8UC3},
                                      {CV_16UC3, CV_16UC3},
                                      {CV_8UC1, CV_8UC1, CV_8UC4},
                                      {CV_8UC4, CV_8UC3, CV_8UC1, CV_8UC3, CV_8UC3},
                                      {CV_16UC1, CV_16UC4, CV_16UC3},
                                      {CV_8UC3, CV_16UC3, CV_16UC1},
                                      {CV_16UC1, CV_8UC4, CV_8UC3},
                                      {CV_16UC3, CV_16UC3, CV_16UC1, CV_16UC3},
                                      std::vector<int>(6, CV_16UC3),
                                      std::vector<int>(7, CV_8UC3)};
    const QPoint shapes[][7] = {{{0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}},
                                {{0, 0}, {10, 2}, {4, 1}, {0, 2}, {10, 0}, {3, 0}, {0, 1}},
                                {{-3, -2}, {0, 0}, {-1, -1}, {-3, 0}, {0, -2}, {-2, 0}, {0, 0}},
                                {{3, 0}, {0, 2}, {1, 1}, {2, 2}, {0, 0}, {1, 0}, {0, 1}}};
    for (const std::vector<int>& types : mixes)
        for (cv::Size size : imageSizes())
            for (const auto& shape : shapes)
                for (QPoint base : {QPoint(0, 0), QPoint(INT_MAX - 20, INT_MIN + 20)}) {
                    QList<QPoint> offsets;
                    for (std::size_t k = 0; k < types.size(); ++k)
                        offsets.append({shape[k].x() % size.width + base.x(),
                                        shape[k].y() % size.height + base.y()});
                    Images images = noise(size, types), unified;
                    const Images before = images;
                    for (const cv::Mat& image : images)
                        unified.push_back(plainUnified(image, images[0].depth()));
                    const DebugLog log;
                    const std::unique_ptr<cv::Mat> canvas = composite(images, offsets);
                    ASSERT_NE(canvas, nullptr);
                    ASSERT_TRUE(sameImage(*canvas, plainCanvas(unified, offsets)))
                        << size << " of " << cv::typeToString(types[0]);
                    EXPECT_EQ(log.lines, QStringList());
                    for (std::size_t k = 0; k < images.size(); ++k) {
                        ASSERT_TRUE(sameImage(images[k], unified[k]));
                        EXPECT_EQ(images[k].data == before[k].data, types[k] == unified[0].type());
                    }
                }
}

TEST(Composite, OneImageMayStandInTheListTwice) {
    cv::Mat image = randomImage({9, 8}, CV_8UC1);
    const cv::Mat unified = plainUnified(image, image.depth());
    QList<cv::Mat*> list = {&image, &image};
    QList<QPoint> offsets = {{0, 0}, {3, 1}};
    const std::unique_ptr<cv::Mat> canvas(Lumetra::Composite(&list, &offsets));
    EXPECT_TRUE(sameImage(*canvas, plainCanvas({unified, unified}, offsets)));
}

/// A failed call tells the developer one line and changes no image but the first, which it may
/// have converted.
TEST(Composite, ListsThatCannotBeCompositedLeaveADebugLine) {
    struct Case {
        std::size_t images;
        QList<QPoint> offsets;
        QString line; // as a pattern: what does not fit into 32 bits is only known to be negative
        bool firstConverted;
    };
    const Case cases[] = {
        {0, {}, "matList:0 offsetPointList:0", false},
        {1, {{0, 0}}, "matList:1 offsetPointList:1", false},
        {2, {{0, 0}}, "matList:2 offsetPointList:1", false},
        {3, {{0, 0}, {0, 0}}, "matList:3 offsetPointList:2", false},
        {2, {{0, 0}, {0, 0}, {0, 0}}, "matList:2 offsetPointList:3", false},
        {2, {{0, 0}, {0, 10}}, "newRows:0 newCols:20", true},
        {2, {{0, 0}, {-20, 3}}, "newRows:7 newCols:0", true},
        {3, {{-15, 0}, {0, 0}, {15, 11}}, "newRows:-1 newCols:-10", true},
        {2, {{0, 0}, {0, INT_MAX}}, "newRows:-2147483637 newCols:20", true},
        {2, {{-1, 9}, {INT_MAX, 0}}, "newRows:1 newCols:-2147483628", true},
        {2, {{INT_MIN, 0}, {INT_MAX, 0}}, "newRows:10 newCols:-\\d+", true},
        {2, {{INT_MAX, INT_MIN}, {INT_MIN, INT_MAX}}, "newRows:-\\d+ newCols:-\\d+", true}};
    for (const Case& known : cases) {
        SCOPED_TRACE(qPrintable(known.line));
        Images images = noise({20, 10}, std::vector<int>(known.images, CV_8UC1));
        Images before;
        for (const cv::Mat& image : images)
            before.push_back(image.clone());
        const DebugLog log;
        EXPECT_EQ(composite(images, known.offsets), nullptr);
        ASSERT_EQ(log.lines.size(), 1);
        EXPECT_TRUE(QRegularExpression("^default: \\[Lumetra::Composite\\] " + known.line + "$")
                        .match(log.lines[0])
                        .hasMatch())
            << qPrintable(log.lines[0]);
        for (std::size_t k = 0; k < images.size(); ++k)
            EXPECT_TRUE(sameImage(images[k], k == 0 && known.firstConverted
                                                 ? plainUnified(before[k], CV_8U)
                                                 : before[k]));
    }
}

/// Four images, the third of another size: the first three are converted, the last one is not.
void expectMismatch(cv::Size odd) {
    Images images = noise({6, 5}, {CV_8UC1, CV_8UC4, CV_8UC1, CV_8UC1});
    images[2] = odd.empty() ? cv::Mat() : randomImage(odd, CV_8UC1);
    const DebugLog log;
    EXPECT_EQ(composite(images, {{0, 0}, {1, 1}, {0, 0}, {0, 0}}), nullptr);
    EXPECT_EQ(log.lines, QStringList());
    EXPECT_EQ(images[0].type(), CV_8UC3);
    EXPECT_EQ(images[1].type(), CV_8UC3);
    EXPECT_EQ(images[2].type(), CV_8UC3);
    EXPECT_EQ(images[2].size(), odd);
    EXPECT_EQ(images[3].type(), CV_8UC1);
}

TEST(Composite, ImagesOfUnlikeSizesAreReportedInABoxWhereThereCanBeOne) {
    expectMismatch({6, 4});
    {
        const Running<QCoreApplication> application;
        expectMismatch({6, 4});
    }
    const Running<QApplication> application;
    for (cv::Size odd :
         {cv::Size(6, 4), cv::Size(5, 5), cv::Size(5, 6), cv::Size(7, 6), cv::Size()}) {
        const BoxReader reader;
        expectMismatch(odd);
        expectSizeBox(reader);
    }
    const BoxReader reader;
    std::thread([] { expectMismatch({6, 4}); }).join();
    EXPECT_EQ(reader.boxes, QStringList());
}

TEST(Composite, OtherDepthsGiveAnAllZeroCanvas) {
    for (int depth : {CV_8S, CV_16S, CV_32S, CV_32F, CV_64F}) {
        Images images = noise({60, 50}, {CV_MAKETYPE(depth, 1), CV_8UC1});
        const std::unique_ptr<cv::Mat> canvas = composite(images, {{0, 0}, {4, 3}});
        ASSERT_NE(canvas, nullptr);
        EXPECT_TRUE(sameImage(*canvas, cv::Mat::zeros(47, 56, CV_MAKETYPE(depth, 3))));
        EXPECT_EQ(images[0].type(), canvas->type());
        EXPECT_EQ(images[1].type(), canvas->type());
        images[1].pop_back();
        EXPECT_EQ(composite(images, {{0, 0}, {0, 0}}), nullptr);
    }
}

TEST(Composite, EmptyImagesHaveNoCommonArea) {
    Images images = {cv::Mat(), randomImage({3, 3}, CV_8UC1)};
    const DebugLog log;
    EXPECT_EQ(composite(images, {{0, 0}, {0, 0}}), nullptr);
    EXPECT_EQ(log.lines, QStringList("default: [Lumetra::Composite] newRows:0 newCols:0"));
    EXPECT_EQ(images[0].type(), CV_8UC3);
    EXPECT_EQ(images[1].type(), CV_8UC1);
}

TEST(Composite, ImagesThatCannotBeConvertedAreRefused) {
    for (const cv::Mat& bad : {randomImage({6, 5}, CV_8UC2), randomImage({6, 5}, CV_16UC(5)),
                               cv::Mat({3, 4, 5}, CV_8UC3), cv::Mat({3, 4, 5}, CV_8UC1)})
        for (std::size_t at : {0U, 1U, 2U}) {
            Images images = noise({6, 5}, {CV_8UC1, CV_8UC1, CV_8UC1});
            images[at] = bad;
            EXPECT_THROW(composite(images, {{0, 0}, {0, 0}, {1, 1}}), cv::Exception);
            EXPECT_EQ(images[at].type(), bad.type());
            EXPECT_EQ(images[0].type() == CV_8UC3, at > 0 || bad.type() == CV_8UC3);
            EXPECT_EQ(images[2].type() == CV_8UC3, at == 2 && bad.type() == CV_8UC3);
        }
}

} // namespace
