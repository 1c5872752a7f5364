// TIFF files, by libtiff.
#pragma once

#include "imageio/page_reader.h"
#include "imageio/stk_planes.h"
#include "imageio/tiff_handle.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace lumetra {

struct ImageJTags;

/// Gray of every type of value, in one plane or several; RGB of 8 and 16 bits; palettes; and
/// whatever else of 8 bits libtiff turns into RGB (YCbCr, CMYK). In strips or tiles, planes
/// together or apart, in every compression that libtiff has.
class TiffReader : public PageReader {
public:
    /// Whether a file that begins with these bytes is a TIFF file.
    static bool recognises(const QByteArray& start);

    /// Finds all pages, also those of ImageJ and STK files that lie behind one directory.
    /// @throws Reason if one of them is not whole or would be misread.
    explicit TiffReader(std::unique_ptr<QFile> opened);

    int pages() const override { return static_cast<int>(pages_.size()); }
    cv::Mat read(int index) override;
    int components(int index) const override {
        return pages_.at(static_cast<std::size_t>(index)).components;
    }
    std::optional<ValueType> valueType(int index) const override {
        return pages_.at(static_cast<std::size_t>(index)).type;
    }
    cv::Mat readPlane(int index, int component) override;
    std::unique_ptr<PlaneRows> rows(int index, int component) override;
    FileDescription describe() override;

private:
    struct Page {
        std::uint64_t directory; ///< Where in the file its directory is, or the one it shares.
        std::uint64_t rawOffset; ///< Where its pixels begin if it shares one; else 0.
        int components;
        ValueType type;
    };

    void findHiddenPages();
    /// Makes the page's directory libtiff's current one.
    const Page& open(int index);
    cv::Mat newPlane(int type) const;
    FileDescription describeByText();
    ImageJTags imageJTags();
    void readPieces(cv::Mat& image, const Page& page, std::size_t component);
    void convertPieces(cv::Mat& image);

    TiffHandle tiff_;
    std::vector<Page> pages_;
    std::optional<StkPlanes> stk_;
};

} // namespace lumetra
