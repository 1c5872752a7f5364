/// @file
/// Light on a plane.

#ifndef LUMETRA_EXAMPLES_LIGHT_H
#define LUMETRA_EXAMPLES_LIGHT_H

#include <opencv2/core/mat.hpp>

#include "culture.h"

using Light = cv::Mat_<float>;

/// Adds light at a point of subpixel position.
void shine(Light& light, Point p, double amount);

/// Convolves with a Gaussian, rows first and then columns.
Light blurred(const Light& light, double sigma);

/// What the lens makes of the light: the point-spread function is sharp, with a wide faint skirt
/// from the planes out of focus.
Light throughLens(const Light& light, double sigma);

#endif
