// Writes the picture files that the tests of the command read, good and bad ones, into a folder.

#include "imageio/image_file.h"
#include "imageio/image_writer.h"
#include "imageio/output_conflicts.h"
#include "imageio/output_format.h"
#include "imageio/tiff_writer.h"

#include "tests/render/planes.h"

#include <opencv2/imgproc.hpp>

#include <QDir>
#include <QFile>

#include <tiffio.h>

#include <algorithm>
#include <vector>

using namespace lumetra;

namespace {

/// Blurred, so that pictures look like pictures and files are small.
cv::Mat plane(cv::Size size, int type, int seed) {
    cv::Mat noise = noisePlane(size, type, seed);
    cv::GaussianBlur(noise, noise, {}, 3);
    return noise;
}

void writeStack(const QString& file, int pages, int seed) {
    TiffWriter writer(file, Existing::replace, 0);
    for (int i = 0; i < pages; ++i)
        writer.add(plane({64, 48}, CV_16UC1, seed + i));
    writer.commit();
}

/// The projections of a stack, one pixel after another.
void writeProjections(const QString& stack) {
    const ImageFile file(stack);
    std::vector<cv::Mat> pages;
    for (int number = 1; number <= file.pages(); ++number)
        pages.push_back(file.grayPage(number));
    cv::Mat max = pages[0].clone(), mean = max.clone(), sum = max.clone();
    for (int y = 0; y < max.rows; ++y)
        for (int x = 0; x < max.cols; ++x) {
            int largest = 0, total = 0;
            for (const cv::Mat& page : pages) {
                const int value = page.at<ushort>(y, x);
                largest = std::max(largest, value);
                total += value;
            }
            max.at<ushort>(y, x) = static_cast<ushort>(largest);
            mean.at<ushort>(y, x) = static_cast<ushort>(total / double(file.pages()) + 0.5);
            sum.at<ushort>(y, x) = static_cast<ushort>(std::min(total, 65535));
        }
    writeImage("max-of-" + stack, max, Existing::replace);
    writeImage("mean-of-" + stack, mean, Existing::replace);
    writeImage("sum-of-" + stack, sum, Existing::replace);
}

/// Pages of unlike sizes.
void writeUneven(const QString& file) {
    TiffWriter writer(file, Existing::replace, 0);
    writer.add(plane({64, 48}, CV_8UC1, 1));
    writer.add(plane({32, 48}, CV_8UC1, 2));
    writer.commit();
}

struct Tags {
    int samples, photometric;
    const char* description;
};

/// A page that OpenCV would read without a word.
void writeOdd(const QString& file, const Tags& tags) {
    TIFF* tiff = TIFFOpen(QFile::encodeName(file).constData(), "w");
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 8);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 1);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, tags.samples);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, tags.photometric);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    if (tags.description)
        TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, tags.description);
    unsigned char row[16] = {};
    TIFFWriteScanline(tiff, row, 0);
    TIFFClose(tiff);
}

void writeCut(const QString& from, const QString& to, int percent) {
    QFile whole(from), cut(to);
    if (whole.open(QIODevice::ReadOnly) && cut.open(QIODevice::WriteOnly))
        cut.write(whole.readAll().left(static_cast<int>(whole.size() * percent / 100)));
}

/// `count` fields of two channels; the odd ones are darker.
void writePlate(const QString& folder, int count) {
    QDir().mkpath(folder);
    for (int i = 0; i < count; ++i) {
        const QString field = QStringLiteral("%1/f%2_").arg(folder).arg(i, 2, 10, QLatin1Char('0'));
        for (int channel = 0; channel < 2; ++channel) {
            const cv::Mat samples = plane({200, 160}, CV_16UC1, 2 * i + channel);
            const cv::Mat darker = i % 2 ? cv::Mat(samples / 2) : samples;
            writeImage(field + (channel ? "actin.tif" : "dapi.tif"), darker, Existing::replace);
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 || !QDir::setCurrent(QFile::decodeName(argv[1])))
        return 2;
    writeImage("a.tif", plane({64, 48}, CV_16UC1, 1), Existing::replace);
    writeImage("b.png", plane({64, 48}, CV_8UC1, 2), Existing::replace);
    writeImage("c.tif", plane({64, 48}, CV_16UC1, 3), Existing::replace);
    writeImage("small.png", plane({32, 48}, CV_8UC1, 3), Existing::replace);
    writeImage("colour.png", plane({192, 48}, CV_8UC1, 4).reshape(3), Existing::replace);
    writeImage("colour.jpg", plane({192, 48}, CV_8UC1, 4).reshape(3), Existing::replace);
    writeStack("stack.tif", 4, 10);
    writeProjections("stack.tif");
    writeUneven("uneven.tif");
    writeStack("other.tif", 4, 20);
    writeStack("three.tif", 3, 30);
    writeCut("stack.tif", "cut-stack.tif", 60);
    writeCut("a.tif", "cut.tif", 50);
    writeCut("b.png", "cut.png", 50);
    writeCut("colour.jpg", "cut.jpg", 50);
    writeOdd("two-samples.tif", {2, PHOTOMETRIC_MINISBLACK, nullptr});
    writeOdd("white-is-zero.tif", {1, PHOTOMETRIC_MINISWHITE, nullptr});
    writeOdd("behind-one.tif", {1, PHOTOMETRIC_MINISBLACK, "ImageJ=1.53c\nimages=9\nslices=9\n"});
    writePlate("plate", 10);
    return 0;
}
