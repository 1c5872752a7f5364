// What tinting and pseudo-colouring have in common: the ways to the result, and the destination.

#include "support.h"

#include <lumetra>

#include <functional>

namespace {

using Operation = std::function<void(cv::Mat& src, cv::Mat& dst)>;

std::vector<Operation> allOperations() {
    std::vector<Operation> operations;
    for (bool autoLevels : {false, true})
        for (bool dominantChannel : {false, true})
            operations.emplace_back([=](cv::Mat& src, cv::Mat& dst) {
                Lumetra::Dye(src, dst, 200, 255, 31, autoLevels, dominantChannel);
            });
    QVector<QColor> colours;
    for (int i = 0; i < 255; ++i)
        colours.append(QColor(i, 255 - i, i * 7 % 256));
    operations.emplace_back(
        [colours](cv::Mat& src, cv::Mat& dst) { Lumetra::Pseudo(src, dst, colours); });
    return operations;
}

/// The same 8-bit samples in every form: each takes a way of its own to the same result.
TEST(Colouring, DoesNotDependOnTheWayTaken) {
    for (const Operation& colour : allOperations())
        for (cv::Size size : imageSizes())
            for (int channels : {1, 3}) {
                cv::Mat image = mediumContrast(size, CV_8UC(channels)), expected;
                colour(image, expected);
                std::vector<cv::Mat> planes;
                cv::split(image, planes);
                planes.resize(3, planes[0]);
                planes.push_back(255 - planes[0]);
                cv::Mat three, four;
                cv::merge(planes.data(), 3, three);
                cv::merge(planes, four);
                for (const cv::Mat& form : {image, three, four})
                    for (int depth : {CV_8U, CV_16S, CV_32S, CV_16F, CV_32F, CV_64F}) {
                        cv::Mat src, result;
                        form.convertTo(src, depth);
                        colour(src, result);
                        ASSERT_TRUE(sameImage(result, expected))
                            << cv::typeToString(src.type()) << " " << size;
                    }
            }
}

TEST(Colouring, ReplacesTheDestinationAndOnlyReadsTheSource) {
    for (const Operation& colour : allOperations())
        for (int type :
             {CV_8UC1, CV_8UC3, CV_8UC4, CV_16UC1, CV_16UC3, CV_16UC4, CV_32FC1, CV_32FC3}) {
            SCOPED_TRACE(cv::typeToString(type));
            cv::Mat image = mediumContrast({13, 7}, type), expected;
            colour(image, expected);
            const auto expectOwnResult = [&](cv::Mat& src, cv::Mat& dst) {
                colour(src, dst);
                EXPECT_TRUE(sameImage(dst, expected));
                EXPECT_EQ(dst.u->refcount, 1);
                EXPECT_FALSE(dst.isSubmatrix());
            };
            cv::Mat src = viewInto(image);
            const cv::Mat parent = parentOf(src), parentBefore = parent.clone();
            const cv::Mat old(expected.size(), expected.type(), cv::Scalar(7, 7, 7));
            cv::Mat dst = old;
            expectOwnResult(src, dst);
            EXPECT_TRUE(sameImage(old, cv::Mat(old.size(), old.type(), cv::Scalar(7, 7, 7))));
            dst = src;
            expectOwnResult(src, dst);
            dst = parent(cv::Rect(0, 0, image.cols, image.rows));
            expectOwnResult(src, dst);
            EXPECT_TRUE(sameImage(parent, parentBefore));
            expectOwnResult(src, src);
            EXPECT_TRUE(sameImage(parent, parentBefore));

            cv::Mat buffer = old.clone();
            dst = cv::Mat(old.size(), old.type(), buffer.data);
            expectOwnResult(image, dst);
            EXPECT_TRUE(sameImage(buffer, old));
            dst = viewInto(old); // the only header on its parent
            expectOwnResult(image, dst);
        }
}

TEST(Colouring, WritesIntoADestinationThatNobodyElseCanSee) {
    for (const Operation& colour : allOperations())
        for (int type : {CV_8UC1, CV_8UC3, CV_16UC1, CV_16UC3}) {
            SCOPED_TRACE(cv::typeToString(type));
            cv::Mat image = mediumContrast({13, 7}, type), expected;
            colour(image, expected);
            cv::Mat dst = ~expected;
            const unsigned char* const storage = dst.data;
            colour(image, dst);
            EXPECT_TRUE(sameImage(dst, expected));
            EXPECT_EQ(dst.data, storage);
            for (const cv::Mat& other : {cv::Mat(expected.t()), cv::Mat(expected.size(), CV_32S)}) {
                dst = other.clone();
                colour(image, dst);
                EXPECT_TRUE(sameImage(dst, expected));
            }
            dst = cv::Mat(expected.rows + 1, expected.cols, expected.type())
                      .rowRange(1, image.rows + 1);
            colour(image, dst);
            EXPECT_FALSE(dst.isSubmatrix());

            // A source may lie in the destination's storage without saying so.
            std::copy_n(image.data, image.total() * image.elemSize(), dst.data);
            cv::Mat src(image.size(), type, dst.data);
            colour(src, dst);
            EXPECT_TRUE(sameImage(dst, expected));
        }
}

TEST(Colouring, RefusesImagesOfOtherShapes) {
    for (const Operation& colour : allOperations()) {
        for (int type : {CV_8UC1, CV_8UC3, CV_16UC1, CV_16UC3, CV_32FC4, CV_8UC2}) {
            for (cv::Mat empty : {cv::Mat(0, 0, type), cv::Mat(5, 0, type), cv::Mat(0, 5, type)}) {
                cv::Mat dst(3, 3, CV_8UC3);
                EXPECT_THROW(colour(empty, dst), cv::Exception);
                EXPECT_TRUE(dst.empty());
                EXPECT_THROW(colour(empty, empty), cv::Exception);
                EXPECT_TRUE(empty.empty());
            }
            cv::Mat cube({3, 4, 5}, type, cv::Scalar::all(1));
            cv::Mat dst = randomImage({3, 3}, CV_8UC3);
            const cv::Mat storage = dst, before = dst.clone();
            EXPECT_THROW(colour(cube, dst), cv::Exception);
            EXPECT_EQ(dst.data, storage.data);
            EXPECT_TRUE(sameImage(dst, before));
        }
        for (int type : {CV_8UC2, CV_16UC2, CV_32FC2, CV_8UC(5), CV_16UC(5)}) {
            const cv::Mat image = randomImage({6, 5}, type);
            cv::Mat src = viewInto(image), dst;
            EXPECT_THROW(colour(src, dst), cv::Exception);
            EXPECT_TRUE(sameImage(dst, image));
            EXPECT_NE(dst.u, src.u);
            EXPECT_THROW(colour(src, src), cv::Exception);
            EXPECT_TRUE(sameImage(src, image));
        }
    }
}

} // namespace
