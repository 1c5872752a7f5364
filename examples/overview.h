/// @file
/// All images of the demo in one.

#ifndef LUMETRA_EXAMPLES_OVERVIEW_H
#define LUMETRA_EXAMPLES_OVERVIEW_H

#include <vector>

#include "drawing.h"

/// The first image large, the others in two rows beside it, the colours of the catalogue below.
QImage overview(const std::vector<LabelledImage>& images);

#endif
