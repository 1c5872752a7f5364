// Pages of picture files.
#pragma once

#include <QString>

#include <opencv2/core/mat.hpp>

namespace apps {

/// A picture file of one or many pages, each read when it is asked for and held by the caller
/// alone.
class Stack {
public:
    /// @throws Failure with the file's name if it cannot be read, or holds what OpenCV would pass
    ///         over in silence.
    explicit Stack(QString file);

    const QString& file() const { return file_; }
    int pages() const { return pages_; }

    /// A page as it is: 8 or 16 bits, one channel or three.
    /// @param number  Counted from 1.
    /// @throws Failure with the file's name if it cannot be read or is not there.
    cv::Mat page(int number) const;

    /// A page of gray samples: CV_8UC1 or CV_16UC1.
    /// @throws Failure as `page`, and if the page has colours.
    cv::Mat grayPage(int number) const;

private:
    QString file_;
    int pages_ = 1;
};

/// "W x H" of a picture.
QString sizeText(const cv::Mat& picture);

/// @throws Failure with both names unless the pictures have equal sizes.
void requireEqualSizes(const QString& firstFile, const cv::Mat& first, const QString& file,
                       const cv::Mat& picture);

} // namespace apps
