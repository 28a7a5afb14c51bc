// A host compiled for Microsoft's ABI, without Microsoft's headers, that drives the DLL of another compiler
// through the contract's own headers.
#include "framework/SpecialEffectFactory.h"

// ---- what a program needs without a C++ library -------------------------------------------------------

extern "C" {
[[noreturn]] void exit(int code);
void* fopen(const char* path, const char* mode);
int fputs(const char* text, void* file);
int fclose(void* file);
int remove(const char* path);
int printf(const char* format, ...);
int strcmp(const char* a, const char* b);
int wcscmp(const wchar_t* a, const wchar_t* b);
int _fltused = 0;
}

namespace {

int checks = 0;
int failures = 0;

void Expect(bool holds, const char* what, const char* of = "") {
    ++checks;
    if (!holds) {
        ++failures;
        printf("wrong: %s %s\n", what, of);
    }
}

bool Same(const char* a, const char* b) {
    return strcmp(a, b) == 0;
}
bool Same(const wchar_t* a, const wchar_t* b) {
    return wcscmp(a, b) == 0;
}

/// An effect of the factory, given back at the end of its scope.
class Owned {
  public:
    Owned(ISpecialEffectFactory& factory, const EffectGuid& id) : factory_(factory) {
        Expect(factory.CreateEffect(id, 0, &effect_) == kSuccess && effect_ != nullptr, "CreateEffect");
    }
    ~Owned() { factory_.DestroyEffect(effect_); }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    CSpecialEffectFilter* operator->() const { return effect_; }
    CSpecialEffectFilter* get() const { return effect_; }

  private:
    ISpecialEffectFactory& factory_;
    CSpecialEffectFilter* effect_ = nullptr;
};

constexpr EffectGuid kLineArt = {
    0x6772F07B, 0xDE51, 0x4FA9, {0xA7, 0xC7, 0xDE, 0x64, 0x30, 0xF4, 0x37, 0xBF}};
constexpr EffectGuid kClouds = {0x7DB203B3, 0x4EC6, 0x497D, {0x95, 0x7F, 0x5A, 0x93, 0x8F, 0x6A, 0xAB, 0x76}};

// ---- the pairs of wide and narrow operations ----------------------------------------------------------

template <class Char>
void ExpectName(CSpecialEffectFilter& effect, const Char* wanted) {
    Char name[64] = {};
    Expect(effect.GetInternalInfo()->GetName(name, 64) == 1 && Same(name, wanted), "GetName");
}

template <class Char>
void ExpectRow(CSpecialEffectFilter& effect, const Char* wantedName, const Char* wantedDefault) {
    Char name[64] = {}, text[64] = {}, range[64] = {};
    CInternalInfo& info = *effect.GetInternalInfo();
    Expect(info.GetPropTypeInfo(0, name, 64, text, 64, range, 64) == PropTypeSet::Color &&
               Same(name, wantedName) && Same(text, wantedDefault) && range[0] == 0,
           "GetPropTypeInfo");
    Expect(effect.GetPropTypeInfo(0, name, 64, text, 64, range, 64) == PropTypeSet::None,
           "GetPropTypeInfo of the effect");
}

/// Sets with texts of one kind and reads with those of the other.
template <class Char, class Other>
void ExpectProperty(CSpecialEffectFilter& effect, const Char* property, const Char* value,
                    const Other* otherProperty, const Other* wanted) {
    Char name[256] = {}, text[256] = {};
    for (int i = 0; property[i] != 0; ++i) name[i] = property[i];
    for (int i = 0; value[i] != 0; ++i) text[i] = value[i];
    BasicPropertyRecord<Char> record = {1, name, text};
    Expect(effect.SetProperty(&record) == kSuccess, "SetProperty");
    Other otherName[256] = {}, otherText[256] = {};
    for (int i = 0; otherProperty[i] != 0; ++i) otherName[i] = otherProperty[i];
    BasicPropertyRecord<Other> read = {2, otherName, otherText};
    Expect(effect.GetProperty(&read) == kSuccess && Same(otherText, wanted), "GetProperty");
}

template <class Char>
void ExpectSettings(CSpecialEffectFilter& effect, Char* path, const char* content, const char* wanted) {
    void* const file = fopen("colour.txt", "w");
    fputs(content, file);
    fclose(file);
    Char name[] = {'s', 0};
    BasicSettingsRecord<Char> record = {1, name, path, {2, 3}};
    Expect(effect.LoadSettings(&record) == kSuccess, "LoadSettings");
    remove("colour.txt");
    char property[256] = "BackgroundColor", text[256] = {};
    PropertyRecord read = {2, property, text};
    Expect(effect.GetProperty(&read) == kSuccess && Same(text, wanted), "the colour of the settings");
}

void CheckPairs(ISpecialEffectFactory& factory) {
    const Owned effect(factory, kLineArt);
    ExpectName(*effect.get(), "Line Art");
    ExpectName(*effect.get(), L"Line Art");
    ExpectRow(*effect.get(), "BackgroundColor", "0,0,0");
    ExpectRow(*effect.get(), L"BackgroundColor", L"0,0,0");
    ExpectProperty(*effect.get(), "BackgroundColor", "1,2,3", L"BackgroundColor", L"1,2,3");
    ExpectProperty(*effect.get(), L"BackgroundColor", L"4,5,6", "BackgroundColor", "4,5,6");
    char path[] = "colour.txt";
    wchar_t widePath[] = L"colour.txt";
    ExpectSettings(*effect.get(), path, "7 8 9", "7,8,9");
    ExpectSettings(*effect.get(), widePath, "10 11 12", "10,11,12");

    const Owned clouds(factory, kClouds);
    PropertyRecord record = {};
    WidePropertyRecord wideRecord = {};
    Expect(clouds->ApplyProperty(&record, 1) == kNotImplemented, "ApplyProperty");
    Expect(clouds->ApplyProperty(&wideRecord, 1) == kNotImplemented, "wide ApplyProperty");
}

// ---- every listed effect ------------------------------------------------------------------------------

constexpr int kWidth = 64, kHeight = 48, kLuma = kWidth * kHeight, kChroma = kLuma / 4;
uint8_t picture[kLuma + 2 * kChroma];

void RunFrames(ISpecialEffectFactory& factory, const EffectGuid& id) {
    CSpecialEffectFilter* effect = nullptr;
    Expect(factory.CreateEffect(id, 0, &effect) == kSuccess, "CreateEffect");
    char name[64] = {};
    effect->GetInternalInfo()->GetName(name, 64);
    StreamDescription stream = {0, kWidth, kHeight, kFormatPlanar};
    Expect(effect->Configure(&stream) == kSuccess, "Configure", name);
    for (int number = 0; number < 3; ++number) {
        for (int i = 0; i < static_cast<int>(sizeof picture); ++i) {
            picture[i] = static_cast<uint8_t>(i * 7 + number * 31);
        }
        ImageRecord image = {kFormatPlanar,
                             {picture, picture + kLuma, picture + kLuma + kChroma},
                             0,
                             {kLuma, kChroma, kChroma}};
        FrameRecord frame = {{}, &image};
        Expect(effect->ProcessFrame(&frame) == kSuccess, "ProcessFrame", name);
    }
    int32_t formats[2] = {}, count = 2;
    Expect(effect->GetSupportedFormats(formats, &count) == kSuccess && formats[1] == kFormatPacked,
           "GetSupportedFormats", name);
    Expect(effect->Flush(0) == kSuccess && effect->Shutdown() == kSuccess, "Shutdown", name);
    factory.DestroyEffect(effect);
}

}  // namespace

extern "C" void Start() {
    ISpecialEffectFactory& factory = *CreateSpecialEffectFactory();
    EffectGuid listed[64];
    uint32_t count = 64;
    Expect(factory.EnumerateEffects(listed, &count) == kSuccess && count == 41, "EnumerateEffects");
    CheckPairs(factory);
    for (uint32_t i = 0; i + 1 < count; ++i) RunFrames(factory, listed[i]);  // the last one is not made
    CSpecialEffectFilter* none = nullptr;
    Expect(factory.CreateEffect(listed[40], 0, &none) == kFailure, "the last one listed");
    factory.ReservedNoOp();
    Expect(factory.Release() == 0, "Release");
    printf("%d checks, %d failed\n", checks, failures);
    exit(failures == 0 ? 0 : 1);
}
