// A module that shows what a host does with it. It goes by the public headers alone, as any module could:
// under the GUIDs of real effects stand effects that keep a diary, refuse, fail or run out of memory.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <new>
#include <string>

#include "framework/SpecialEffectFactory.h"

CSpecialEffectFilter::CSpecialEffectFilter() = default;
CSpecialEffectFilter::CSpecialEffectFilter(const CSpecialEffectFilter&) = default;
CSpecialEffectFilter& CSpecialEffectFilter::operator=(const CSpecialEffectFilter&) = default;
void* CSpecialEffectFilter::DeletingDestructor(uint32_t) {
    return this;
}
CInternalInfo* CSpecialEffectFilter::GetInternalInfo() {
    return nullptr;
}
int32_t CSpecialEffectFilter::GetPropCount() {
    return 0;
}
PropTypeSet CSpecialEffectFilter::GetPropTypeInfo(int32_t, WideChar*, uint32_t, WideChar*, uint32_t,
                                                  WideChar*, uint32_t) {
    return PropTypeSet::None;
}
PropTypeSet CSpecialEffectFilter::GetPropTypeInfo(int32_t, char*, uint32_t, char*, uint32_t, char*,
                                                  uint32_t) {
    return PropTypeSet::None;
}

namespace {

constexpr EffectGuid kFire = {0x930E1289, 0x65C0, 0x403E, {0x88, 0x0A, 0x19, 0x02, 0xFD, 0xCF, 0xEA, 0x90}};
constexpr EffectGuid kSepia = {0x3BF3AE40, 0x0316, 0x41B9, {0x84, 0xC5, 0xA8, 0xC6, 0x71, 0x21, 0x2C, 0xAC}};
constexpr EffectGuid kGrayScale = {
    0xCC006219, 0x72F8, 0x4E49, {0x8E, 0x12, 0x6E, 0x05, 0xB5, 0x92, 0x69, 0xE9}};
constexpr EffectGuid kPlaster = {
    0x0405DEA1, 0xA404, 0x4CC8, {0xA7, 0x0B, 0x5C, 0x27, 0x3A, 0x2A, 0x81, 0x72}};
constexpr EffectGuid kQuark = {0x692E6627, 0x95B1, 0x462D, {0xB1, 0x20, 0x11, 0x4C, 0xFB, 0xA7, 0x21, 0x88}};

constexpr EffectGuid kListing[] = {kFire, kSepia, kFire};

constexpr uint32_t kTextSize = 256;

void Copy(char* target, uint32_t size, const char* text) {
    if (target != nullptr && size > 0) std::snprintf(target, size, "%s", text);
}

// What a host asked for, line by line, in the current directory.
template <class... Parts>
void Note(const Parts&... parts) {
    std::ofstream diary("diary.txt", std::ios::app);
    (diary << ... << parts) << '\n';
}

struct Row {
    PropTypeSet type;
    const char* name;
    const char* defaultText;
    const char* range;
};

constexpr Row kRows[] = {
    {PropTypeSet::Integer, "Level", "5", "1,10"},
    {PropTypeSet::Color, "Tint", "1,2,3", ""},
    {PropTypeSet::Boolean, "On", "TRUE", ""},
    {PropTypeSet::Integer, "Two Words", "7", "0,100"},
};

// The base of them all: planar frames go through unchanged, properties there are none.
class FakeEffect : public CSpecialEffectFilter, public CInternalInfo {
  public:
    void* DeletingDestructor(uint32_t flags) override {
        if ((flags & 1) != 0) delete this;
        return this;  // NOLINT(clang-analyzer-cplusplus.NewDelete): the address alone
    }
    ResultCode GetFilterFlags(uint32_t*) override { return kSuccess; }
    ResultCode GetSupportedFormats(int32_t*, int32_t*) override { return kSuccess; }
    ResultCode Configure(StreamDescription* description) override {
        stream_ = *description;
        return kSuccess;
    }
    ResultCode LoadSettings(WideSettingsRecord*) override { return kSuccess; }
    ResultCode LoadSettings(SettingsRecord*) override { return kSuccess; }
    ResultCode ProcessFrame(FrameRecord*) override {
        return stream_.Format == kFormatPacked ? kNotImplemented : kSuccess;
    }
    ResultCode SetProperty(WidePropertyRecord*) override { return kSuccess; }
    ResultCode SetProperty(PropertyRecord*) override { return kSuccess; }
    ResultCode ApplyProperty(WidePropertyRecord*, int32_t) override { return kSuccess; }
    ResultCode ApplyProperty(PropertyRecord*, int32_t) override { return kSuccess; }
    ResultCode GetProperty(WidePropertyRecord*) override { return kSuccess; }
    ResultCode GetProperty(PropertyRecord*) override { return kSuccess; }
    ResultCode Shutdown() override { return kSuccess; }
    ResultCode Flush(uint32_t) override { return kSuccess; }
    CInternalInfo* GetInternalInfo() override { return this; }

    int32_t GetName(WideChar*, int32_t) override { return 0; }
    int32_t GetName(char* name, uint32_t size) override {
        Copy(name, size, "Fake");
        return 1;
    }
    int32_t GetPropCount() override { return 0; }
    PropTypeSet GetPropTypeInfo(int32_t, WideChar*, uint32_t, WideChar*, uint32_t, WideChar*,
                                uint32_t) override {
        return PropTypeSet::None;
    }
    PropTypeSet GetPropTypeInfo(int32_t, char*, uint32_t, char*, uint32_t, char*, uint32_t) override {
        return PropTypeSet::None;
    }

  protected:
    virtual ~FakeEffect() = default;
    StreamDescription stream_{};
};

// Keeps a diary. Its frames have the luma 10 * Level, in U a random number and in V the tint's red.
class DiaryEffect final : public FakeEffect {
  public:
    ResultCode Configure(StreamDescription* description) override {
        stream_ = *description;
        Note("Configure ", stream_.Width, "x", stream_.Height);
        values_[0].assign(1, '4');  // as some effects do
        std::rand();
        return kSuccess;
    }
    ResultCode LoadSettings(SettingsRecord* settings) override {
        if (settings == nullptr) return kFailure;
        std::ifstream file(settings->Path);
        if (!(file >> values_[3])) return kFailure;
        Note("LoadSettings");
        return kSuccess;
    }
    ResultCode ProcessFrame(FrameRecord* frame) override {
        if (stream_.Format == kFormatPacked) return kNotImplemented;
        ImageRecord& image = *frame->Image;
        const auto fill = [&image](int plane, int value) {
            std::memset(image.Plane[plane], value, static_cast<size_t>(image.PlaneSize[plane]));
        };
        fill(0, 10 * std::atoi(values_[0].c_str()));
        fill(1, std::rand() & 255);
        fill(2, std::atoi(values_[1].c_str()));
        return kSuccess;
    }
    ResultCode SetProperty(PropertyRecord* property) override {
        Note("SetProperty ", property->Name, "=", property->Value);
        for (size_t i = 0; i < std::size(kRows); ++i) {
            if (std::strcmp(property->Name, kRows[i].name) != 0) continue;
            values_[i] = property->Value;
            if (i == 0) values_[0] = std::to_string(std::max(1, std::min(10, std::atoi(property->Value))));
            return kSuccess;
        }
        return kInvalidArgument;
    }
    ResultCode GetProperty(PropertyRecord* property) override {
        for (size_t i = 0; i < std::size(kRows); ++i) {
            if (std::strcmp(property->Name, kRows[i].name) != 0) continue;
            Copy(property->Value, kTextSize, values_[i].c_str());
            return kSuccess;
        }
        return kInvalidArgument;
    }
    int32_t GetPropCount() override { return static_cast<int32_t>(std::size(kRows)); }
    PropTypeSet GetPropTypeInfo(int32_t index, char* name, uint32_t nameSize, char* defaultText,
                                uint32_t defaultSize, char* range, uint32_t rangeSize) override {
        const Row& row = kRows[index];
        Copy(name, nameSize, row.name);
        Copy(defaultText, defaultSize, row.defaultText);
        Copy(range, rangeSize, row.range);
        return row.type;
    }

  private:
    std::string values_[std::size(kRows)] = {"3", "9,8,7", "FALSE", "7"};
};

// Turns every byte over, in both formats.
class InvertingEffect final : public FakeEffect {
  public:
    ResultCode ProcessFrame(FrameRecord* frame) override {
        ImageRecord& image = *frame->Image;
        const int planes = stream_.Format == kFormatPacked ? 1 : 3;
        for (int plane = 0; plane < planes; ++plane) {
            for (int i = 0; i < image.PlaneSize[plane]; ++i) image.Plane[plane][i] ^= 255;
        }
        return kSuccess;
    }
};

class FailingEffect final : public FakeEffect {
  public:
    ResultCode ProcessFrame(FrameRecord*) override { return kFailure; }
};

class RefusingEffect final : public FakeEffect {
  public:
    ResultCode Configure(StreamDescription*) override { return kInvalidArgument; }
};

class GreedyEffect final : public FakeEffect {
  public:
    ResultCode Configure(StreamDescription*) override { throw std::bad_alloc(); }
};

class FakeFactory final : public ISpecialEffectFactory {
  public:
    uint32_t AddRef() override { return 0; }
    uint32_t Release() override { return 0; }
    ResultCode CreateEffect(EffectGuid id, uint32_t, CSpecialEffectFilter** effect) override {
        const auto is = [&id](const EffectGuid& other) { return std::memcmp(&id, &other, sizeof id) == 0; };
        if (is(kFire)) return Make<DiaryEffect>(effect);
        if (is(kSepia)) return Make<InvertingEffect>(effect);
        if (is(kGrayScale)) return Make<FailingEffect>(effect);
        if (is(kPlaster)) return Make<RefusingEffect>(effect);
        if (is(kQuark)) return Make<GreedyEffect>(effect);
        return kFailure;
    }
    void DestroyEffect(CSpecialEffectFilter* effect) override {
        effect->Shutdown();
        effect->DeletingDestructor(1);
    }
    uint32_t ReservedQuery(uint32_t, uint32_t, uint32_t, uint32_t, uint32_t) override { return 0; }
    ResultCode EnumerateEffects(EffectGuid* list, uint32_t* count) override {
        if (list != nullptr) std::memcpy(list, kListing, sizeof kListing);
        *count = static_cast<uint32_t>(std::size(kListing));
        return kSuccess;
    }
    void ReservedNoOp() override {}
    void* DeletingDestructor(uint32_t) override { return this; }

  private:
    template <class Effect>
    static ResultCode Make(CSpecialEffectFilter** effect) {
        *effect = new Effect;
        return kSuccess;
    }
};

}  // namespace

extern "C" SPECIALEFFECTS_API ISpecialEffectFactory* CreateSpecialEffectFactory() {
    static FakeFactory factory;
    return &factory;
}
