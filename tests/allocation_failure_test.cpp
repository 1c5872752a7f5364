// Every allocation of an operation refused in turn: the call ends as its contract says, nothing
// leaks, and the next call works.

#include "canvas.h"
#include "image_memory.h"
#include "plain_colouring.h"

#include <opencv2/imgcodecs.hpp>

#include <QTemporaryDir>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <memory>
#include <new>

namespace {

/// Allocations that are to be refused: none at 0, else the n-th from now on.
struct Refusal {
    std::atomic<long> left{0};
    std::atomic<bool> goesOn{false}; ///< Whether all that follow are refused, too.
    std::atomic<bool> happened{false};

    bool isNow() {
        if (left == 0 || --left > 0)
            return false;
        left = goesOn ? 1 : 0;
        return happened = true;
    }
};

Refusal refusal;       ///< Of objects and images.
Refusal mallocRefusal; ///< Of what the containers of Qt ask for.
std::atomic<long> liveBlocks{0};

void* blockOf(std::size_t size) {
    void* const block = refusal.isNow() ? nullptr : std::malloc(size);
    liveBlocks += block != nullptr ? 1 : 0;
    return block;
}

void giveBack(void* block) {
    liveBlocks -= block != nullptr ? 1 : 0;
    std::free(block);
}

/// Gives out images that are filled with a value which no test expects, or refuses them.
class RefusingMemory : public ImageMemory {
public:
    /// How many more images there are at once during a call than before it.
    int mostDuring(const std::function<void()>& call) {
        const int before = most_ = images_;
        call();
        return most_ - before;
    }

    /// How many images a call takes memory for.
    int takenDuring(const std::function<void()>& call) {
        const int before = taken_;
        call();
        return taken_ - before;
    }

private:
    uchar* take(std::size_t size) const override {
        if (refusal.isNow())
            CV_Error(cv::Error::StsNoMem, "refused");
        most_ = std::max(most_, ++images_);
        ++taken_;
        ++liveBlocks;
        return std::fill_n(static_cast<uchar*>(std::malloc(size)), size, uchar{0xA5}) - size;
    }
    void giveBack(uchar* bytes, std::size_t /*size*/) const override {
        --images_;
        ::giveBack(bytes);
    }

    mutable int images_ = 0;
    mutable int most_ = 0;
    mutable int taken_ = 0;
};

} // namespace

void* operator new(std::size_t size) {
    if (void* const block = blockOf(size))
        return block;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return blockOf(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return blockOf(size); }
void operator delete(void* block) noexcept { giveBack(block); }
void operator delete[](void* block) noexcept { giveBack(block); }
void operator delete(void* block, std::size_t) noexcept { giveBack(block); }
void operator delete[](void* block, std::size_t) noexcept { giveBack(block); }

namespace {

/// One run of a call with a refusal in store.
class Attempt {
public:
    explicit Attempt(long n = 0, bool goesOn = false) : n_(n), goesOn_(goesOn) {}

    /// @return Whether the call returned; false after one of the exceptions that it may throw.
    bool returns(const std::function<void()>& call, Refusal& kind = refusal) {
        bool returned = false;
        kind.happened = false;
        kind.goesOn = goesOn_;
        kind.left = n_;
        try {
            call();
            returned = true;
        } catch (const std::bad_alloc&) { // as stated
        } catch (const cv::Exception&) {  // as stated
        }
        kind.left = 0;
        refused = kind.happened;
        return returned;
    }

    bool refused = false;

private:
    long n_;
    bool goesOn_;
};

/// Has a call attempted with the n-th allocation refused, and with all from the n-th on, for every
/// n until nothing is left to refuse. @return How many allocations there were.
long refuseEach(const std::function<void(Attempt&)>& tryOnce) {
    Attempt unhindered;
    tryOnce(unhindered); // also allocates what is allocated once in the life of a process
    long n = 1;
    for (bool goesOn : {true, false})
        for (n = 1; !testing::Test::HasFailure(); ++n) {
            SCOPED_TRACE(testing::Message() << "allocation " << n << (goesOn ? " on" : ""));
            const long before = liveBlocks;
            Attempt attempt(n, goesOn);
            tryOnce(attempt);
            EXPECT_EQ(liveBlocks, before);
            if (!attempt.refused)
                break;
        }
    return n - 1;
}

class AllocationFailure : public testing::Test {
protected:
    RefusingMemory imageMemory;
    DefaultMemory used{imageMemory};
};

/// The source stays as it was. The destination becomes the result or stays what it was, unless a
/// bitmap was needed: then it may be a copy of the source, or empty if the decoder had no memory.
TEST_F(AllocationFailure, ColouringLeavesSourceAndDestinationWhole) {
    for (const Operation& colour : allOperations())
        for (int type : {CV_8UC1, CV_8UC3, CV_8UC4, CV_16UC1, CV_16UC3, CV_16UC4, CV_32FC1,
                         CV_32FC3, CV_64FC3})
            for (bool inPlace : {false, true}) {
                SCOPED_TRACE(cv::typeToString(type) + (inPlace ? " in place" : ""));
                const bool isBitmap = type == CV_32FC3 || type == CV_64FC3;
                cv::Mat source = mediumContrast({2500, 3}, type), expected; // too wide for a stack
                colour(source, expected);
                const cv::Mat old(4, 5, CV_8UC3, cv::Scalar(1, 2, 3));
                const auto tryOnce = [&](Attempt& attempt) {
                    cv::Mat src = source.clone(), other = old.clone();
                    cv::Mat& dst = inPlace ? src : other;
                    const cv::Mat srcPixels = src, dstPixels = dst;
                    const bool returned = attempt.returns([&] { colour(src, dst); });
                    EXPECT_TRUE(sameImage(srcPixels, source));
                    EXPECT_TRUE(sameImage(dstPixels, inPlace ? source : old));
                    const bool isCopy = isBitmap && attempt.refused && sameImage(dst, source);
                    const bool isUndecoded = isBitmap && attempt.refused && dst.empty();
                    if (returned)
                        EXPECT_TRUE(isCopy || isUndecoded || sameImage(dst, expected));
                    else
                        EXPECT_TRUE(isCopy || dst.data == dstPixels.data);
                };
                ASSERT_GT(refuseEach(tryOnce), 0);
            }
}

TEST_F(AllocationFailure, CompositingLeavesImagesWhole) {
    const QList<QPoint> offsets = {{0, 0}, {7, 1}, {0, 2}};
    std::vector<cv::Mat> before, unified;
    for (int type : {CV_8UC1, CV_16UC4, CV_8UC3}) {
        before.push_back(randomImage({300, 9}, type));
        unified.push_back(plainUnified(before.back(), CV_8U));
    }
    const cv::Mat expected = plainCanvas(unified, offsets);
    const auto tryOnce = [&](Attempt& attempt) {
        std::vector<cv::Mat> images = before;
        QList<cv::Mat*> list = {&images[0], &images[1], &images[2]};
        QList<QPoint> points = offsets;
        std::unique_ptr<cv::Mat> canvas;
        const bool returned =
            attempt.returns([&] { canvas.reset(Lumetra::Composite(&list, &points)); });
        EXPECT_EQ(returned, canvas != nullptr);
        EXPECT_TRUE(canvas == nullptr || sameImage(*canvas, expected));
        for (std::size_t k = 0; k < images.size(); ++k)
            EXPECT_TRUE(sameImage(images[k], before[k]) || sameImage(images[k], unified[k])) << k;
    };
    EXPECT_GT(refuseEach(tryOnce), 0);
}

TEST_F(AllocationFailure, FilesAreReadOnceAndNotInVain) {
    const QTemporaryDir folder;
    QList<QString> files;
    for (const int width : {30, 31, 30}) {
        files.append(folder.filePath(QString::number(files.size()) + ".bmp"));
        cv::imwrite(files.back().toStdString(), randomImage({width, 4}, CV_8UC3));
    }
    const int once = imageMemory.takenDuring([&] { cv::imread(files[0].toStdString()); });
    QList<QPoint> offsets = {{0, 0}, {3, 1}, {0, 0}};
    cv::Mat dst;
    const auto synthesise = [&] { Lumetra::FluorescenceSynthesis(&files, &offsets, dst); };
    EXPECT_EQ(imageMemory.takenDuring(synthesise), 3 * once + 1); // with the canvas
    const auto composite = [&] { EXPECT_EQ(Lumetra::Composite(&files, &offsets), nullptr); };
    EXPECT_EQ(imageMemory.takenDuring(composite), 2 * once + 1); // up to the one that does not fit
    offsets.removeLast();
    EXPECT_EQ(imageMemory.takenDuring(composite) + imageMemory.takenDuring(synthesise), 0);
}

/// A decoder without memory cannot read its file, which then counts as unreadable.
TEST_F(AllocationFailure, FilesAreCompositedWholeOrLeftOut) {
    const QTemporaryDir folder;
    QList<QString> files;
    QList<QPoint> offsets = {{0, 0}, {3, 1}};
    std::vector<cv::Mat> images;
    for (const char* name : {"a.bmp", "b.png"}) {
        files.append(folder.filePath(name));
        images.push_back(randomImage({2500, 4}, CV_8UC3) / static_cast<int>(2 + files.size()));
        cv::imwrite(files.back().toStdString(), images.back());
    }
    int decoding = 0;
    for (const QString& file : files)
        decoding =
            std::max(decoding, imageMemory.mostDuring([&] { cv::imread(file.toStdString()); }));
    cv::Mat picture;
    EXPECT_EQ(
        imageMemory.mostDuring([&] { Lumetra::FluorescenceSynthesis(&files, &offsets, picture); }),
        decoding + 1)
        << "one decoded image at a time is held beside the picture";

    const cv::Mat nothing(images[0].size(), CV_8UC3, cv::Scalar());
    const cv::Mat whole = plainCanvas(images, offsets);
    const cv::Mat first = plainCanvas({images[0], nothing}, offsets);
    const auto compositeOnce = [&](Attempt& attempt) {
        std::unique_ptr<cv::Mat> canvas;
        attempt.returns([&] { canvas.reset(Lumetra::Composite(&files, &offsets)); });
        EXPECT_TRUE(canvas ? bool(sameImage(*canvas, whole)) : attempt.refused);
    };
    EXPECT_GT(refuseEach(compositeOnce), 0);
    for (cv::Size size : {cv::Size(5, 4), whole.size()}) {
        const cv::Mat old(size, CV_8UC3, cv::Scalar(1, 2, 3));
        const auto tryOnce = [&](Attempt& attempt) {
            cv::Mat dst = old.clone();
            const bool returned =
                attempt.returns([&] { Lumetra::FluorescenceSynthesis(&files, &offsets, dst); });
            EXPECT_TRUE(attempt.refused || sameImage(dst, whole));
            EXPECT_TRUE(dst.empty() ? !returned
                                    : sameImage(dst, whole) || sameImage(dst, first) ||
                                          (!returned && sameImage(dst, old)));
        };
        EXPECT_GT(refuseEach(tryOnce), 0);
    }
}

} // namespace

// The C library's own functions, unless a sanitizer brings others.
#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

extern "C" void* __libc_malloc(std::size_t size); // NOLINT(bugprone-reserved-identifier)
extern "C" __attribute__((visibility("default"))) void* malloc(std::size_t size) noexcept {
    return mallocRefusal.isNow() ? nullptr : __libc_malloc(size);
}

namespace {

/// A host finds the catalogue as the failure left it, and that stays so.
TEST(CatalogueAllocationFailure, LeavesACatalogueThatIsNotFilledAgain) {
    ASSERT_FALSE(Lumetra::bFluoDyeTypeInit);
    EXPECT_FALSE(Attempt(500).returns(Lumetra::InitFluoDyeType, mallocRefusal));
    EXPECT_TRUE(Lumetra::bFluoDyeTypeInit);
    const auto dyes = Lumetra::g_mapFluo.size();
    EXPECT_GT(dyes, 100);
    EXPECT_LT(dyes, 329);
    Lumetra::InitFluoDyeType();
    EXPECT_EQ(Lumetra::g_mapFluo.size(), dyes);
    EXPECT_EQ(Lumetra::m_vecSldFluo.size(), 0);
}

} // namespace

#endif
