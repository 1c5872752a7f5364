/// @file
/// How every example ends: with status 0, with one line on stderr and status 1, or with its usage
/// and status 2; and how it writes images.

#ifndef LUMETRA_EXAMPLES_PROGRAM_H
#define LUMETRA_EXAMPLES_PROGRAM_H

#include <cstdlib>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>

#include <opencv2/core.hpp>
#include <opencv2/core/utils/logger.hpp>
#include <opencv2/imgcodecs.hpp>

/// Why a program cannot go on, in one line for the user.
struct Error : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The arguments are invalid; the usage text explains the valid ones.
struct UsageError : std::exception {};

/// Writes an image in the format that the file's extension asks for.
inline void writeImage(const std::string& file, const cv::Mat& image) {
    if (!cv::haveImageWriter(file) || !cv::imwrite(file, image))
        throw Error("cannot write an image to " + file);
}

/// Runs `program` and turns how it ends into an exit status.
template<typename Program>
int runProgram(const char* usage, const Program& program) {
    // Errors are reported once, below; OpenCV's own log would repeat them.
    cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
    try {
        program();
        return EXIT_SUCCESS;
    } catch (const UsageError&) {
        std::cerr << usage;
        return 2;
    } catch (const cv::Exception& error) {
        std::cerr << "error: " << error.err << '\n';
    } catch (const std::exception& error) {
        std::cerr << "error: " << error.what() << '\n';
    }
    return EXIT_FAILURE;
}

#endif
