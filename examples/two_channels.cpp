// A host of libLumetra, small enough to read in a minute: it tints two gray channels of one
// specimen with the colours of their dyes and merges them into one picture.

#include <memory>

#include <QLoggingCategory>

#include <opencv2/imgcodecs.hpp>

#include <lumetra>

#include "program.h"

namespace {

constexpr auto usage = R"(usage: two_channels OUTPUT NUCLEI ACTIN [X Y]

Tints the gray pictures NUCLEI as DAPI and ACTIN as FITC, 8 or 16 bits each, moves the second one X
pixels to the left and Y up, and writes their sum to OUTPUT.

example: two_channels cells.png nuclei.tif actin.tif 3 -2
)";

cv::Mat readGray(const std::string& file) {
    cv::Mat gray = cv::imread(file, cv::IMREAD_GRAYSCALE | cv::IMREAD_ANYDEPTH);
    if (gray.empty())
        throw Failure("cannot read a picture from " + file);
    return gray;
}

/// The picture `gray` in the display colour of a dye.
cv::Mat tinted(const cv::Mat& gray, const QString& name) {
    //! [dye]
    const FLUO_DYE_TYPE dye = Lumetra::g_mapFluo.value(name);
    cv::Mat levels = gray, picture;
    if (gray.depth() == CV_16U) // a camera fills a part of 16 bits only: as it is, nearly black
        cv::normalize(gray, levels, 0, 255, cv::NORM_MINMAX, CV_8U);
    Lumetra::Dye(levels, picture, dye.nColorR, dye.nColorG, dye.nColorB, true, false);
    //! [dye]
    return picture;
}

/// Both channels in one picture, the second one moved.
std::unique_ptr<cv::Mat> merged(cv::Mat nuclei, cv::Mat actin, QPoint offset) {
    if (nuclei.size() != actin.size())
        throw Failure("the pictures have different sizes");
    nuclei = tinted(nuclei, "DAPI");
    actin = tinted(actin, "FITC");
    //! [composite]
    QList<cv::Mat*> images{&nuclei, &actin};
    QList<QPoint> offsets{{0, 0}, offset};
    std::unique_ptr<cv::Mat> canvas(Lumetra::Composite(&images, &offsets));
    //! [composite]
    if (!canvas) // the sizes are equal, so only the offset can be at fault
        throw Failure("the offset is so large that the pictures share no pixel");
    return canvas;
}

} // namespace

int main(int argc, char** argv) {
    return runProgram(usage, [&] {
        if (argc != 4 && argc != 6)
            throw BadUsage{};
        QPoint const offset = argc == 6 ? QPoint(std::stoi(argv[4]), std::stoi(argv[5])) : QPoint();
        QLoggingCategory::setFilterRules("*.debug=false"); // what fails is said in our own words
        //! [catalogue]
        Lumetra::InitFluoDyeType();
        //! [catalogue]
        writePicture(argv[1], *merged(readGray(argv[2]), readGray(argv[3]), offset));
    });
}
