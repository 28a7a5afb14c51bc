// Lists the effects and runs Sepia over a small grey frame.
#include <cstdint>
#include <cstdio>
#include <vector>

#include "framework/SpecialEffectFactory.h"

int main() {
    ISpecialEffectFactory* factory = CreateSpecialEffectFactory();
    uint32_t count = 0;
    factory->EnumerateEffects(nullptr, &count);
    std::vector<EffectGuid> list(count);
    if (factory->EnumerateEffects(list.data(), &count) != kSuccess) return 1;

    const EffectGuid sepia = {0x3BF3AE40, 0x0316, 0x41B9, {0x84, 0xC5, 0xA8, 0xC6, 0x71, 0x21, 0x2C, 0xAC}};
    CSpecialEffectFilter* effect = nullptr;
    StreamDescription stream = {0, 16, 8, kFormatPlanar};
    if (factory->CreateEffect(sepia, 0, &effect) != kSuccess || effect->Configure(&stream) != kSuccess) {
        return 1;
    }

    std::vector<uint8_t> y(16 * 8, 128), u(8 * 4, 128), v(8 * 4, 128);
    ImageRecord image = {kFormatPlanar, {y.data(), u.data(), v.data()}, 0, {16 * 8, 8 * 4, 8 * 4}};
    FrameRecord frame = {{0, 0, 0}, &image};
    if (effect->ProcessFrame(&frame) != kSuccess) return 1;
    std::printf("%u effects, luma %d\n", static_cast<unsigned>(count), y[0]);

    factory->DestroyEffect(effect);
    factory->Release();
    return 0;
}
