/**
 * @file
 * The C interface of liblumetra-render, for other languages: from planes of gray pixels and display
 * settings to one image, as `lumetra::Renderer` does it, with dyes and colormaps by name.
 *
 * **Memory** is the caller's: plain rows of pixels, any number of bytes from one row to the next,
 * negative ones included. Nothing is kept of it after a call.
 *
 * **Structures** begin with their size, `sizeof` in the caller's eyes, so that later versions can
 * add members at the end; those that the caller does not have count as zero.
 *
 * **Results** are `LUMETRA_OK`, or another number with a reason in the caller's buffer: UTF-8 in
 * one piece that ends with NUL, cut at its size; the buffer may be null. `LUMETRA_NO_MEMORY` tells
 * that there was not enough memory, `LUMETRA_FAILED` everything else.
 *
 * **Threads** may call anything at the same time. What is kept between calls, memory for the next
 * image, belongs to the calling thread.
 */
#ifndef LUMETRA_RENDER_H
#define LUMETRA_RENDER_H

/* NOLINTBEGIN(modernize-*): C has neither <cstdint> nor `using`. */
#include "render/export.h"

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

enum { LUMETRA_OK = 0, LUMETRA_FAILED = 1, LUMETRA_NO_MEMORY = 2 };

/** The order of an image's components; LUMETRA_GRAY is for `lumetra_project` alone. */
enum { LUMETRA_BGR = 0, LUMETRA_RGB = 1, LUMETRA_BGRA = 2, LUMETRA_GRAY = 3 };

/** How a channel is laid over the visible channels before it (see `lumetra::Blend`). */
enum { LUMETRA_ADD = 0, LUMETRA_SCREEN = 1, LUMETRA_DARKEST = 2 };

/** What a pixel of a projection is (see `lumetra::ProjectionMethod`). */
enum { LUMETRA_MAX = 0, LUMETRA_MEAN = 1, LUMETRA_SUM = 2 };

/** How contrast limits are found (see `lumetra::LevelPolicy`). */
enum { LUMETRA_CLIP = 0, LUMETRA_FIXED = 1, LUMETRA_KEEP_VALUES = 2 };

/** A plane of gray pixels, only read. */
typedef struct lumetra_plane {
    size_t struct_size;
    const void* pixels; /**< The first pixel of the first row; 16 bits in the machine's order. */
    ptrdiff_t row_step; /**< Bytes from one row to the next. */
    int32_t width;      /**< Pixels in a row, at least 1. */
    int32_t height;     /**< Rows, at least 1. */
    int32_t bit_depth;  /**< 8 or 16. */
} lumetra_plane;

/** The display settings of a channel. */
typedef struct lumetra_channel {
    size_t struct_size;
    int32_t red, green, blue;   /**< Its colour, 0 to 255 each. */
    int32_t offset_x, offset_y; /**< Pixels that its plane is moved left and up. */
    int32_t has_limits;         /**< 0 keeps pixel values and bit depth. */
    int32_t low, high;          /**< Contrast limits, 0 <= low < high <= 65535. */
    int32_t hidden;             /**< Not 0 to leave it out; its offset still counts. */
    double gamma;               /**< 0.01 to 100; 1 is off, and so is 0. */
    int32_t blend;              /**< LUMETRA_ADD, LUMETRA_SCREEN or LUMETRA_DARKEST. */
} lumetra_channel;

/** Memory that receives an image. */
typedef struct lumetra_image {
    size_t struct_size;
    void* pixels;
    ptrdiff_t row_step; /**< Bytes from one row to the next. */
    int32_t width;      /**< Of the image as `lumetra_image_size` tells it. */
    int32_t height;
    int32_t bit_depth; /**< As `lumetra_image_size` tells it. */
    int32_t format;    /**< LUMETRA_BGR, LUMETRA_RGB, LUMETRA_BGRA or LUMETRA_GRAY. */
} lumetra_image;

/** How contrast limits are found. */
typedef struct lumetra_level_policy {
    size_t struct_size;
    int32_t method;    /**< LUMETRA_CLIP, LUMETRA_FIXED or LUMETRA_KEEP_VALUES. */
    int32_t low, high; /**< Of LUMETRA_FIXED. */
    double percent;    /**< Of LUMETRA_CLIP, of the pixels at each end; 0 cuts none off. */
} lumetra_level_policy;

/** A built-in dye, or a colour by its name. */
typedef struct lumetra_dye {
    size_t struct_size;
    const char* name;             /**< UTF-8, for as long as the library is loaded. */
    int32_t excitation, emission; /**< Peaks in nanometres, 0 for a colour. */
    int32_t red, green, blue;
    const char* source; /**< Where it comes from, as a user reads it; stays like the name. */
} lumetra_dye;

/** Tells the size and bit depth of the image that `lumetra_render` makes of these. Only `width`,
 *  `height` and `bit_depth` of `image` are written, only its `format` is read. */
LUMETRA_RENDER_EXPORT int lumetra_image_size(const lumetra_plane* planes,
                                             const lumetra_channel* channels, size_t count,
                                             lumetra_image* image, char* reason,
                                             size_t reason_bytes);

/** All visible channels in one image (see `lumetra::Renderer::render`).
 *  @param planes, channels  `count` of each. */
LUMETRA_RENDER_EXPORT int lumetra_render(const lumetra_plane* planes,
                                         const lumetra_channel* channels, size_t count,
                                         const lumetra_image* image, char* reason,
                                         size_t reason_bytes);

/** One plane through a colormap, at 8 bits (see `lumetra::Renderer::applyColormap`).
 *  @param settings  Its limits and gamma; without limits, the smallest and largest value.
 *  @param colormap  256 colours of three bytes: red, green, blue. */
LUMETRA_RENDER_EXPORT int lumetra_apply_colormap(const lumetra_plane* plane,
                                                 const lumetra_channel* settings,
                                                 const uint8_t* colormap,
                                                 const lumetra_image* image, char* reason,
                                                 size_t reason_bytes);

/** Lays images that have their colours already over each other, at their bit depth (see
 *  `lumetra::compositeImages`).
 *  @param images    `count` of them, only read, in LUMETRA_BGR or LUMETRA_RGB.
 *  @param channels  `count` of them; of each, its offset, its blend and `hidden` count.
 *  @param image     In the format and bit depth of the images, and of the size that they share once
 *                   they are moved; overlaps none of them. */
LUMETRA_RENDER_EXPORT int lumetra_composite(const lumetra_image* images,
                                            const lumetra_channel* channels, size_t count,
                                            const lumetra_image* image, char* reason,
                                            size_t reason_bytes);

/** Planes, such as z-slices, seen as one (see `lumetra::Projection`).
 *  @param planes  `count` of them, of one size and bit depth.
 *  @param method  LUMETRA_MAX, LUMETRA_MEAN or LUMETRA_SUM.
 *  @param image   In LUMETRA_GRAY, of the size and bit depth of the planes; for LUMETRA_SUM, of 16
 *                 bits. */
LUMETRA_RENDER_EXPORT int lumetra_project(const lumetra_plane* planes, size_t count, int32_t method,
                                          const lumetra_image* image, char* reason,
                                          size_t reason_bytes);

/** Adds the pixel values of a plane to counts, one for each value: 256 or 65,536 of them. */
LUMETRA_RENDER_EXPORT int lumetra_count_values(const lumetra_plane* plane, uint64_t* counts,
                                               char* reason, size_t reason_bytes);

/** Contrast limits that saturate a share of the pixels at each end.
 *  @param percent  From 0, the smallest and largest value, to below 50. */
LUMETRA_RENDER_EXPORT int lumetra_contrast_limits(const uint64_t* counts, int32_t bit_depth,
                                                  double percent, int32_t* low, int32_t* high,
                                                  char* reason, size_t reason_bytes);

/** The contrast limits of one plane, as from its counts, which are held in memory that the thread
 *  keeps.
 *  @param percent  As for `lumetra_contrast_limits`. */
LUMETRA_RENDER_EXPORT int lumetra_measure_limits(const lumetra_plane* plane, double percent,
                                                 int32_t* low, int32_t* high, char* reason,
                                                 size_t reason_bytes);

/** Understands `auto`, `clip:PERCENT`, `LOW:HIGH` and `none` (see `lumetra::parseLevelPolicy`). */
LUMETRA_RENDER_EXPORT int lumetra_parse_level_policy(const char* text, lumetra_level_policy* policy,
                                                     char* reason, size_t reason_bytes);

/** The dyes in the order of their names, whatever their case; LUMETRA_FAILED from the end on. */
LUMETRA_RENDER_EXPORT int lumetra_dye_at(size_t index, lumetra_dye* dye);

/** The dye that a name means, as `lumetra::DyeList::find` does it; the reason names the nearest
 * ones where there is none. */
LUMETRA_RENDER_EXPORT int lumetra_find_dye(const char* name, lumetra_dye* dye, char* reason,
                                           size_t reason_bytes);

/** The dye that emits nearest to a wavelength and has the colour of its emission.
 *  @param emission  In nanometres. */
LUMETRA_RENDER_EXPORT int lumetra_nearest_dye(double emission, lumetra_dye* dye, char* reason,
                                              size_t reason_bytes);

/** The names of the colormaps; null from the end on. */
LUMETRA_RENDER_EXPORT const char* lumetra_colormap_name(size_t index);

/** The 256 colours of a colormap: 768 bytes, red, green and blue of each. */
LUMETRA_RENDER_EXPORT int lumetra_find_colormap(const char* name, uint8_t* colours, char* reason,
                                                size_t reason_bytes);

#ifdef __cplusplus
}
#endif
/* NOLINTEND(modernize-*) */

#endif
