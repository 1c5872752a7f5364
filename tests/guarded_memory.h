// Memory in which one byte beyond an image ends the program.
#pragma once

#if __has_include(<sys/mman.h>)

#include "image_memory.h"

#include <algorithm>
#include <atomic>
#include <new>

#include <sys/mman.h>
#include <unistd.h>

/// Puts images by turns right behind a page without access and right before one.
class GuardedMemory : public ImageMemory {
    std::size_t inPages(std::size_t size) const { return (size + page_ - 1) / page_ * page_; }

    uchar* take(std::size_t size) const override {
        void* const all =
            mmap(nullptr, inPages(size) + 2 * page_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        uchar* const pages = static_cast<uchar*>(all) + page_;
        if (all == MAP_FAILED || mprotect(pages, inPages(size), PROT_READ | PROT_WRITE) != 0)
            throw std::bad_alloc();
        uchar* const bytes = pages + (++taken_ % 2 == 0 ? inPages(size) - size : 0);
        std::fill_n(bytes, std::min(size, std::size_t{1} << 20), uchar{0xA5}); // never zero
        return bytes;
    }
    void giveBack(uchar* bytes, std::size_t size) const override {
        const std::size_t before = reinterpret_cast<std::uintptr_t>(bytes) % page_;
        munmap(bytes - before - page_, inPages(size) + 2 * page_);
    }

    const std::size_t page_ = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    mutable std::atomic<unsigned> taken_{0};
};

#endif
