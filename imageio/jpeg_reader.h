// JPEG files, by libjpeg-turbo.
#pragma once

#include "imageio/page_reader.h"

namespace lumetra {

/// Gray as CV_8UC1, colour and CMYK as CV_8UC3.
class JpegReader : public PageReader {
public:
    /// Whether a file that begins with these bytes is a JPEG file.
    static bool recognises(const QByteArray& start);

    using PageReader::PageReader;
    cv::Mat read(int index) override;
};

} // namespace lumetra
