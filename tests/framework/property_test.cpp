// The property machinery, through an effect defined here that uses all of it.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>

#include "framework/EffectBase.h"
#include "tests/support/EffectDriver.h"
#include "tests/support/Wide.h"

namespace {

class CSampleEffect final : public PlanarEffect<CSampleEffect> {
  public:
    static constexpr const char* DisplayName = "Sample";

    static std::span<const Property<CSampleEffect>> Properties() {
        static constexpr Property<CSampleEffect> rows[] = {
            IntegerProperty<&CSampleEffect::Intensity>("Intensity", "16", "1,24"),
            IntegerProperty<&CSampleEffect::Depth>("Depth Of It", "90", "1,100").ClampedTo(0, 100),
            BooleanProperty<&CSampleEffect::Soft>("Soft", "TRUE"),
            ColorProperty<&CSampleEffect::Color>("Color", "0,0,192"),
            IntegerProperty<&CSampleEffect::Wanted>("Mode", "1", "1,7")
                .OnSet([](CSampleEffect& effect, int32_t mode) {
                    effect.Wanted = mode;
                    ++effect.Sets;
                })
                .OnGet([](const CSampleEffect& effect) { return effect.Sets; }),
            ColorProperty<CSampleEffect>(
                "Color 2", "0,0,0",
                [](const CSampleEffect& effect) { return static_cast<int32_t>(effect.Colors[1]); },
                [](CSampleEffect& effect, int32_t color) {
                    effect.Colors[1] = static_cast<uint32_t>(color);
                }),
        };
        return rows;
    }

    void ProcessPlanar(const PlanarFrame&) {}

    int32_t Intensity = 16;
    int16_t Depth = 90;
    bool Soft = false;
    uint32_t Color = 0xFF8000;
    int32_t Wanted = 1, Sets = 0;
    uint32_t Colors[2] = {};
};

TEST(PropertyRows, HoldWhatTheyAreMadeFrom) {
    const std::string range = "2,16";  // not a constant: the rows are made when the test runs
    static constexpr ValueName kNames[] = {{2, "two", "a pair"}};
    CSampleEffect effect;

    const auto plain = IntegerProperty<&CSampleEffect::Intensity>("Intensity", "3", range.c_str());
    EXPECT_EQ(plain.type, PropTypeSet::Integer);
    EXPECT_STREQ(plain.name, "Intensity");
    EXPECT_STREQ(plain.defaultText, "3");
    EXPECT_EQ(plain.range, range.c_str());
    EXPECT_EQ(std::pair(plain.lowest, plain.highest), std::pair(2, 16));
    EXPECT_STREQ(plain.description, "");
    EXPECT_TRUE(plain.values.empty());
    plain.set(effect, 7);
    EXPECT_EQ(effect.Intensity, 7);
    EXPECT_EQ(plain.get(effect), 7);

    const auto changed = plain.Says("How much.", kNames)
                             .ClampedTo(-1, 5)
                             .OnSet([](CSampleEffect& sample, int32_t value) { sample.Wanted = value; })
                             .OnGet([](const CSampleEffect& sample) { return sample.Wanted + 1; });
    EXPECT_STREQ(changed.name, "Intensity");
    EXPECT_EQ(changed.range, range.c_str());
    EXPECT_EQ(std::pair(changed.lowest, changed.highest), std::pair(-1, 5));
    EXPECT_STREQ(changed.description, "How much.");
    EXPECT_EQ(changed.values.data(), kNames);
    changed.set(effect, 3);
    EXPECT_EQ(effect.Wanted, 3);
    EXPECT_EQ(changed.get(effect), 4);

    const std::string name = "Name";
    const auto boolean = BooleanProperty<&CSampleEffect::Soft>(name.c_str(), "TRUE");
    EXPECT_EQ(boolean.type, PropTypeSet::Boolean);
    EXPECT_EQ(std::pair(boolean.lowest, boolean.highest), std::pair(0, 1));
    EXPECT_STREQ(boolean.range, "");
    boolean.set(effect, 1);
    EXPECT_TRUE(effect.Soft);

    const auto color = ColorProperty<&CSampleEffect::Color>(name.c_str(), "0,0,192");
    const auto other = ColorProperty<CSampleEffect>(name.c_str(), "0,0,192", color.get, color.set);
    for (const Property<CSampleEffect>& row : {color, other}) {
        EXPECT_EQ(row.type, PropTypeSet::Color);
        EXPECT_EQ(row.name, name.c_str());
        EXPECT_STREQ(row.defaultText, "0,0,192");
        EXPECT_EQ(std::pair(row.lowest, row.highest), std::pair(INT32_MIN, INT32_MAX));
        EXPECT_EQ(row.get, color.get);
        EXPECT_EQ(row.set, color.set);
    }
}

TEST(Properties, AreFoundInAnyCase) {
    auto effect = EffectDriver::Of<CSampleEffect>();
    EXPECT_EQ(effect.Set("INTENSITY", "5"), kSuccess);
    EXPECT_EQ(effect.Get("intensity"), "5");
    EXPECT_EQ(effect.Set("dEPTH oF iT", "7"), kSuccess);
    EXPECT_EQ(effect.Get("Depth Of It"), "7");
    EXPECT_EQ(effect.Set("Depth", "7"), kInvalidArgument);
    EXPECT_EQ(effect.Set("Depth Of It ", "7"), kInvalidArgument);
    EXPECT_EQ(effect.Set("", "7"), kInvalidArgument);
}

TEST(Properties, AreClampedAndNeverRefused) {
    auto effect = EffectDriver::Of<CSampleEffect>();
    for (const auto& [text, stored] : {std::pair{"999", "24"},
                                       {"0", "1"},
                                       {"-5", "1"},
                                       {"12", "12"},
                                       {" 13xyz", "13"},
                                       {"nothing", "1"},
                                       {"", "1"},
                                       {"99999999999999999999", "24"},
                                       {"-99999999999999999999", "1"},
                                       {"+9", "9"}}) {
        EXPECT_EQ(effect.Set("Intensity", text), kSuccess) << text;
        EXPECT_EQ(effect.Get("Intensity"), stored) << text;
    }
    EXPECT_EQ(effect.Set("Depth Of It", "-3"), kSuccess);
    EXPECT_EQ(effect.Get("Depth Of It"), "0");
}

TEST(Properties, BooleansAndColours) {
    auto effect = EffectDriver::Of<CSampleEffect>();
    ExpectBooleanProperty(effect, "Soft", false);
    EXPECT_EQ(effect.Get("Color"), "0,128,255");
    EXPECT_EQ(effect.Set("Color", "300,-5,7"), kSuccess);
    EXPECT_EQ(effect.Get("Color"), "255,0,7");
    EXPECT_EQ(effect.Set("Color", "12,34"), kSuccess);
    EXPECT_EQ(effect.Get("Color"), "0,0,0");
    EXPECT_EQ(effect.Set("Color 2", "1,2,3"), kSuccess);
    EXPECT_EQ(effect.Get("COLOR 2"), "1,2,3");
    EXPECT_EQ(effect.Get("Color"), "0,0,0");
}

TEST(Properties, MayDoMoreThanBeStored) {
    auto effect = EffectDriver::Of<CSampleEffect>();
    EXPECT_EQ(effect.Get("Mode"), "0");
    EXPECT_EQ(effect.Set("Mode", "100"), kSuccess);
    EXPECT_EQ(effect.Get("Mode"), "1");
    EXPECT_EQ(static_cast<CSampleEffect&>(*effect).Wanted, 7);
}

TEST(Properties, RefuseMissingTexts) {
    auto effect = EffectDriver::Of<CSampleEffect>();
    char name[] = "Intensity", value[256] = "3";
    for (PropertyRecord record :
         {PropertyRecord{0, nullptr, value}, {0, name, nullptr}, {0, nullptr, nullptr}}) {
        EXPECT_EQ(effect->SetProperty(&record), kInvalidArgument);
        EXPECT_EQ(effect->GetProperty(&record), kInvalidArgument);
    }
    EXPECT_EQ(effect->SetProperty(static_cast<PropertyRecord*>(nullptr)), kInvalidArgument);
    EXPECT_EQ(effect->GetProperty(static_cast<WidePropertyRecord*>(nullptr)), kInvalidArgument);
    EXPECT_EQ(effect->ApplyProperty(static_cast<WidePropertyRecord*>(nullptr), 1), kSuccess);
    EXPECT_EQ(effect->LoadSettings(static_cast<WideSettingsRecord*>(nullptr)), kSuccess);
}

TEST(Properties, WideFormsAreTheSameOperations) {
    auto effect = EffectDriver::Of<CSampleEffect>();
    WideChar name[256] = WIDE("INTENSITY"), value[256] = WIDE("999");
    WidePropertyRecord record{42, name, value};
    EXPECT_EQ(effect->SetProperty(&record), kSuccess);
    value[0] = WIDE('\0');
    EXPECT_EQ(effect->GetProperty(&record), kSuccess);
    EXPECT_EQ(std::basic_string<WideChar>(value), WIDE("24"));
    EXPECT_EQ(std::basic_string<WideChar>(name), WIDE("INTENSITY"));
    EXPECT_EQ(record.Cookie, 42U);

    // An unknown name is refused, and both texts come back as they went in.
    WideChar unknown[256] = WIDE("Gr\u00F6\u00DFe \U0001F600"), other[256] = WIDE("\u20AC5");
    record = {42, unknown, other};
    EXPECT_EQ(effect->GetProperty(&record), kInvalidArgument);
    EXPECT_EQ(std::basic_string<WideChar>(unknown), WIDE("Gr\u00F6\u00DFe \U0001F600"));
    EXPECT_EQ(std::basic_string<WideChar>(other), WIDE("\u20AC5"));
}

TEST(Properties, OverlongTextsAreCut) {
    auto effect = EffectDriver::Of<CSampleEffect>();
    const std::string longText(10000, '7');
    EXPECT_EQ(effect.Set("Intensity", longText), kSuccess);
    EXPECT_EQ(effect.Get("Intensity"), "24");
    EXPECT_EQ(effect.Set(longText, "1"), kInvalidArgument);
    std::basic_string<WideChar> wideName = WIDE("Intensity"), wideValue(10000, WIDE('\u20AC'));
    WidePropertyRecord record{0, wideName.data(), wideValue.data()};
    EXPECT_EQ(effect->SetProperty(&record), kSuccess);
    EXPECT_EQ(effect.Get("Intensity"), "1");
}

TEST(InternalInfo, ServesTheTable) {
    auto effect = EffectDriver::Of<CSampleEffect>();
    CInternalInfo* const info = effect->GetInternalInfo();
    EXPECT_EQ(info->GetPropCount(), 6);
    EXPECT_EQ(effect->GetPropCount(), 0);
    char name[32], text[32], range[32];
    EXPECT_EQ(info->GetPropTypeInfo(1, name, 32, text, 32, range, 32), PropTypeSet::Integer);
    EXPECT_STREQ(name, "Depth Of It");
    EXPECT_STREQ(text, "90");
    EXPECT_STREQ(range, "1,100");
    EXPECT_EQ(effect->GetPropTypeInfo(1, name, 32, text, 32, range, 32), PropTypeSet::None);
    EXPECT_EQ(info->GetPropTypeInfo(3, name, 32, text, 4, range, 32), PropTypeSet::Color);
    EXPECT_STREQ(text, "0,0");
    EXPECT_STREQ(range, "");
    for (const int32_t index : {-1, 6, 1000}) {
        EXPECT_EQ(info->GetPropTypeInfo(index, name, 32, text, 32, range, 32), PropTypeSet::None);
    }
    // Sizes of 0, null buffers and sizes beyond what a text can have leave a field out.
    std::strcpy(name, "kept");
    EXPECT_EQ(info->GetPropTypeInfo(0, name, 0, nullptr, 5, range, 0x80000000U), PropTypeSet::Integer);
    EXPECT_STREQ(name, "kept");

    WideChar wide[8];
    EXPECT_EQ(info->GetPropTypeInfo(0, wide, 8, nullptr, 9, wide, 0), PropTypeSet::Integer);
    EXPECT_EQ(std::basic_string<WideChar>(wide), WIDE("Intensi"));
}

TEST(InternalInfo, CutsTheName) {
    auto effect = EffectDriver::Of<CSampleEffect>();
    CInternalInfo* const info = effect->GetInternalInfo();
    const std::string full = "Sample";
    for (uint32_t size = 0; size <= 40; ++size) {
        char narrow[48];
        WideChar wide[48];
        std::memset(narrow, '#', sizeof narrow);
        std::fill(std::begin(wide), std::end(wide), WIDE('#'));
        const int32_t whole = size > full.size() ? 1 : 0;
        EXPECT_EQ(info->GetName(narrow, size), whole) << size;
        EXPECT_EQ(info->GetName(wide, static_cast<int32_t>(size)), whole) << size;
        EXPECT_EQ(narrow[size], '#');
        EXPECT_EQ(wide[size], WIDE('#'));
        if (size == 0) continue;
        const std::string expected = full.substr(0, size - 1);
        EXPECT_EQ(std::string(narrow), expected);
        EXPECT_EQ(std::basic_string<WideChar>(wide),
                  std::basic_string<WideChar>(expected.begin(), expected.end()));
    }
    EXPECT_EQ(info->GetName(static_cast<char*>(nullptr), 10), 0);
    EXPECT_EQ(info->GetName(static_cast<WideChar*>(nullptr), 10), 0);
    WideChar wide[4];
    EXPECT_EQ(info->GetName(wide, -1), 0);
    char narrow[4];
    EXPECT_EQ(info->GetName(narrow, 0x80000000U), 0);
}

}  // namespace
