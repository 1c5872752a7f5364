#include "memory_meter.h"

#include <malloc.h>

#include <atomic>
#include <cerrno>

// The C library's own names for its allocation functions, which ours below stand in front of.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace {

std::atomic<std::size_t> allocated{0};
std::atomic<std::size_t> peak{0};

void* counted(void* block) {
    if (block) {
        const std::size_t now = allocated += malloc_usable_size(block);
        if (now > peak)
            peak = now;
    }
    return block;
}

void uncounted(void* block) {
    if (block)
        allocated -= malloc_usable_size(block);
}

} // namespace

extern "C" {

void* malloc(std::size_t size) { return counted(__libc_malloc(size)); }

void* calloc(std::size_t count, std::size_t size) { return counted(__libc_calloc(count, size)); }

void* realloc(void* block, std::size_t size) {
    uncounted(block);
    return counted(__libc_realloc(block, size));
}

void* memalign(std::size_t alignment, std::size_t size) {
    return counted(__libc_memalign(alignment, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size) { return memalign(alignment, size); }

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
    *block = memalign(alignment, size);
    return *block ? 0 : ENOMEM;
}

void free(void* block) {
    uncounted(block);
    __libc_free(block);
}

} // extern "C"

MemoryMeter::MemoryMeter() : before_(allocated) { peak = before_; }

std::size_t MemoryMeter::peakBytes() const { return peak - before_; }
