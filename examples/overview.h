/// @file
/// All pictures of the demo in one.

#ifndef LUMETRA_EXAMPLES_OVERVIEW_H
#define LUMETRA_EXAMPLES_OVERVIEW_H

#include <vector>

#include <QImage>
#include <QString>

#include <opencv2/core/mat.hpp>

/// A picture (`CV_8UC3` or `CV_16UC3`) with two lines of text to go below it.
struct LabelledPicture {
    QString title, explanation;
    cv::Mat picture;
};

/// The first picture large, the others in two rows beside it, the colours of the catalogue below.
QImage overview(std::vector<LabelledPicture> const& pictures);

#endif
