// BMP files.
#pragma once

#include "imageio/page_reader.h"

namespace lumetra {

/// Uncompressed BMP: a palette of 8 bits as CV_8UC1 if all of it is gray, otherwise as CV_8UC3;
/// 24 and 32 bits as CV_8UC3.
class BmpReader : public PageReader {
public:
    /// Whether a file that begins with these bytes is a BMP file.
    static bool recognises(const QByteArray& start);

    using PageReader::PageReader;
    cv::Mat read(int index) override;
};

} // namespace lumetra
