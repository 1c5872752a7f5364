#include <lumetra_render.h>

/* Ends with 0 if a bright pixel has the colour of its dye. */
int main(void) {
    const uint16_t pixels[6] = {4000, 4000, 4000, 4000, 4000, 4000};
    uint8_t rgb[18] = {0};
    lumetra_dye dye = {.struct_size = sizeof dye};
    if (lumetra_find_dye("DAPI", &dye, NULL, 0) != LUMETRA_OK)
        return 1;
    const lumetra_plane plane = {sizeof plane, pixels, 6, 3, 2, 16};
    const lumetra_channel channel = {.struct_size = sizeof channel,
                                     .red = dye.red,
                                     .green = dye.green,
                                     .blue = dye.blue,
                                     .has_limits = 1,
                                     .low = 100,
                                     .high = 4000};
    const lumetra_image image = {sizeof image, rgb, 9, 3, 2, 8, LUMETRA_RGB};
    if (lumetra_render(&plane, &channel, 1, &image, NULL, 0) != LUMETRA_OK)
        return 2;
    return rgb[15] == dye.red && rgb[16] == dye.green && rgb[17] == dye.blue ? 0 : 3;
}
