// Runs Sepia over a small grey picture.
#include <sfx/sfx.h>

#include <cstdio>
#include <memory>
#include <vector>

int main() {
    sfx_effect* created = nullptr;
    if (sfx_create("sepia", &created) != SFX_OK) {
        return 1;
    }
    const std::unique_ptr<sfx_effect, void (*)(sfx_effect*)> effect(created,
                                                                    [](sfx_effect* e) { sfx_destroy(e); });
    std::vector<unsigned char> pixels(sfx_picture_layout(nullptr, SFX_I420, 16, 8, nullptr), 128);
    sfx_picture picture = SFX_PICTURE_INIT;
    sfx_picture_layout(&picture, SFX_I420, 16, 8, pixels.data());
    if (sfx_process(effect.get(), &picture, SFX_NO_TIME) != SFX_OK) {
        return 1;
    }
    std::printf("libsfx %s, luma %d, %u presets\n", sfx_version_text(), int{pixels[0]},
                static_cast<unsigned>(sfx_preset_count()));
}
