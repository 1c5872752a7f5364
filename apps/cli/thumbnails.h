// The small images of a gallery.
#pragma once

#include "apps/cli/gallery.h"
#include "apps/cli/progress.h"

#include <opencv2/core/mat.hpp>

#include <QString>

#include <vector>

namespace lumetra {

/// An image small enough for a thousand of them on a page, as an image file would give it.
/// @param image  CV_8U or CV_16U with one channel, or three (blue, green, red).
cv::Mat thumbnailOf(const cv::Mat& image);

/// The files of small images beside a page. Each bears the time of its image, which tells whether
/// it is of this very image.
class Thumbnails {
public:
    /// @param page    Of the gallery.
    /// @param folder  That the images are named from.
    Thumbnails(const QString& page, QString folder);

    /// The file of an image's thumbnail.
    QString nameFor(const QString& image) const;

    bool isUpToDate(const QString& image) const;

    /// Writes what `thumbnailOf` made of an image that is in a file.
    /// @throws FileError.
    void write(const QString& image, const cv::Mat& thumbnail) const;

    /// Makes those of all tiles that have a file, unless they are up to date. A file that cannot be
    /// read breaks its tile.
    void make(std::vector<Tile>& tiles, int jobs, Progress& progress) const;

private:
    QString folder_, beside_;
};

/// Makes the folders of a page and of its thumbnails.
/// @throws Error if they cannot be written.
void requireFolders(const QString& page);

/// @throws Error unless the page can be written; FileExistsError.
void checkPage(const QString& page, Existing existing);

} // namespace lumetra
