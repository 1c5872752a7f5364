// Image files, read.
#pragma once

#include <opencv2/core/mat.hpp>

#include <QString>

#include <memory>

namespace lumetra {

class PageReader;

/// An image file of one or many pages: TIFF, PNG, JPEG, BMP, PGM or PPM. It is opened once and its
/// pages are found once; each is read when it is asked for and held by the caller alone.
///
/// An object belongs to one thread at a time; different objects do not touch one another.
class ImageFile {
public:
    /// Opens the file, told by its first bytes whatever its name, and finds its pages.
    /// @throws FileError if it cannot be read, was cut short, is of another format, or holds what
    ///         would be misread: TIFF files of other than 8- and 16-bit unsigned values, inverted
    ///         (WhiteIsZero), of two values per pixel, or gray with several; ImageJ stacks whose
    ///         pages lie behind one directory.
    explicit ImageFile(QString file);
    ~ImageFile();
    ImageFile(ImageFile&& other) noexcept;
    ImageFile& operator=(ImageFile&& other) noexcept;

    /// The name that it was opened by.
    const QString& file() const { return file_; }

    /// The number of pages, at least one.
    int pages() const;

    /// A page as an observer sees it, with the orientation that the file tells: CV_8U or CV_16U,
    /// one channel, or three in the order blue, green, red. Alpha is left out.
    /// @param number  Counted from 1.
    /// @throws FileError if there is no such page, it is damaged, or memory is short.
    cv::Mat page(int number) const;

    /// As `page`, of gray pages alone: CV_8UC1 or CV_16UC1.
    /// @throws FileError as `page`, and if the page has colours.
    cv::Mat grayPage(int number) const;

private:
    QString file_;
    std::unique_ptr<PageReader> reader_;
};

} // namespace lumetra
