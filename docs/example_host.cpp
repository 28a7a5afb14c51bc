// A complete host: lists the effects, creates one, sets its properties and runs a frame through it.
#include <cstdio>
#include <vector>

#include "framework/SpecialEffectFactory.h"

int main() {
    ISpecialEffectFactory* factory = CreateSpecialEffectFactory();
    uint32_t count = 0;
    factory->EnumerateEffects(nullptr, &count);  // a null list asks how many there are
    std::vector<EffectGuid> listed(count);
    factory->EnumerateEffects(listed.data(), &count);
    std::printf("%u effects are listed\n", unsigned{count});

    // Sepia, {3BF3AE40-0316-41B9-84C5-A8C671212CAC}
    const EffectGuid id = {0x3BF3AE40, 0x0316, 0x41B9, {0x84, 0xC5, 0xA8, 0xC6, 0x71, 0x21, 0x2C, 0xAC}};
    CSpecialEffectFilter* effect = nullptr;
    if (factory->CreateEffect(id, 0, &effect) != kSuccess) return 1;

    const int width = 640, height = 480;
    StreamDescription stream = {0, width, height, kFormatPlanar};
    if (effect->Configure(&stream) != kSuccess) return 1;

    // Properties are text. The table says which there are; here each gets the table's default.
    CInternalInfo* info = effect->GetInternalInfo();
    for (int row = 0; row < info->GetPropCount(); ++row) {
        char name[64], value[256], range[64];
        info->GetPropTypeInfo(row, name, sizeof name, value, sizeof value, range, sizeof range);
        PropertyRecord property = {0, name, value};
        effect->SetProperty(&property);
    }

    // One I420 frame, changed in place: luma, then the two chroma planes at half the size.
    const int luma = width * height, chroma = luma / 4;
    std::vector<uint8_t> picture(static_cast<size_t>(luma + 2 * chroma), 128);
    uint8_t* y = picture.data();
    ImageRecord image = {kFormatPlanar, {y, y + luma, y + luma + chroma}, 0, {luma, chroma, chroma}};
    FrameRecord frame = {{0, 0, 0}, &image};
    if (effect->ProcessFrame(&frame) != kSuccess) return 1;

    char name[64];
    info->GetName(name, sizeof name);
    std::printf("%s: luma 128 becomes %d\n", name, *y);

    effect->Shutdown();
    factory->DestroyEffect(effect);
    factory->Release();
}
