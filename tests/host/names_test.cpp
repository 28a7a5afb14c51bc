#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>

#include "EffectNames.h"
#include "Errors.h"
#include "Module.h"

namespace {

using namespace host;

std::string MessageOf(const std::string& name) {
    try {
        RequireEffect(name);
    } catch (const UsageError& error) {
        return error.what();
    }
    return {};
}

TEST(EffectNames, AreNumberedAndUnique) {
    std::set<std::string_view> names, guids;
    int number = 0;
    for (const EffectName& effect : AllEffects()) {
        EXPECT_EQ(effect.number, ++number);
        EXPECT_TRUE(names.insert(effect.shortName).second) << effect.shortName;
        EXPECT_TRUE(guids.insert(effect.guid).second) << effect.guid;
        EXPECT_EQ(GuidText(effect.Guid()), effect.guid);
    }
    EXPECT_EQ(number, 63);
}

TEST(EffectNames, VariantStandsInTheShortName) {
    for (const EffectName& effect : AllEffects()) {
        const std::string name(effect.shortName);
        const size_t digits = name.find_first_of("0123456789");
        EXPECT_EQ(effect.variant.has_value(), digits != std::string::npos) << name;
        if (effect.variant) {
            EXPECT_EQ(name.substr(digits), std::to_string(*effect.variant));
        }
    }
}

TEST(EffectNames, AreThoseOfTheModule) {
    const Module module(SE_MODULE);
    for (const EffectName& effect : AllEffects()) {
        const EffectHandle handle = module.Create(effect.Guid());
        ASSERT_TRUE(handle) << effect.shortName;
        EXPECT_EQ(NameOf(*handle), effect.displayName);
    }
}

TEST(EffectNames, CoverTheListingButForOneEntry) {
    int unknown = 0;
    for (const EffectGuid& guid : Module(SE_MODULE).Listing()) unknown += FindEffect(guid) == nullptr ? 1 : 0;
    EXPECT_EQ(unknown, 1);
}

TEST(EffectNames, AreFoundInAnyForm) {
    const auto number = [](const char* text) {
        const EffectName* effect = FindEffect(text);
        return effect == nullptr ? 0 : effect->number;
    };
    EXPECT_EQ(number("sepia"), 63);
    EXPECT_EQ(number("SEPIA"), 63);
    EXPECT_EQ(number("graphic-pen-3"), 3);
    EXPECT_EQ(number("Graphic Pen 3"), 3);
    EXPECT_EQ(number("Graphic Pen"), 1) << "the first of that name";
    EXPECT_EQ(number("Camera Flashes"), 33);
    EXPECT_EQ(number("camera-flashes-9"), 41);
    EXPECT_EQ(number("Motion Blur - Ghost"), 45);
    EXPECT_EQ(number("motion-blur-1"), 47);
    EXPECT_EQ(number("Blockhead"), 54);
    EXPECT_EQ(number("{3BF3AE40-0316-41B9-84C5-A8C671212CAC}"), 63);
    EXPECT_EQ(number("3bf3ae40-0316-41b9-84c5-a8c671212cac"), 63);
    EXPECT_EQ(number("{8AAE654A-D222-4D8A-968F-937591B1B696}"), 0) << "only listed";
    EXPECT_EQ(number(""), 0);
    EXPECT_EQ(number("sepia-1"), 0);
}

TEST(EffectNames, RefuseBrokenGuids) {
    for (const char* text :
         {"", "{}", "{3BF3AE40-0316-41B9-84C5-A8C671212CAC", "3BF3AE40-0316-41B9-84C5-A8C671212CAC}",
          "{3BF3AE40-0316-41B9-84C5-A8C671212CAG}", "{3BF3AE40x0316-41B9-84C5-A8C671212CAC}",
          "{-BF3AE40-0316-41B9-84C5-A8C671212CAC}", "{3BF3AE40-0316-41B9-84C5-A8C671212CACC}"}) {
        EXPECT_FALSE(ParseGuid(text)) << text;
    }
}

TEST(EffectNames, SuggestTheNearest) {
    EXPECT_NE(MessageOf("sepai").find("did you mean sepia?"), std::string::npos);
    EXPECT_NE(MessageOf("grayscale").find("gray-scale"), std::string::npos);
    EXPECT_NE(MessageOf("sktch-2").find("did you mean sketch-2"), std::string::npos);
    EXPECT_NE(MessageOf("camera").find("camera-flashes-1"), std::string::npos)
        << "a beginning counts as near";
    EXPECT_NE(MessageOf("pencil").find("did you mean colored-pencil?"), std::string::npos)
        << "and so does any other piece";
    EXPECT_NE(MessageOf("blur").find("motion-blur-0, motion-blur-1"), std::string::npos);
    EXPECT_NE(MessageOf("zzzzzzzzzzzzzzzz").find("list --all"), std::string::npos);
    EXPECT_LE(NearestNames("camera-flashes").size(), 3u);
}

}  // namespace
