// Prints what hosts have compiled in of the public records: sizes, and offsets of members.

#include <cstddef>
#include <cstdio>

#include <lumetra>

#define RECORD(record)                                                                             \
    std::printf("%s: %zu bytes, aligned to %zu\n", #record, sizeof(record), alignof(record))
#define MEMBER(record, member)                                                                     \
    std::printf("    %-12s at %2zu, %zu bytes\n", #member, offsetof(record, member),               \
                sizeof(record::member))

int main() {
    RECORD(FLUO_DYE_TYPE);
    MEMBER(FLUO_DYE_TYPE, nExcitation);
    MEMBER(FLUO_DYE_TYPE, nEmission);
    MEMBER(FLUO_DYE_TYPE, nColorR);
    MEMBER(FLUO_DYE_TYPE, nColorG);
    MEMBER(FLUO_DYE_TYPE, nColorB);
    RECORD(TS_LEVELS);
    MEMBER(TS_LEVELS, wLowB);
    MEMBER(TS_LEVELS, wLowG);
    MEMBER(TS_LEVELS, wLowR);
    MEMBER(TS_LEVELS, wHighB);
    MEMBER(TS_LEVELS, wHighG);
    MEMBER(TS_LEVELS, wHighR);
    RECORD(Lumetra);
}
