/// @file
/// The structures that each dye stains.

#ifndef LUMETRA_EXAMPLES_STAINS_H
#define LUMETRA_EXAMPLES_STAINS_H

#include <vector>

#include "culture.h"
#include "light.h"

Light drawNuclei(const std::vector<Cell>& cells, int size, Random& random);
Light drawFilaments(const std::vector<Cell>& cells, int size, Random& random);
Light drawMitochondria(const std::vector<Cell>& cells, int size, Random& random);
Light drawCytoplasm(const std::vector<Cell>& cells, int size, Random& random);

#endif
