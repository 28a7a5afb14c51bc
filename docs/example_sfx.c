/* libsfx in C: applies an effect's text to a picture that moves from frame to frame. */
#include <stdio.h>
#include <stdlib.h>

#include "sfx/sfx.h"

enum { kWidth = 640, kHeight = 480, kFrames = 10 };

int main(int argc, char** argv) {
    const char* text = argc > 1 ? argv[1] : "sepia+rain:drop-size=9";
    sfx_effect* effect;
    if (sfx_create(text, &effect) < 0) {
        fprintf(stderr, "%s\n", sfx_message());
        return 1;
    }
    for (size_t link = 0; link < sfx_link_count(effect); ++link) {
        const sfx_effect_info* info = sfx_link_info(effect, link);
        printf("%s (%s), %u properties\n", info->title, info->id, (unsigned)info->property_count);
    }

    /* Takes memory and reads or makes data files, so that the first frame does not have to. */
    if (sfx_prepare(effect, kWidth, kHeight) != SFX_OK) {
        fprintf(stderr, "%s\n", sfx_message());
    }

    /* Any of fourteen formats, with any strides; here RGBA without gaps between rows. */
    sfx_picture picture;
    unsigned char* pixels = malloc(sfx_picture_layout(NULL, SFX_RGBA, kWidth, kHeight, NULL));
    if (pixels == NULL) {
        sfx_destroy(effect);
        return 1;
    }
    sfx_picture_layout(&picture, SFX_RGBA, kWidth, kHeight, pixels);

    for (int frame = 0; frame < kFrames; ++frame) {
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                unsigned char* pixel = pixels + 4 * (y * kWidth + x);
                pixel[0] = (unsigned char)(x / 3 + frame);
                pixel[1] = (unsigned char)(y / 2);
                pixel[2] = 128;
                pixel[3] = 255;
            }
        }
        if (sfx_process(effect, &picture, frame * INT64_C(33333333)) < 0) {
            fprintf(stderr, "%s\n", sfx_message());
            break;
        }
        if (frame == kFrames / 2) {
            sfx_set(effect, "drop-size", "14"); /* from the next frame on */
        }
    }

    char settings[256];
    sfx_print(effect, settings, sizeof settings);
    printf("%s: the middle is now %d, %d, %d\n", settings, pixels[4 * (kHeight / 2 * kWidth + kWidth / 2)],
           pixels[4 * (kHeight / 2 * kWidth + kWidth / 2) + 1],
           pixels[4 * (kHeight / 2 * kWidth + kWidth / 2) + 2]);
    free(pixels);
    sfx_destroy(effect);
    return 0;
}
