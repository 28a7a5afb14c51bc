// The list of effects is complete and true.
#include "framework/Catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/EffectDriver.h"
#include "tests/support/GoldenRun.h"
#include "tests/support/TestSurroundings.h"

namespace {

bool IsDashed(std::string_view text) {
    const auto allowed = [](unsigned char c) { return std::islower(c) || std::isdigit(c) || c == '-'; };
    return !text.empty() && std::all_of(text.begin(), text.end(), allowed) && text.front() != '-' &&
           text.back() != '-';
}

std::string RegistryForm(const EffectGuid& id) {
    const uint8_t* const d = id.Data4;
    char text[39];
    std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", id.Data1, id.Data2,
                  id.Data3, d[0], d[1], d[2], d[3], d[4], d[5], d[6], d[7]);
    return text;
}

bool IsSentence(std::string_view text) {
    return text.size() > 5 && std::isupper(static_cast<unsigned char>(text.front())) != 0 &&
           text.back() == '.' && text.find('\n') == std::string_view::npos;
}

TEST(Catalogue, NamesEachEffectOnce) {
    std::set<std::string> guids, names;
    EXPECT_FALSE(EffectCatalogue().empty());
    for (const CatalogueRow& row : EffectCatalogue()) {
        SCOPED_TRACE(row.shortName);
        EXPECT_EQ(RegistryForm(row.id), row.guid);
        EXPECT_TRUE(guids.insert(row.guid).second);
        EXPECT_TRUE(names.insert(row.shortName).second);
        EXPECT_TRUE(IsDashed(row.shortName));
        EXPECT_TRUE(IsSentence(row.description)) << row.description;
        EXPECT_TRUE(IsDashed(KindName(row.kind)));
        const std::string number = std::to_string(row.variant);
        if (row.variant != CatalogueRow::kOnly) {
            EXPECT_TRUE(std::string_view(row.shortName).ends_with(number));
        }
        EXPECT_NE(EffectDriver(row.create()).Name(), "");
    }
}

TEST(Catalogue, HasWordsForEachProperty) {
    for (const CatalogueRow& row : EffectCatalogue()) {
        SCOPED_TRACE(row.shortName);
        const EffectDriver effect(row.create());
        CInternalInfo& info = *effect->GetInternalInfo();
        const std::vector<PropertyWords> words = row.words();
        ASSERT_EQ(words.size(), static_cast<size_t>(info.GetPropCount()));
        for (int32_t i = 0; i < info.GetPropCount(); ++i) {
            const PropertyWords& property = words[static_cast<size_t>(i)];
            char name[256], text[256], range[256];
            const PropTypeSet type = info.GetPropTypeInfo(i, name, 256U, text, 256U, range, 256U);
            EXPECT_STREQ(property.name, name);
            EXPECT_TRUE(IsSentence(property.description)) << name;
            int32_t lowest = 0, highest = 1;
            if (type == PropTypeSet::Integer) {
                ASSERT_EQ(std::sscanf(range, "%d,%d", &lowest, &highest), 2) << name;
            }
            std::set<std::string> ids;
            for (const ValueName& value : property.values) {
                EXPECT_NE(type, PropTypeSet::Color);
                EXPECT_TRUE(IsDashed(value.id)) << value.id;
                EXPECT_TRUE(ids.insert(value.id).second) << value.id;
                EXPECT_STRNE(value.description, "") << value.id;
                EXPECT_GE(value.value, lowest) << value.id;
                EXPECT_LE(value.value, highest) << value.id;
            }
            if (!ids.empty()) {
                EXPECT_EQ(ids.size(), static_cast<size_t>(highest - lowest + 1)) << name;
            }
        }
    }
}

/// Notes what an effect asks for.
class WatchingSurroundings : public TestSurroundings {
  public:
    uint32_t traits = 0;
    std::string file;

    int32_t Rand() override {
        traits |= kUsesChance;
        return TestSurroundings::Rand();
    }
    int64_t Milliseconds() override {
        traits |= kUsesTime;
        return TestSurroundings::Milliseconds();
    }
    std::string DataFile(const std::string& name) override {
        file = name;
        return TestSurroundings::DataFile(name);
    }
};

/// Shows an effect one picture `count` times and another one after that; the last `kept` frames that come
/// out.
std::vector<TestFrame> Show(const CatalogueRow& row, const TestFrame& first, int count, const TestFrame& last,
                            size_t kept, WatchingSurroundings& surroundings) {
    const SurroundingsScope scope(surroundings);
    EffectDriver effect(row.create());
    EXPECT_EQ(effect.Configure(first.width(), first.height()), kSuccess);
    std::vector<TestFrame> frames;
    for (int i = 0; i <= count; ++i) {
        surroundings.now += 40;
        frames.push_back(i < count ? first : last);
        EXPECT_EQ(effect.Process(frames.back()), kSuccess);
        if (frames.size() > kept) frames.erase(frames.begin());
    }
    return frames;
}

/// A scene, a little brighter or darker.
TestFrame Scene(int change) {
    TestFrame frame = TestFrame(160, 120).DrawScene(1);
    for (uint8_t& pixel : frame.plane(0)) pixel = static_cast<uint8_t>(std::clamp(pixel + change, 0, 255));
    return frame;
}

TEST(Catalogue, SaysWhatAHostCanExpect) {
    const TemporaryDirectory directory;
    std::ofstream pictures("perlin.dat", std::ios::binary);
    for (int i = 0; i < 20; ++i) pictures << std::string(640 * 480, static_cast<char>(5 * i));
    pictures.close();
    const TestFrame scene = Scene(0);
    for (const CatalogueRow& row : EffectCatalogue()) {
        SCOPED_TRACE(row.shortName);
        // Picture Me needs a face in the picture.
        if (row.kind == EffectKind::Faces) continue;
        WatchingSurroundings surroundings;
        const std::vector<TestFrame> still = Show(row, scene, 100, scene, 20, surroundings);
        uint32_t traits = surroundings.traits;
        for (const TestFrame& frame : still) {
            if (FirstDifference(frame, still[0]) != "") traits |= kMoves;
        }
        for (const TestFrame& before :
             {Scene(2), Scene(-2), TestFrame(160, 120).Randomize(1), TestFrame(160, 120).Fill(90, 20, 220)}) {
            WatchingSurroundings others;
            const std::vector<TestFrame> after = Show(row, before, 100, scene, 1, others);
            if (FirstDifference(after[0], still.back()) != "") traits |= kHasMemory;
        }
        EXPECT_EQ(row.traits, traits);
        // The bitmap of Logo Animation may be missing.
        const std::string needed = surroundings.file == "logo3.bmp" ? "" : surroundings.file;
        EXPECT_EQ(row.dataFile != nullptr ? row.dataFile : "", needed);
    }
}

}  // namespace
