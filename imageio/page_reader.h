// What every format's reader has to give.
#pragma once

#include "imageio/file_description.h"
#include "imageio/plane_rows.h"

#include <opencv2/core/mat.hpp>

#include <QFile>

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

namespace lumetra {

/// Reads the pages of one open file. All of it throws Reason, or std::bad_alloc.
class PageReader {
public:
    /// @param file  Open for reading, and the reader's from now on.
    explicit PageReader(std::unique_ptr<QFile> file) : file_(std::move(file)) {}
    virtual ~PageReader() = default;
    PageReader(const PageReader&) = delete;
    PageReader& operator=(const PageReader&) = delete;

    /// The number of pages, at least one.
    virtual int pages() const { return 1; }

    /// A page as an observer sees it, orientation applied: CV_8U or CV_16U with one channel, or
    /// three (blue, green, red). The memory is the caller's.
    /// @param index  From 0 to pages() - 1.
    virtual cv::Mat read(int index) = 0;

    /// How many planes a page holds: the values that each of its pixels has. RGB, which an observer
    /// sees as one image, counts as one.
    virtual int components(int /*index*/) const { return 1; }

    /// How a page's values are stored; nothing where the matrix that is read tells it.
    virtual std::optional<ValueType> valueType(int /*index*/) const { return {}; }

    /// One plane of a page, orientation applied: CV_8UC1 or CV_16UC1; CV_32FC1 or CV_64FC1 for
    /// values of other types. Equal red, green and blue are gray, a palette's indices are the
    /// plane. The memory is the caller's.
    /// @param component  From 0; 0 to 2 are red, green and blue of a page of colours.
    ///                   PlaneAddress::whole for the only plane of a page.
    virtual cv::Mat readPlane(int index, int component);

    /// The same plane row by row, as long as the reader lives and nothing else is read with it.
    /// Null if it can only be read as a whole; here always.
    virtual std::unique_ptr<PlaneRows> rows(int /*index*/, int /*component*/) { return {}; }

    /// What the file says of its planes. Here: nothing, its pages are z-slices.
    virtual FileDescription describe();

protected:
    /// The description of a file that says nothing.
    FileDescription pagesAsSlices() const;

    QFile& file() { return *file_; }

    /// Reads as many bytes from where the file stands.
    /// @throws Reason if the file ends before.
    void readBytes(void* bytes, std::uint64_t count);

    /// @throws Reason if an image has no pixels, or so many that no compression could bring them
    ///         into a file of this size: memory is taken for what a file holds, not for what it
    ///         claims.
    cv::Size checkedSize(std::uint64_t width, std::uint64_t height, int type) const;

    /// An image to read into, its pixels not yet set.
    /// @throws Reason as `checkedSize`.
    cv::Mat newImage(std::uint64_t width, std::uint64_t height, int type) const;

private:
    std::unique_ptr<QFile> file_;
};

/// The most bytes that a file of this size can stand for in one piece.
std::uint64_t plausibleBytes(std::int64_t fileBytes);

} // namespace lumetra
