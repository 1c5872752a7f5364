// Runs the tests without a display, with UTF-8 as the encoding of file names, and where the system
// can do that, with images in guarded memory.

#include "guarded_memory.h"

#include <gtest/gtest.h>

#include <QByteArray>

#include <clocale>

/// Qt's offscreen platform does not release its screens when the application ends.
extern "C" __attribute__((visibility("default"))) const char*
__lsan_default_suppressions() { // NOLINT(bugprone-reserved-identifier): the sanitizer's name
    return "leak:libqoffscreen.so";
}

/// OpenCV's image formats bring a library that takes two locks of its own in either order. The lock
/// under which the C library sets the time zone, for the files that Qt saves, is not seen.
extern "C" __attribute__((visibility("default"))) const char*
__tsan_default_suppressions() { // NOLINT(bugprone-reserved-identifier): the sanitizer's name
    return "deadlock:libgdal.so\nrace:tzset_internal";
}

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("LC_ALL", "C.UTF-8");
    std::setlocale(LC_ALL, "");
#if __has_include(<sys/mman.h>)
    static GuardedMemory memory;
    const DefaultMemory used(memory);
#endif
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
