// A host of libLumetra, small enough to read in a minute: it tints the gray channels of one
// specimen with the colours of their dyes and merges them into one picture.

#include <iostream>
#include <memory>

#include <QLoggingCategory>

#include <lumetra>

#include "channel.h"
#include "program.h"

namespace {

constexpr auto usage = R"(usage: two_channels OUTPUT FILE=DYE[+X+Y] FILE=DYE[+X+Y]...

Tints each gray picture FILE (8 or 16 bits) with the colour of DYE, moves it X pixels to the left
and Y up (-X and -Y: to the right and down), and writes the sum of all pictures to OUTPUT.

example: two_channels cells.png nuclei.tif=DAPI actin.tif=FITC+3-2
)";

/// The picture `gray` in the display colour of the channel's dye.
cv::Mat tinted(const cv::Mat& gray, const Channel& channel) {
    //! [dye]
    FLUO_DYE_TYPE const dye = Lumetra::g_mapFluo[channel.dye];
    cv::Mat levels = toEightBits(gray), picture;
    Lumetra::Dye(levels, picture, dye.nColorR, dye.nColorG, dye.nColorB, true, false);
    //! [dye]

    std::cout << channel.file << ": " << gray.cols << " x " << gray.rows << " pixels"
              << (gray.depth() == CV_8U ? "" : ", brought to 8 bits over its own value range")
              << ", tinted as " << channel.dye.toStdString() << " (" << dye.nColorR << ", "
              << dye.nColorG << ", " << dye.nColorB << ")\n";
    return picture;
}

/// All channels in one picture.
std::unique_ptr<cv::Mat> merged(const std::vector<Channel>& channels) {
    std::vector<cv::Mat> pictures = readChannels(channels);
    //! [composite]
    QList<cv::Mat*> images;
    QList<QPoint> offsets;
    for (size_t i = 0; i < channels.size(); ++i) {
        pictures[i] = tinted(pictures[i], channels[i]);
        images << &pictures[i];
        offsets << channels[i].offset;
    }
    std::unique_ptr<cv::Mat> canvas(Lumetra::Composite(&images, &offsets));
    //! [composite]
    if (!canvas) // the sizes are equal, so only the offsets can be at fault
        throw Failure("the offsets are so far apart that the pictures share no pixel");
    return canvas;
}

} // namespace

int main(int argc, char** argv) {
    return runProgram(usage, [&] {
        if (argc < 2)
            throw BadUsage{};
        QLoggingCategory::setFilterRules("*.debug=false"); // what fails is said in our own words
        //! [catalogue]
        Lumetra::InitFluoDyeType();
        //! [catalogue]

        auto const channels = parseChannels(argc, argv, 2);
        auto const picture = merged(channels);
        writePicture(argv[1], *picture);
        std::cout << argv[1] << ": the " << channels.size() << " channels in one picture of "
                  << picture->cols << " x " << picture->rows << " pixels\n";
    });
}
