/* Runs Sepia over a small grey picture. */
#include <sfx/sfx.h>
#include <stdio.h>
#include <string.h>

int main(void) {
    unsigned char pixels[16 * 8 * 3 / 2];
    sfx_picture picture;
    sfx_effect* effect;
    memset(pixels, 128, sizeof pixels);
    if (sfx_version() != SFX_VERSION || sfx_create("Sepia", &effect) != SFX_OK ||
        sfx_picture_layout(&picture, SFX_I420, 16, 8, pixels) != sizeof pixels ||
        sfx_process(effect, &picture, 0) != SFX_OK) {
        return 1;
    }
    printf("libsfx %s, luma %d, %u presets\n", sfx_version_text(), pixels[0], (unsigned)sfx_preset_count());
    sfx_destroy(effect);
    return 0;
}
