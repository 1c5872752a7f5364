/// @file
/// All pictures of the demo in one.

#ifndef LUMETRA_EXAMPLES_OVERVIEW_H
#define LUMETRA_EXAMPLES_OVERVIEW_H

#include <vector>

#include "drawing.h"

/// The first picture large, the others in two rows beside it, the colours of the catalogue below.
QImage overview(const std::vector<LabelledPicture>& pictures);

#endif
