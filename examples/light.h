/// @file
/// Light that falls on a plane.

#ifndef LUMETRA_EXAMPLES_LIGHT_H
#define LUMETRA_EXAMPLES_LIGHT_H

#include <opencv2/core/mat.hpp>

#include "culture.h"

using Light = cv::Mat_<float>;

/// Adds light at a point between pixels.
void shine(Light& light, Point p, double amount);

/// Convolves with a Gaussian, rows first and then columns.
Light blurred(const Light& light, double sigma);

#endif
