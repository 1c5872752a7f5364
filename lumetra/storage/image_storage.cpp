#include "lumetra/storage/image_storage.h"

#include <opencv2/core.hpp>

#include <functional>

namespace lumetra {
namespace {

/// The headers that share the storage. Reading it by an atomic addition of nothing also makes sure
/// that whoever counted themselves out last, on whatever thread, has read the pixels before.
int headersOn(cv::UMatData& storage) { return CV_XADD(&storage.refcount, 0); }

/// Whether this is the only header on its storage, and the storage is all its own. What another
/// allocator gave may belong to somebody else although nobody else has a header on it.
bool isSoleOwner(const cv::Mat& image) {
    return image.u && image.u->currAllocator == cv::Mat::getDefaultAllocator() &&
           headersOn(*image.u) == 1 && image.u->urefcount == 0 && image.isContinuous() &&
           !image.isSubmatrix();
}

bool overlap(const cv::Mat& a, const cv::Mat& b) {
    const std::less<> before;
    return before(a.datastart, b.dataend) && before(b.datastart, a.dataend);
}

} // namespace

cv::Mat resultImage(const cv::Mat& source, int type, const cv::Mat& dst) {
    if (dst.dims == 2 && dst.size() == source.size() && dst.type() == type && isSoleOwner(dst) &&
        !overlap(source, dst))
        return dst;
    cv::Mat fresh(source.rows, source.cols, type);
    return fresh;
}

} // namespace lumetra
