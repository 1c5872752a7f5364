// Errors on their way from the parts that know a format to those that know the file's name.
#pragma once

#include "imageio/file_error.h"

#include <opencv2/core.hpp>

#include <QString>

#include <exception>
#include <new>
#include <stdexcept>
#include <string>

namespace lumetra {

/// What is wrong, in words that follow "FILE: ". Readers and encoders throw it.
struct Reason : std::runtime_error {
    using std::runtime_error::runtime_error;
    explicit Reason(const QString& reason) : std::runtime_error(reason.toStdString()) {}
};

/// Does the work and returns its result.
/// @throws FileError with the file's name in place of a Reason, and where memory is short.
template<class Work>
auto withFileName(const QString& file, const Work& work) {
    const QString noMemory = QStringLiteral("there is not enough memory");
    try {
        return work();
    } catch (const Reason& reason) {
        throw FileError(file, QString::fromUtf8(reason.what()));
    } catch (const std::bad_alloc&) {
        throw FileError(file, noMemory);
    } catch (const cv::Exception& error) {
        throw FileError(
            file, error.code == cv::Error::StsNoMem ? noMemory : QString::fromStdString(error.err));
    }
}

} // namespace lumetra
