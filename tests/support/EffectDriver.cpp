#include "tests/support/EffectDriver.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <stdexcept>

namespace {

EffectGuid GuidFromText(const char* text) {
    EffectGuid guid{};
    unsigned int d1 = 0, d2 = 0, d3 = 0, d4[8] = {};
    const int read = std::sscanf(text, "{%8x-%4x-%4x-%2x%2x-%2x%2x%2x%2x%2x%2x}", &d1, &d2, &d3, &d4[0],
                                 &d4[1], &d4[2], &d4[3], &d4[4], &d4[5], &d4[6], &d4[7]);
    if (read != 11) throw std::invalid_argument(std::string("not a GUID: ") + text);
    guid.Data1 = d1;
    guid.Data2 = static_cast<uint16_t>(d2);
    guid.Data3 = static_cast<uint16_t>(d3);
    for (int i = 0; i < 8; ++i) guid.Data4[i] = static_cast<uint8_t>(d4[i]);
    return guid;
}

CSpecialEffectFilter* Create(const char* guid) {
    ISpecialEffectFactory* factory = CreateSpecialEffectFactory();
    CSpecialEffectFilter* effect = nullptr;
    const ResultCode result = factory->CreateEffect(GuidFromText(guid), 0, &effect);
    factory->Release();
    if (result != kSuccess || effect == nullptr) {
        throw std::invalid_argument(std::string("no effect has the GUID ") + guid);
    }
    return effect;
}

}  // namespace

EffectDriver::EffectDriver(const char* guid) : EffectDriver(Create(guid)) {}

ResultCode EffectDriver::Configure(int32_t width, int32_t height, int32_t format) {
    StreamDescription stream{0x1234, width, height, format};
    return effect_->Configure(&stream);
}

ResultCode EffectDriver::Process(TestFrame& frame) {
    return effect_->ProcessFrame(frame.record());
}

ResultCode EffectDriver::Set(const std::string& name, const std::string& value) {
    std::string nameText = name, valueText = value;
    PropertyRecord record{7, nameText.data(), valueText.data()};
    return effect_->SetProperty(&record);
}

std::string EffectDriver::Get(const std::string& name) {
    std::string nameText = name;
    char value[256] = "untouched";
    PropertyRecord record{7, nameText.data(), value};
    const ResultCode result = effect_->GetProperty(&record);
    if (result == kSuccess) return value;
    std::snprintf(value, sizeof value, "?%08X", result);
    return value;
}

std::string EffectDriver::Name() const {
    char name[64] = "";
    EXPECT_EQ(effect_->GetInternalInfo()->GetName(name, sizeof name), 1);
    return name;
}

void ExpectContract(EffectDriver& effect, const ContractTraits& traits) {
    const auto [needsWorkspace, needsLuma, planarOnly, refusesStreams, keepsRefusedFrames] = traits;
    const ResultCode unready = needsWorkspace ? kFailure : kSuccess;
    const ResultCode notServed = refusesStreams ? kInvalidArgument : kSuccess;
    const TestFrame scene = TestFrame(96, 80).DrawScene(1);
    TestFrame frame = scene;
    const auto expectUnchanged = [&, comparesFrames = keepsRefusedFrames](const char* when) {
        if (comparesFrames) {
            EXPECT_EQ(FirstDifference(frame, scene), "") << when;
        }
        EXPECT_TRUE(frame.GuardsIntact()) << when;
        frame = scene;
    };
    const auto expectPlanesNeeded = [&, firstNeeded = needsLuma ? 0 : 1](const char* when) {
        for (int plane = firstNeeded; plane < 3; ++plane) {
            frame.image().Plane[plane] = nullptr;
            EXPECT_EQ(effect.Process(frame), kInvalidArgument) << "null plane " << plane << ", " << when;
            expectUnchanged(when);
        }
    };

    int32_t count = 0;
    EXPECT_EQ(effect->GetSupportedFormats(nullptr, &count), kSuccess);
    EXPECT_EQ(count, 2);
    uint32_t flags = 99;
    EXPECT_EQ(effect->GetFilterFlags(&flags), kSuccess);
    EXPECT_EQ(flags, 0U);
    EXPECT_EQ(effect->Flush(3), kSuccess);
    EXPECT_EQ(effect->GetPropCount(), 0);

    // Before Configure: the stored format is planar and there is no workspace.
    EXPECT_EQ(effect->Configure(nullptr), notServed);
    EXPECT_EQ(effect.Process(frame), unready);
    if (needsWorkspace) expectUnchanged("before Configure");
    frame = scene;
    // Planes are asked for before the workspace; the distortions do it the other way round.
    if (refusesStreams) expectPlanesNeeded("before Configure");

    ASSERT_EQ(effect.Configure(96, 80), kSuccess);
    EXPECT_EQ(effect->ProcessFrame(nullptr), kInvalidArgument);
    FrameRecord noImage{{1, 2, 3}, nullptr};
    EXPECT_EQ(effect->ProcessFrame(&noImage), kInvalidArgument);
    for (const uint64_t address : {uint64_t{0xFFFFFFFC}, ~uint64_t{7}}) {
        noImage.Image = reinterpret_cast<ImageRecord*>(address);
        EXPECT_EQ(effect->ProcessFrame(&noImage), kInvalidArgument);
    }
    frame.image().Format = kFormatPacked;
    EXPECT_EQ(effect.Process(frame), kFailure);
    expectUnchanged("packed frame, planar stream");
    expectPlanesNeeded("configured");
    EXPECT_EQ(effect.Process(frame), kSuccess);
    EXPECT_TRUE(frame.GuardsIntact());
    frame = scene;

    EXPECT_EQ(effect->Shutdown(), kSuccess);
    EXPECT_EQ(effect->Shutdown(), kSuccess);
    EXPECT_EQ(effect.Process(frame), unready);
    if (needsWorkspace) expectUnchanged("after Shutdown");
    frame = scene;
    if (refusesStreams) expectPlanesNeeded("after Shutdown");

    // Sizes and formats that are not served leave no workspace behind.
    for (const auto& [w, h] : {std::pair{0, 80}, {96, 0}, {-1, 80}, {96, -5}, {16385, 80}, {96, 16385}}) {
        ASSERT_EQ(effect.Configure(96, 80), kSuccess);
        EXPECT_EQ(effect.Configure(w, h), notServed) << w << " by " << h;
        if (needsWorkspace) {
            EXPECT_EQ(effect.Process(frame), kFailure);
            expectUnchanged("refused Configure");
        }
    }
    EXPECT_EQ(effect.Configure(96, 80, 1), notServed);
    frame.image().Format = 1;
    EXPECT_EQ(effect.Process(frame), refusesStreams ? kInvalidArgument : kFailure);
    expectUnchanged("format 1");

    // Packed streams are configured and not processed.
    EXPECT_EQ(effect.Configure(96, 80, kFormatPacked), kSuccess);
    TestFrame packed = TestFrame(96, 80, kFormatPacked).DrawScene(2);
    const TestFrame packedBefore = packed;
    EXPECT_EQ(effect.Process(packed), planarOnly ? kNotImplemented : kSuccess);
    if (planarOnly) {
        EXPECT_EQ(FirstDifference(packed, packedBefore), "");
    }
    EXPECT_TRUE(packed.GuardsIntact());

    // A second Configure, to other sizes, tiny and odd ones among them.
    for (const auto& [w, h] : {std::pair{1, 1},
                               {2, 2},
                               {1, 9},
                               {9, 1},
                               {3, 3},
                               {5, 4},
                               {13, 7},
                               {31, 33},
                               {64, 64},
                               {65, 66},
                               {161, 121},
                               {40, 200},
                               {96, 80}}) {
        ASSERT_EQ(effect.Configure(w, h), kSuccess) << w << " by " << h;
        for (int i = 0; i < 3; ++i) {
            TestFrame sized(w, h);
            sized.DrawScene(i);
            EXPECT_EQ(effect.Process(sized), kSuccess) << w << " by " << h;
            EXPECT_TRUE(sized.GuardsIntact()) << w << " by " << h;
        }
    }
    EXPECT_EQ(effect->Shutdown(), kSuccess);
}

void ExpectNoProperties(const char* guid) {
    EffectDriver effect(guid);
    EXPECT_EQ(effect->GetInternalInfo()->GetPropCount(), 0);
    EXPECT_EQ(effect.Set("Intensity", "3"), kSuccess);
    EXPECT_EQ(effect.Get("Intensity"), "untouched");
    EXPECT_EQ(effect->SetProperty(static_cast<PropertyRecord*>(nullptr)), kSuccess);
    EXPECT_EQ(effect->GetProperty(static_cast<PropertyRecord*>(nullptr)), kSuccess);
}

void ExpectBooleanProperty(EffectDriver& effect, const std::string& name, bool initial) {
    EXPECT_EQ(effect.Get(name), initial ? "TRUE" : "FALSE");
    for (const char* yes : {"TRUE", "true", "tRuE"}) {
        EXPECT_EQ(effect.Set(name, "FALSE"), kSuccess);
        EXPECT_EQ(effect.Set(name, yes), kSuccess);
        EXPECT_EQ(effect.Get(name), "TRUE") << yes;
    }
    for (const char* no : {"FALSE", "1", "YES", "", "TRUE ", " TRUE"}) {
        EXPECT_EQ(effect.Set(name, "TRUE"), kSuccess);
        EXPECT_EQ(effect.Set(name, no), kSuccess);
        EXPECT_EQ(effect.Get(name), "FALSE") << no;
    }
    EXPECT_EQ(effect.Set(name, initial ? "TRUE" : "FALSE"), kSuccess);
}
