// Calls into libpng, whose errors jump.
#pragma once

#include "imageio/reason.h"

#include <array>
#include <csetjmp>
#include <cstdio>

#include <png.h>

namespace lumetra {

/// What libpng said last.
struct PngErrors {
    std::array<char, 128> message{};

    /// For png_create_*_struct, with the PngErrors as the error pointer.
    [[noreturn]] static void fail(png_structp png, png_const_charp message) {
        auto* errors = static_cast<PngErrors*>(png_get_error_ptr(png));
        std::snprintf(errors->message.data(), errors->message.size(), "%s", message);
        png_longjmp(png, 1);
    }
    static void passOver(png_structp /*png*/, png_const_charp /*message*/) {}
};

/// Does work that calls libpng. A jump out of it runs no destructors, so the work must hold
/// nothing that has one.
/// @throws Reason with what libpng said, after `introduction`.
template<class Work>
void guarded(png_structp png, const PngErrors& errors, const char* introduction, const Work& work) {
    if (setjmp(png_jmpbuf(png)) != 0)
        throw Reason(std::string(introduction) + " (" + errors.message.data() + ")");
    work();
}

} // namespace lumetra
