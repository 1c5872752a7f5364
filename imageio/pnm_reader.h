// PGM and PPM files.
#pragma once

#include "imageio/page_reader.h"

namespace lumetra {

/// Gray (PGM) and colour (PPM) of 8 and 16 bits, in binary or decimal. Pixel values are taken as
/// they are, whatever the file states as the largest; more than 255 of them are CV_16U.
class PnmReader : public PageReader {
public:
    /// Whether a file that begins with these bytes is a PGM or PPM file.
    static bool recognises(const QByteArray& start);

    using PageReader::PageReader;
    cv::Mat read(int index) override;

private:
    std::uint32_t readNumber();
};

} // namespace lumetra
