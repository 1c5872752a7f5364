// Image files, read.
#pragma once

#include "imageio/file_metadata.h"
#include "imageio/plane_rows.h"

#include <opencv2/core/mat.hpp>

#include <QString>

#include <memory>
#include <optional>

namespace lumetra {

class PageReader;
struct FileDescription;
struct PlaneAddress;

/// An image file: TIFF, PNG, JPEG, BMP, PGM or PPM. It is a set of planes along channel, z and time
/// as its metadata say, or of pages where they say nothing. It is opened once and its pages are
/// found once; each is read when it is asked for and held by the caller alone.
///
/// Everything is counted from 1: pages, channels, z-slices, time points, components.
///
/// An object belongs to one thread at a time; different objects do not touch one another.
class ImageFile {
public:
    /// Opens the file, told by its first bytes whatever its name, and finds its pages.
    /// Metadata that are not understood are no error, but a warning among them.
    /// @throws FileError if it cannot be read, was cut short, is of another format, or holds what
    ///         would be misread.
    explicit ImageFile(QString file);
    ~ImageFile();
    ImageFile(ImageFile&& other) noexcept;
    ImageFile& operator=(ImageFile&& other) noexcept;

    /// The name that it was opened by.
    const QString& file() const { return file_; }

    /// The number of pages, at least one.
    int pages() const;

    /// How many channels, z-slices and time points there are. Without metadata: as many channels as
    /// the gray values of a pixel of the first page, and the pages as z-slices.
    const Axes& axes() const;

    /// What the file says of them.
    const FileMetadata& metadata() const;

    /// The page that holds a plane, from 1; 0 if no page of this file does: the plane is missing,
    /// or in a file beside this one.
    /// @throws FileError if there is no such channel, z-slice or time point.
    int pageOf(int channel, int slice, int frame) const;

    /// A plane, with the orientation that the file tells. Unsigned values of up to 8 bits come as
    /// CV_8UC1, of up to 16 bits as CV_16UC1, unscaled; signed ones of 8 and 16 bits and floats of
    /// 16 and 32 bits as CV_32FC1; integers of 32 bits and floats of 64 bits as CV_64FC1: these
    /// need contrast limits (toDisplay16) before they can be shown. What is stored inverted
    /// (WhiteIsZero) is turned, so that bright is bright: the largest value of the bit depth less
    /// the value, or the value negated where it is signed or a float. RGB with equal components is
    /// gray. A palette that is gray is its grays; one that has colours is its indices, and the
    /// colours are the channel's LUT.
    /// @throws FileError if there is no such plane, a file beside this one that holds it is
    /// missing,
    ///         it is damaged, has colours, or memory is short.
    cv::Mat plane(int channel, int slice, int frame) const;

    /// The same plane from top to bottom, if it is of the file itself, has 8 or 16 bits, unsigned,
    /// and can be read so in little memory: TIFF of small strips or tiles, or uncompressed, and
    /// PNG; else null. It is read while the file is there and nothing else of it is read. What it
    /// throws is FileError.
    std::unique_ptr<PlaneRows> rows(int channel, int slice, int frame) const;

    /// The same for `planeOfPage`.
    std::unique_ptr<PlaneRows> rowsOfPage(int number, int component = 1) const;

    /// A plane as above, by its page.
    /// @param component  Which of the gray values of a pixel; of a page with colours there is 1
    ///                   alone, which has to be gray.
    /// @throws FileError as `plane`.
    cv::Mat planeOfPage(int number, int component = 1) const;

    /// How many planes a page holds: the gray values of each of its pixels.
    /// @throws FileError if there is no such page.
    int components(int number) const;

    /// How the values of a page are stored; nothing where the matrix that is read tells it.
    /// @throws FileError if there is no such page.
    std::optional<ValueType> valueType(int number) const;

    /// A page as an observer sees it, with the orientation that the file tells: CV_8U or CV_16U,
    /// one channel, or three in the order blue, green, red. Alpha is left out. RGB with equal
    /// components comes as one channel, a palette with colours as three.
    /// @param number  Counted from 1.
    /// @throws FileError if there is no such page, it is damaged, holds several channels or values
    ///         of another type, or memory is short.
    cv::Mat page(int number) const;

    /// The only plane of a page: CV_8UC1 or CV_16UC1, as `plane`.
    /// @throws FileError as `page`, and if the page has colours.
    cv::Mat grayPage(int number) const;

private:
    int indexOfPage(int number) const;
    int componentOf(int index, int component) const;
    std::unique_ptr<PlaneRows> named(std::unique_ptr<PlaneRows> rows) const;
    const PlaneAddress& addressOf(int channel, int slice, int frame) const;
    PageReader& readerBeside(int number) const;

    QString file_;
    std::unique_ptr<PageReader> reader_;
    std::unique_ptr<FileDescription> description_;
    mutable std::unique_ptr<PageReader> other_; ///< The last one read of those beside.
    mutable int otherNumber_ = 0;
};

} // namespace lumetra
