#include "lumetra/storage/image_storage.h"

#include <opencv2/core.hpp>

#include <functional>
#include <memory>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace lumetra {
namespace {

/// Asks for large pages. Whether there are any is up to the system: nothing depends on it.
void preferLargePages(const cv::Mat& image) {
#ifdef MADV_HUGEPAGE
    constexpr std::size_t page = 4096;
    constexpr std::size_t worthwhile = std::size_t{32} << 20; // what allocators map by itself
    void* first = image.data;
    std::size_t bytes = image.total() * image.elemSize();
    if (bytes >= worthwhile && std::align(page, worthwhile - page, first, bytes))
        madvise(first, bytes / page * page, MADV_HUGEPAGE);
#else
    static_cast<void>(image);
#endif
}

/// Whether this is the only header on its storage, and the storage is all its own.
bool isSoleOwner(const cv::Mat& image) {
    // Whoever counted themselves out last, on whatever thread, has read the pixels before.
    return image.u && __atomic_load_n(&image.u->refcount, __ATOMIC_ACQUIRE) == 1 &&
           image.u->urefcount == 0 && image.isContinuous() && !image.isSubmatrix();
}

bool overlap(const cv::Mat& a, const cv::Mat& b) {
    const std::less<> before;
    return before(a.datastart, b.dataend) && before(b.datastart, a.dataend);
}

} // namespace

void createImage(cv::Mat& image, int rows, int cols, int type) {
    const unsigned char* const former = image.data;
    image.create(rows, cols, type);
    if (image.data != former)
        preferLargePages(image);
}

cv::Mat resultImage(const cv::Mat& source, int type, const cv::Mat& dst) {
    if (dst.dims == 2 && dst.size() == source.size() && dst.type() == type && isSoleOwner(dst) &&
        !overlap(source, dst))
        return dst;
    cv::Mat fresh;
    createImage(fresh, source.rows, source.cols, type);
    return fresh;
}

} // namespace lumetra
