// What the shared library shows of itself.
#pragma once

/// Marks what the shared library exports; everything else in it is hidden. `LUMETRA_RENDER_BUILDS`
/// is defined where the library itself is compiled, `LUMETRA_RENDER_STATIC` where it is a static
/// one; its CMake target does both.
#if defined LUMETRA_RENDER_STATIC
#define LUMETRA_RENDER_EXPORT
#elif defined _WIN32 && defined LUMETRA_RENDER_BUILDS
#define LUMETRA_RENDER_EXPORT __declspec(dllexport)
#elif defined _WIN32
#define LUMETRA_RENDER_EXPORT __declspec(dllimport)
#else
#define LUMETRA_RENDER_EXPORT __attribute__((visibility("default")))
#endif
