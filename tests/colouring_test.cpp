// What tinting and pseudo-colouring have in common: what they make of sources, and the destination.

#include "image_memory.h"
#include "plain_colouring.h"

namespace {

TEST(Colouring, OtherDepthsAreReducedToEightBitsFirst) {
    for (const Operation& colour : allOperations())
        for (int depth : allDepths)
            for (int channels : {1, 3, 4}) {
                const cv::Mat samples = samplesOf(depth);
                cv::Mat src = samples.rowRange(0, samples.rows / channels * channels), result;
                src = src.reshape(channels, src.rows / channels);
                cv::Mat reduced = reducedForColouring(src), expected;
                colour(src, result);
                colour(reduced, expected);
                EXPECT_TRUE(sameImage(result, expected)) << cv::typeToString(src.type());
            }
}

/// Memory that the test lends to one matrix and keeps.
class LentMemory : public ImageMemory {
public:
    cv::Mat holding(const cv::Mat& image) {
        cv::Mat lent;
        lent.allocator = this;
        image.copyTo(lent);
        return lent;
    }

private:
    uchar* take(std::size_t size) const override {
        bytes_.resize(size);
        return bytes_.data();
    }
    void giveBack(uchar* /*bytes*/, std::size_t /*size*/) const override {}

    mutable std::vector<uchar> bytes_;
};

TEST(Colouring, ReplacesTheDestinationAndOnlyReadsTheSource) {
    for (const Operation& colour : allOperations())
        for (int type : {CV_8UC1, CV_8UC3, CV_8UC4, CV_16UC1, CV_16UC3, CV_16UC4, CV_16SC1,
                         CV_16SC3, CV_32SC1, CV_32SC3, CV_32FC1, CV_32FC3, CV_64FC1, CV_64FC3}) {
            SCOPED_TRACE(cv::typeToString(type));
            cv::Mat image = mediumContrast({13, 7}, type), same = image.clone(), expected;
            colour(same, expected);
            EXPECT_TRUE(sameImage(same, image));
            const auto expectOwnResult = [&](cv::Mat& src, cv::Mat& dst) {
                colour(src, dst);
                EXPECT_TRUE(sameImage(dst, expected));
                EXPECT_EQ(dst.u->refcount, 1);
                EXPECT_FALSE(dst.isSubmatrix());
            };
            cv::Mat src = viewInto(image);
            const cv::Mat parent = parentOf(src), parentBefore = parent.clone();
            cv::Mat dst = src;
            expectOwnResult(src, dst);
            dst = parent(cv::Rect(0, 0, image.cols, image.rows));
            expectOwnResult(src, dst);
            expectOwnResult(src, src);
            EXPECT_TRUE(sameImage(parent, parentBefore));

            // What somebody else can see of a destination stays as it was.
            const cv::Mat old(expected.size(), expected.type(), cv::Scalar(7, 7, 7));
            const auto expectUnseen = [&](cv::Mat shared) {
                const cv::Mat seen(old.size(), old.type(), shared.data, shared.step);
                expectOwnResult(image, shared);
                EXPECT_TRUE(sameImage(seen, old));
            };
            cv::Mat buffer = old.clone(), mapped = old.clone();
            expectUnseen(buffer);
            expectUnseen(cv::Mat(old.size(), old.type(), buffer.data));
            const cv::UMat other = mapped.getUMat(cv::ACCESS_RW);
            expectUnseen(std::move(mapped));
            cv::UMat owner;
            old.copyTo(owner);
            expectUnseen(owner.getMat(cv::ACCESS_RW));
            LentMemory lender;
            expectUnseen(lender.holding(old));

            // Nobody sees these, but they are no images of that size in storage of their own.
            dst = viewInto(old);
            expectOwnResult(image, dst);
            dst = cv::Mat(old.rows + 2, old.cols, old.type()).rowRange(1, old.rows + 1);
            expectOwnResult(image, dst);
            dst = cv::Mat({old.rows, old.cols, 2}, old.type());
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
            for (const cv::Mat& other :
                 {cv::Mat(expected.t()), cv::Mat(expected.size(), CV_32S),
                  cv::Mat(expected.size(), expected.depth()),
                  cv::Mat(expected.size(), CV_MAKETYPE(expected.depth(), 4))}) {
                dst = other.clone();
                colour(image, dst);
                EXPECT_TRUE(sameImage(dst, expected));
            }

            // A source may lie anywhere in the destination's storage without saying so.
            const std::size_t bytes = image.total() * image.elemSize();
            for (std::size_t first = 0; first + bytes <= dst.total() * dst.elemSize();
                 first += bytes / 2 / dst.elemSize1() * dst.elemSize1()) {
                dst = ~expected;
                std::copy_n(image.data, bytes, dst.data + first);
                cv::Mat src(image.size(), type, dst.data + first);
                colour(src, dst);
                EXPECT_TRUE(sameImage(dst, expected)) << first;
            }
        }
}

TEST(Colouring, RefusesImagesOfOtherShapes) {
    using Shape = std::vector<int>;
    for (const Operation& colour : allOperations()) {
        for (int type : {CV_8UC1, CV_8UC3, CV_16UC1, CV_16UC3, CV_32FC4, CV_8UC2}) {
            for (const Shape& shape :
                 {Shape{0, 0}, {5, 0}, {0, 5}, {0, 3, 3}, {3, 3, 0}, {2, 0, 3, 4}}) {
                cv::Mat empty(shape, type), dst(3, 3, CV_16UC3);
                EXPECT_THROW(colour(empty, dst), cv::Exception);
                EXPECT_TRUE(sameImage(dst, cv::Mat()));
                EXPECT_THROW(colour(empty, empty), cv::Exception);
                EXPECT_TRUE(sameImage(empty, cv::Mat()));
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
