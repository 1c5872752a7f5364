#include "imageio/page_reader.h"

#include "imageio/gray_check.h"
#include "imageio/reason.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <limits>

namespace lumetra {

std::uint64_t plausibleBytes(std::int64_t fileBytes) {
    // The strongest compression met in image files is a run of Zstandard: 128 KiB in 4 bytes.
    constexpr std::uint64_t strongestCompression = 40000, always = 64 << 20;
    return always + strongestCompression * static_cast<std::uint64_t>(fileBytes);
}

void PageReader::readBytes(void* bytes, std::uint64_t count) {
    auto* next = static_cast<char*>(bytes);
    for (auto left = static_cast<qint64>(count); left > 0;) { // a system reads so much at a time
        const qint64 read = file_->read(next, left);
        if (read <= 0)
            throw Reason("is damaged or cut short");
        next += read;
        left -= read;
    }
}

cv::Size PageReader::checkedSize(std::uint64_t width, std::uint64_t height, int type) const {
    constexpr std::uint64_t longest = std::numeric_limits<int>::max();
    if (width == 0 || height == 0)
        throw Reason("has no pixels");
    const std::uint64_t most = plausibleBytes(file_->size()) / CV_ELEM_SIZE(type);
    if (width > longest || height > longest || width > most / height)
        throw Reason("claims more pixels than the file can hold");
    return {static_cast<int>(width), static_cast<int>(height)};
}

cv::Mat PageReader::newImage(std::uint64_t width, std::uint64_t height, int type) const {
    cv::Mat image(checkedSize(width, height, type), type);
    return image;
}

cv::Mat PageReader::readPlane(int index, int component) {
    cv::Mat image = read(index);
    if (component != PlaneAddress::whole && image.channels() == 3) {
        cv::Mat plane;
        cv::extractChannel(image, plane, 2 - component); // of blue, green and red
        return plane;
    }
    image = grayIfEqual(std::move(image));
    if (image.channels() != 1)
        throw Reason("has colours, and a channel must be gray");
    return image;
}

FileDescription PageReader::describe() { return pagesAsSlices(); }

FileDescription PageReader::pagesAsSlices() const {
    FileDescription description;
    const int channels = components(0);
    if (pages() > mostPlanes / channels)
        throw Reason("has too many planes");
    description.axes = {channels, pages(), 1};
    description.metadata.channels.resize(static_cast<std::size_t>(channels));
    for (int page = 0; page < pages(); ++page)
        for (int c = 0; c < channels; ++c) {
            const bool isThere = c < components(page);
            description.planes.push_back(
                {isThere ? page : PlaneAddress::nowhere,
                 static_cast<std::int16_t>(channels > 1 ? c : PlaneAddress::whole), 0});
        }
    return description;
}

} // namespace lumetra
