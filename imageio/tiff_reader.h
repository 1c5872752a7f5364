// TIFF files, by libtiff.
#pragma once

#include "imageio/page_reader.h"
#include "imageio/tiff_handle.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace lumetra {

/// Gray and RGB of 8 and 16 bits in strips or tiles, planes together or apart; palettes, and
/// whatever else of 8 bits libtiff turns into RGB (YCbCr, CMYK); in every compression it has.
class TiffReader : public PageReader {
public:
    /// Whether a file that begins with these bytes is a TIFF file.
    static bool recognises(const QByteArray& start);

    /// Finds all pages.
    /// @throws Reason if one of them is not whole or would be misread, or if an ImageJ stack has
    ///         pages that no directory of the file tells of.
    explicit TiffReader(std::unique_ptr<QFile> opened);

    int pages() const override { return static_cast<int>(directories_.size()); }
    cv::Mat read(int index) override;

private:
    void readPieces(cv::Mat& image);
    void convertPieces(cv::Mat& image);

    TiffHandle tiff_;
    std::vector<std::uint64_t> directories_; ///< Where in the file each page's directory is.
};

} // namespace lumetra
