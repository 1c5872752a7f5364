// What the processor can do.
#pragma once

#include "render/export.h"

#include <vector>

namespace lumetra {

/// Instructions that loops over pixels are compiled for. Results do not depend on them.
enum class InstructionSet {
    baseline, ///< Those of all processors that the library is compiled for.
    avx2,     ///< x86: vectors of 32 bytes, twice as long.
    avx512,   ///< x86: vectors of 64 bytes.
};

/// Those that this processor has, from the baseline to the fastest.
LUMETRA_RENDER_EXPORT std::vector<InstructionSet> instructionSets();

} // namespace lumetra
