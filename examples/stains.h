/// @file
/// What each dye makes visible of the cells.

#ifndef LUMETRA_EXAMPLES_STAINS_H
#define LUMETRA_EXAMPLES_STAINS_H

#include <vector>

#include "culture.h"
#include "light.h"

Light drawNuclei(const std::vector<Cell>& cells, int size, Random& random);
Light drawFilaments(const std::vector<Cell>& cells, int size, Random& random);
Light drawMitochondria(const std::vector<Cell>& cells, int size, Random& random);

#endif
