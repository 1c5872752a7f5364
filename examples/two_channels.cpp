// An application of libLumetra, small enough to read in a minute: it tints two gray channels of one
// specimen with the colours of their dyes and merges them into one image.

#include <memory>

#include <QLoggingCategory>

#include <opencv2/imgcodecs.hpp>

#include <lumetra>

#include "program.h"

namespace {

constexpr auto usage = R"(usage: two_channels OUTPUT NUCLEI ACTIN [X Y]

Tints the gray images NUCLEI as DAPI and ACTIN as FITC, 8 or 16 bits each, shifts the second one X
pixels to the left and Y up, and writes their sum to OUTPUT.

example: two_channels cells.png nuclei.tif actin.tif 3 -2
)";

cv::Mat readGray(const std::string& file) {
    cv::Mat gray = cv::imread(file, cv::IMREAD_GRAYSCALE | cv::IMREAD_ANYDEPTH);
    if (gray.empty())
        throw Error("cannot read an image from " + file);
    return gray;
}

/// The image `gray` in the display colour of a dye.
cv::Mat tinted(const cv::Mat& gray, const QString& name) {
    //! [dye]
    const FLUO_DYE_TYPE dye = Lumetra::g_mapFluo.value(name);
    cv::Mat levels = gray, image;
    if (gray.depth() == CV_16U) // cameras use only part of 16 bits: unscaled, nearly black
        cv::normalize(gray, levels, 0, 255, cv::NORM_MINMAX, CV_8U);
    Lumetra::Dye(levels, image, dye.nColorR, dye.nColorG, dye.nColorB, true, false);
    //! [dye]
    return image;
}

/// Both channels in one image, the second one shifted.
std::unique_ptr<cv::Mat> merged(cv::Mat nuclei, cv::Mat actin, QPoint offset) {
    if (nuclei.size() != actin.size())
        throw Error("the images have different sizes");
    nuclei = tinted(nuclei, "DAPI");
    actin = tinted(actin, "FITC");
    //! [composite]
    QList<cv::Mat*> images{&nuclei, &actin};
    QList<QPoint> offsets{{0, 0}, offset};
    std::unique_ptr<cv::Mat> canvas(Lumetra::Composite(&images, &offsets));
    //! [composite]
    if (!canvas) // the sizes are equal, so only the offset can be at fault
        throw Error("the offset is so large that the images do not overlap");
    return canvas;
}

} // namespace

int main(int argc, char** argv) {
    return runProgram(usage, [&] {
        if (argc != 4 && argc != 6)
            throw UsageError{};
        QPoint const offset = argc == 6 ? QPoint(std::stoi(argv[4]), std::stoi(argv[5])) : QPoint();
        QLoggingCategory::setFilterRules("*.debug=false"); // errors are reported by runProgram
        //! [catalogue]
        Lumetra::InitFluoDyeType();
        //! [catalogue]
        writeImage(argv[1], *merged(readGray(argv[2]), readGray(argv[3]), offset));
    });
}
