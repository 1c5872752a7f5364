// An operation of the library beside its rivals: a plain copy, and what a user would write instead.
#pragma once

#include <opencv2/core.hpp>

#include <functional>
#include <string>
#include <vector>

/// Makes what is timed for square images of this side. What it prepares is not timed.
using Preparation = std::function<std::function<void()>(int side)>;

/// How many times as long as a rival the operation may take at 2048²; 0 where nothing is aimed at.
/// At other sizes it is to be no slower than the OpenCV way.
struct Aims {
    double memcpy;
    double openCv;
};

struct Operation {
    std::string name;
    double bytesPerPixel; ///< Read plus written; the `memcpy` beside it copies as many.
    Aims aims;
    Preparation library;
    Preparation openCv; ///< May be empty.
    std::vector<int> sides = {16, 64, 512, 2048, 8192};
};

/// Registers one benchmark for each way and side, named operation/way/side.
void compare(const Operation& operation);

/// A noisy picture. Made once for each set of arguments and kept; do not write into it.
const cv::Mat& noise(int type, int side, int number = 0);

/// The noisy picture with fifteen of sixteen pixels black, as the background of a specimen is.
cv::Mat mostlyBlack(int type, int side);

void registerLevels();
void registerColourise();
void registerComposite();
void registerRender();
