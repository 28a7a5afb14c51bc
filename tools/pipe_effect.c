/* Raw I420 frames from the standard input through an effect to the standard output, at 30 frames a second:
 *
 *     pipe_effect TEXT WIDTH HEIGHT
 */
#include <stdio.h>
#include <stdlib.h>

#include "sfx/sfx.h"

int main(int argc, char** argv) {
    sfx_effect* effect = NULL;
    if (argc != 4 || sfx_create(argv[1], &effect) < 0) {
        fprintf(stderr, "%s\n", argc != 4 ? "usage: pipe_effect TEXT WIDTH HEIGHT" : sfx_message());
        return 2;
    }
    sfx_picture picture;
    const int width = atoi(argv[2]), height = atoi(argv[3]);
    const size_t size = sfx_picture_layout(NULL, SFX_I420, width, height, NULL);
    unsigned char* const pixels = size > 0 ? malloc(size) : NULL;
    int status = 0;
    if (pixels == NULL || sfx_prepare(effect, width, height) < 0) {
        fprintf(stderr, "%s\n", sfx_message());
        status = 1;
    }
    sfx_picture_layout(&picture, SFX_I420, width, height, pixels);
    for (int64_t frame = 0; status == 0 && fread(pixels, 1, size, stdin) == size; ++frame) {
        if (sfx_process(effect, &picture, frame * 1000000000 / 30) < 0) {
            fprintf(stderr, "%s\n", sfx_message());
            status = 1;
        } else if (fwrite(pixels, 1, size, stdout) != size) {
            status = 1;
        }
    }
    free(pixels);
    sfx_destroy(effect);
    return status;
}
