#include "render/instruction_set.h"

#include "render/compiler.h"

namespace lumetra {

std::vector<InstructionSet> instructionSets() {
    std::vector<InstructionSet> sets{InstructionSet::baseline};
#ifdef LUMETRA_WIDER_VECTORS
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx2"))
        sets.push_back(InstructionSet::avx2);
    if (__builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512dq") &&
        __builtin_cpu_supports("avx512vl"))
        sets.push_back(InstructionSet::avx512);
#endif
    return sets;
}

} // namespace lumetra
