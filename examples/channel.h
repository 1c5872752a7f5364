/// @file
/// The channels of a fluorescence picture as the examples take them: gray picture files on the
/// command line, each with its dye and, where the camera moved, an offset.

#ifndef LUMETRA_EXAMPLES_CHANNEL_H
#define LUMETRA_EXAMPLES_CHANNEL_H

#include <string>
#include <vector>

#include <QPoint>
#include <QString>

#include <opencv2/core/mat.hpp>

/// One channel: what was photographed and with which dye.
struct Channel {
    std::string file;
    QString dye;   ///< A name of the catalogue.
    QPoint offset; ///< How many pixels the picture is moved left (x) and up (y).
};

/// Understands `FILE=DYE` and `FILE=DYE+X+Y`, each sign plus or minus.
///
/// Names of dyes hold signs, digits and brackets themselves, so the text after the last "=" is an
/// offset at its end only if it is no name as a whole but one without that end. The catalogue must
/// be filled.
///
/// @throws BadUsage without a file or "="; Failure, with the nearest names, for an unknown dye, or
///         for an offset that is no 32-bit number.
Channel parseChannel(const std::string& argument);

/// Understands the arguments from number `first` on as channels.
/// @throws BadUsage if there are fewer than two.
std::vector<Channel> parseChannels(int argc, const char* const* argv, int first);

/// Reads a picture as gray, in the depth that its file has.
/// @throws Failure if it cannot be read.
cv::Mat readGray(const std::string& file);

/// Reads the gray pictures of all channels.
/// @throws Failure if one cannot be read or has another size than the first.
std::vector<cv::Mat> readChannels(const std::vector<Channel>& channels);

/// Brings a gray picture to 8 bits for the eye: its darkest sample becomes 0, its brightest 255.
///
/// A 16-bit camera fills a part of its range only, and `Lumetra::Dye` stretches the levels of 8-bit
/// results alone; taken as it is, such a picture would be nearly black. One of 8 bits is returned
/// as it is.
cv::Mat toEightBits(const cv::Mat& gray);

/// Writes a picture in the format that the file's extension asks for.
/// @throws Failure if it cannot be written.
void writePicture(const std::string& file, const cv::Mat& picture);

#endif
