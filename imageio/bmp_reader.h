// BMP files.
#pragma once

#include "imageio/page_reader.h"

namespace lumetra {

/// Uncompressed BMP: a palette of 1, 4 or 8 bits as CV_8UC1 if all of it is gray, otherwise as
/// CV_8UC3; 24 and 32 bits as CV_8UC3. The plane of a palette with colours is its indices, and the
/// colours are the channel's LUT.
class BmpReader : public PageReader {
public:
    /// Whether a file that begins with these bytes is a BMP file.
    static bool recognises(const QByteArray& start);

    using PageReader::PageReader;
    cv::Mat read(int index) override;
    cv::Mat readPlane(int index, int component) override;
    FileDescription describe() override;

private:
    struct Header;
    Header readHeader();
    cv::Mat indicesOf(const Header& header);
    cv::Mat coloursOf(const Header& header);
};

} // namespace lumetra
