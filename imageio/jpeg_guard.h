// Calls into libjpeg, whose errors jump.
#pragma once

#include "imageio/reason.h"

#include <array>
#include <csetjmp>
#include <cstddef>
#include <cstdio>

#include <jpeglib.h>

namespace lumetra {

/// What libjpeg reports to: errors come back as jumps, messages are not printed.
struct JpegErrors : jpeg_error_mgr {
    JpegErrors() : jpeg_error_mgr() {
        jpeg_std_error(this);
        error_exit = [](j_common_ptr codec) {
            auto* errors = static_cast<JpegErrors*>(codec->err);
            errors->format_message(codec, errors->message.data());
            std::longjmp(errors->back, 1); // NOLINT(modernize-avoid-setjmp-longjmp)
        };
        output_message = [](j_common_ptr) {};
    }
    std::jmp_buf back{};
    std::array<char, JMSG_LENGTH_MAX> message{};
};

/// Does work that calls libjpeg. A jump out of it runs no destructors, so the work must hold
/// nothing that has one.
/// @throws Reason with what libjpeg said, after `introduction`.
template<class Work>
void guarded(JpegErrors& errors, const char* introduction, const Work& work) {
    if (setjmp(errors.back) != 0)
        throw Reason(std::string(introduction) + " (" + errors.message.data() + ")");
    work();
}

} // namespace lumetra
