// PNG files, by libpng.
#pragma once

#include "imageio/page_reader.h"

namespace lumetra {

/// All kinds of PNG: gray of 1 to 8 bits as CV_8UC1, palettes and RGB as CV_8UC3, those of 16 bits
/// alike, alpha left out.
class PngReader : public PageReader {
public:
    /// Whether a file that begins with these bytes is a PNG file.
    static bool recognises(const QByteArray& start);

    using PageReader::PageReader;
    cv::Mat read(int index) override;
    cv::Mat readPlane(int index, int component) override;
    std::unique_ptr<PlaneRows> rows(int index, int component) override;
    FileDescription describe() override;

private:
    cv::Mat decoded(bool hasIndices);

    bool hasPalette_ = false; ///< Of colours.
};

} // namespace lumetra
