// A complete host: lists the effects, creates one, changes a property and runs a frame through it.
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

    // Motion Detector, {6C250CDD-8B28-4821-B047-B30878E3439F}
    const EffectGuid id = {0x6C250CDD, 0x8B28, 0x4821, {0xB0, 0x47, 0xB3, 0x08, 0x78, 0xE3, 0x43, 0x9F}};
    CSpecialEffectFilter* effect = nullptr;
    if (factory->CreateEffect(id, 0, &effect) != kSuccess) return 1;

    const int width = 640, height = 480;
    StreamDescription stream = {0, width, height, kFormatPlanar};
    if (effect->Configure(&stream) != kSuccess) return 1;

    // Properties are text. The table names them and their ranges. Its default texts are not always what the
    // effect starts with, and `Configure` resets some values: read with GetProperty what holds now.
    CInternalInfo* info = effect->GetInternalInfo();
    for (int row = 0; row < info->GetPropCount(); ++row) {
        char name[64], defaultText[64], range[64], value[256];
        info->GetPropTypeInfo(row, name, sizeof name, defaultText, sizeof defaultText, range, sizeof range);
        PropertyRecord property = {0, name, value};
        if (effect->GetProperty(&property) == kSuccess) std::printf("%s is %s\n", name, value);
    }

    // Set only what the user changes, after `Configure`. The effect copies both texts.
    char name[64] = "BlurDelay", value[256] = "80";
    PropertyRecord change = {0, name, value};
    if (effect->SetProperty(&change) != kSuccess) return 1;

    // One I420 frame, changed in place: luma, then the two chroma planes at half the size.
    const int luma = width * height, chroma = luma / 4;
    std::vector<uint8_t> picture(static_cast<size_t>(luma + 2 * chroma), 128);
    uint8_t* y = picture.data();
    ImageRecord image = {kFormatPlanar, {y, y + luma, y + luma + chroma}, 0, {luma, chroma, chroma}};
    FrameRecord frame = {{0, 0, 0}, &image};
    if (effect->ProcessFrame(&frame) != kSuccess) return 1;

    info->GetName(name, sizeof name);
    std::printf("%s: luma 128 becomes %d\n", name, *y);

    effect->Shutdown();
    factory->DestroyEffect(effect);
    factory->Release();
}
