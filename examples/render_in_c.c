/* Renders two channels by the C interface of liblumetra-render and writes the image as PPM. The
   channels here are gradients of 12 bits in 16. */

#include <lumetra_render.h>

#include <stdio.h>

enum { width = 256, height = 256 };

static void set_gradients(uint16_t* across, uint16_t* down) {
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            across[y * width + x] = (uint16_t)(16 * x);
            down[y * width + x] = (uint16_t)(16 * y);
        }
}

static int write_ppm(const char* file, const lumetra_image* image) {
    FILE* out = fopen(file, "wb");
    if (!out)
        return 1;
    fprintf(out, "P6\n%d %d\n255\n", (int)image->width, (int)image->height);
    for (int32_t y = 0; y < image->height; ++y)
        fwrite((const char*)image->pixels + y * image->row_step, 3, (size_t)image->width, out);
    return fclose(out) != 0;
}

/*! [render] */
static int render(const uint16_t* nuclei, const uint16_t* actin, const char* file) {
    static uint8_t pixels[height * width * 3];
    char reason[256] = "";
    const lumetra_plane planes[] = {{sizeof(lumetra_plane), nuclei, width * 2, width, height, 16},
                                    {sizeof(lumetra_plane), actin, width * 2, width, height, 16}};
    lumetra_channel channels[2] = {{0}};
    lumetra_image image = {.struct_size = sizeof image, .format = LUMETRA_RGB};
    lumetra_dye dye = {.struct_size = sizeof dye};
    for (int i = 0; i < 2; ++i) {
        if (lumetra_find_dye(i ? "FITC" : "DAPI", &dye, reason, sizeof reason) != LUMETRA_OK)
            goto failed;
        channels[i] = (lumetra_channel){.struct_size = sizeof(lumetra_channel),
                                        .red = dye.red,
                                        .green = dye.green,
                                        .blue = dye.blue,
                                        .has_limits = 1,
                                        .low = 0,
                                        .high = 4095,
                                        .offset_x = 9 * i};
    }
    if (lumetra_image_size(planes, channels, 2, &image, reason, sizeof reason) != LUMETRA_OK)
        goto failed;
    image.pixels = pixels; /* large enough: the overlap never exceeds a plane */
    image.row_step = 3 * image.width;
    if (lumetra_render(planes, channels, 2, &image, reason, sizeof reason) == LUMETRA_OK)
        return write_ppm(file, &image);
failed:
    fprintf(stderr, "error: %s\n", reason);
    return 1;
}
/*! [render] */

int main(int argc, char** argv) {
    static uint16_t nuclei[height * width], actin[height * width];
    if (argc != 2) {
        fputs("usage: render_in_c OUTPUT.ppm\n", stderr);
        return 2;
    }
    set_gradients(nuclei, actin);
    return render(nuclei, actin, argv[1]);
}
