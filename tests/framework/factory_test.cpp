#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "framework/Guid.h"
#include "framework/SpecialEffectFactory.h"

namespace {

struct FactoryHandle {
    ISpecialEffectFactory* factory = CreateSpecialEffectFactory();
    ~FactoryHandle() { factory->Release(); }
    ISpecialEffectFactory* operator->() const { return factory; }
};

constexpr EffectGuid kListedOnly = ParseGuid("{8AAE654A-D222-4D8A-968F-937591B1B696}");
constexpr EffectGuid kGraphicPen3 = ParseGuid("{333FBC24-1123-4E32-BBA1-3E77B228A727}");
constexpr EffectGuid kSepia = ParseGuid("{3BF3AE40-0316-41B9-84C5-A8C671212CAC}");

TEST(Factory, GivesTheSizeOfTheListing) {
    FactoryHandle factory;
    uint32_t count = 0;
    EXPECT_EQ(factory->EnumerateEffects(nullptr, &count), kSuccess);
    EXPECT_EQ(count, 41U);
    EXPECT_EQ(factory->EnumerateEffects(nullptr, nullptr), kInvalidArgument);
}

TEST(Factory, NeverReturnsAPartialListing) {
    FactoryHandle factory;
    std::vector<EffectGuid> list(60, EffectGuid{});
    uint32_t count = 40;
    EXPECT_EQ(factory->EnumerateEffects(list.data(), &count), kInvalidArgument);
    EXPECT_EQ(count, 40U);
    EXPECT_TRUE(SameGuid(list[0], EffectGuid{}));
    for (const uint32_t room : {41U, 60U}) {
        count = room;
        EXPECT_EQ(factory->EnumerateEffects(list.data(), &count), kSuccess);
        EXPECT_EQ(count, 41U);
        EXPECT_TRUE(SameGuid(list[41], EffectGuid{}));
    }
}

TEST(Factory, ListsOneEffectTwiceAndOneThatCannotBeCreated) {
    FactoryHandle factory;
    std::vector<EffectGuid> list(41);
    uint32_t count = 41;
    ASSERT_EQ(factory->EnumerateEffects(list.data(), &count), kSuccess);
    EXPECT_TRUE(SameGuid(list[6], kGraphicPen3));
    EXPECT_TRUE(SameGuid(list[28], kGraphicPen3));
    EXPECT_TRUE(SameGuid(list[39], kSepia));
    EXPECT_TRUE(SameGuid(list[40], kListedOnly));
    for (size_t i = 0; i < list.size(); ++i) {
        for (size_t k = i + 1; k < list.size(); ++k) {
            EXPECT_EQ(SameGuid(list[i], list[k]), i == 6 && k == 28) << i << " and " << k;
        }
    }
    auto* const untouched = reinterpret_cast<CSpecialEffectFilter*>(uintptr_t{0x5A5A});
    CSpecialEffectFilter* effect = untouched;
    EXPECT_EQ(factory->CreateEffect(list[40], 0, &effect), kFailure);
    EXPECT_EQ(effect, untouched);
}

TEST(Factory, RefusesWhatItDoesNotKnow) {
    FactoryHandle factory;
    EXPECT_EQ(factory->CreateEffect(kSepia, 0, nullptr), kInvalidArgument);
    CSpecialEffectFilter* effect = nullptr;
    EXPECT_EQ(factory->CreateEffect(EffectGuid{}, 0, &effect), kFailure);
    EXPECT_EQ(effect, nullptr);
    factory->DestroyEffect(nullptr);
    EXPECT_EQ(factory->ReservedQuery(1, 2, 3, 4, 5), 0U);
    factory->ReservedNoOp();
}

TEST(Factory, CountsReferencesFromZero) {
    // Destroyed by the first Release with no reference added as well as with one: leaks and double frees show
    // under AddressSanitizer.
    ISpecialEffectFactory* none = CreateSpecialEffectFactory();
    EXPECT_EQ(none->Release(), 0U);
    ISpecialEffectFactory* one = CreateSpecialEffectFactory();
    EXPECT_EQ(one->AddRef(), 0U);
    EXPECT_EQ(one->Release(), 0U);
    ISpecialEffectFactory* two = CreateSpecialEffectFactory();
    two->AddRef();
    two->AddRef();
    EXPECT_EQ(two->Release(), 0U);
    uint32_t count = 0;
    EXPECT_EQ(two->EnumerateEffects(nullptr, &count), kSuccess);
    EXPECT_EQ(two->Release(), 0U);
}

TEST(Factory, EffectsOutliveIt) {
    CSpecialEffectFilter* effect = nullptr;
    {
        FactoryHandle factory;
        ASSERT_EQ(factory->CreateEffect(kSepia, 0xFFFFFFFF, &effect), kSuccess);
    }
    char name[16];
    EXPECT_EQ(effect->GetInternalInfo()->GetName(name, sizeof name), 1);
    EXPECT_STREQ(name, "Sepia");
    FactoryHandle another;
    another->DestroyEffect(effect);
}

TEST(Guid, IsReadFromRegistryForm) {
    constexpr EffectGuid guid = ParseGuid("{ABC27FCB-B469-428E-9A2F-C2117AD7148E}");
    const uint8_t bytes[16] = {0xCB, 0x7F, 0xC2, 0xAB, 0x69, 0xB4, 0x8E, 0x42,
                               0x9A, 0x2F, 0xC2, 0x11, 0x7A, 0xD7, 0x14, 0x8E};
    EXPECT_EQ(std::memcmp(&guid, bytes, 16), 0);
}

}  // namespace
