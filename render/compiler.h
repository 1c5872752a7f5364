// What only some compilers know, for loops that are compiled several times.
#pragma once

// Wider vectors of x86 for single functions. (On Windows, GCC does not align them on the stack.)
#if defined __x86_64__ && defined __GNUC__ && !defined _WIN32
#define LUMETRA_WIDER_VECTORS
#endif

// A function that is called from a loop has to be inlined, or it would be compiled once, for the
// processors that all of the library is for.
#ifdef __GNUC__
#define LUMETRA_INLINE __attribute__((always_inline)) inline
#define LUMETRA_NOT_INLINED __attribute__((noinline))
#else
#define LUMETRA_INLINE inline
#define LUMETRA_NOT_INLINED
#endif
