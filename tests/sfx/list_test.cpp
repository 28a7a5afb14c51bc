// The list of effects, against the module's own tables.
#include <gtest/gtest.h>

#include <cstring>
#include <set>

#include "framework/Catalogue.h"
#include "tests/sfx/Handles.h"
#include "tests/support/EffectDriver.h"

namespace {

bool IsDashedLower(const std::string& id) {
    return !id.empty() && id.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-") == std::string::npos;
}

TEST(List, HasAllThatCanBeCreated) {
    EXPECT_EQ(sfx_effect_count(), EffectCatalogue().size());
    EXPECT_EQ(sfx_effect_at(sfx_effect_count()), nullptr);
    EXPECT_EQ(sfx_effect_at(SIZE_MAX), nullptr);
    std::set<std::string> ids, titles, guids, kinds;
    size_t listed = 0;
    for (size_t i = 0; i < sfx_effect_count(); ++i) {
        const sfx_effect_info& info = *sfx_effect_at(i);
        EXPECT_EQ(info.struct_size, sizeof info);
        EXPECT_TRUE(IsDashedLower(info.id)) << info.id;
        EXPECT_TRUE(ids.insert(info.id).second);
        EXPECT_TRUE(titles.insert(info.title).second) << info.title;
        EXPECT_TRUE(guids.insert(info.guid).second);
        EXPECT_EQ(std::strncmp(info.title, info.name, std::strlen(info.name)), 0);
        EXPECT_EQ(EffectDriver(EffectCatalogue()[i].create()).Name(), info.name);
        EXPECT_STRNE(info.description, "");
        EXPECT_EQ((info.flags & SFX_NEEDS_DATA) != 0, info.data_file != nullptr);
        EXPECT_EQ(&info, sfx_effect_at(i));
        kinds.insert(info.kind);
        listed += (info.flags & SFX_LISTED) != 0 ? 1 : 0;
        const EffectHandle effect = Create(info.id);
        EXPECT_EQ(sfx_link_count(effect.get()), 1U);
        EXPECT_EQ(sfx_link_info(effect.get(), 0), &info);
        EXPECT_EQ(sfx_link_info(effect.get(), 1), nullptr);
        EXPECT_EQ(Print(effect.get()), info.id);
    }
    EXPECT_EQ(kinds, (std::set<std::string>{"animated", "distortion", "drawing", "faces", "time", "tone"}));
    EXPECT_EQ(listed, 39U);  // of 41 entries, one comes twice and one cannot be created
}

// GetProperty's answer on a configured new object, not the table's default text.
TEST(List, GivesTheValuesThatEffectsStartWith) {
    const Home home;
    size_t properties = 0;
    for (size_t i = 0; i < sfx_effect_count(); ++i) {
        const sfx_effect_info& info = *sfx_effect_at(i);
        EffectDriver direct(EffectCatalogue()[i].create());
        ASSERT_EQ(direct.Configure(640, 480), kSuccess);
        ASSERT_EQ(static_cast<size_t>(direct->GetInternalInfo()->GetPropCount()), info.property_count);
        const EffectHandle effect = Create(info.id);
        for (size_t j = 0; j < info.property_count; ++j, ++properties) {
            const sfx_property_info& property = *info.properties[j];
            SCOPED_TRACE(std::string(info.id) + " " + property.id);
            char name[256], text[256], range[256];
            const PropTypeSet type = direct->GetInternalInfo()->GetPropTypeInfo(
                static_cast<int32_t>(j), name, sizeof name, text, sizeof text, range, sizeof range);
            EXPECT_EQ(property.struct_size, sizeof property);
            EXPECT_TRUE(IsDashedLower(property.id));
            EXPECT_STRNE(property.description, "");
            EXPECT_STRNE(property.name, "");
            EXPECT_LE(property.minimum, property.start);
            EXPECT_GE(property.maximum, property.start);
            int lowest = 0, highest = 0;
            switch (type) {
                case PropTypeSet::Integer:
                    ASSERT_EQ(std::sscanf(range, "%d,%d", &lowest, &highest), 2);
                    EXPECT_LE(property.minimum, lowest);
                    EXPECT_GE(property.maximum, highest);
                    EXPECT_TRUE(property.type == SFX_INTEGER || property.type == SFX_CHOICE);
                    EXPECT_EQ(std::to_string(property.start), direct.Get(name));
                    break;
                case PropTypeSet::Boolean:
                    EXPECT_EQ(property.type, SFX_BOOLEAN);
                    EXPECT_EQ(property.start != 0, direct.Get(name) == "TRUE");
                    break;
                case PropTypeSet::Color: {
                    int red = 0, green = 0, blue = 0;
                    ASSERT_EQ(std::sscanf(direct.Get(name).c_str(), "%d,%d,%d", &red, &green, &blue), 3);
                    EXPECT_EQ(property.type, SFX_COLOR);
                    EXPECT_EQ(property.start, red << 16 | green << 8 | blue);
                    break;
                }
                case PropTypeSet::None:
                    FAIL();
            }
            EXPECT_EQ(property.type == SFX_CHOICE, property.choice_count > 0 && property.type != SFX_BOOLEAN);
            for (size_t k = 0; k < property.choice_count; ++k) {
                const sfx_choice& choice = property.choices[k];
                EXPECT_TRUE(IsDashedLower(choice.id)) << choice.id;
                EXPECT_GE(choice.value, property.minimum);
                EXPECT_LE(choice.value, property.maximum);
                ASSERT_EQ(sfx_set(effect.get(), property.id, choice.id), SFX_OK);
                int32_t value = -1;
                ASSERT_EQ(sfx_get_int(effect.get(), property.id, &value), SFX_OK);
                EXPECT_EQ(value, choice.value);
                if (property.type == SFX_CHOICE) {
                    EXPECT_EQ(Get(effect, property.id), choice.id);
                }
            }
        }
    }
    EXPECT_GT(properties, 50U);
}

TEST(List, FindsByAnyName) {
    const char* const texts[] = {"sketch-2",
                                 "SKETCH-2",
                                 " Sketch_2 ",
                                 "Sketch 2",
                                 "{4DD74959-BE0F-44B1-92B6-043DC61D9F39}",
                                 "4dd74959-be0f-44b1-92b6-043dc61d9f39"};
    for (const char* text : texts) {
        const sfx_effect_info* const info = sfx_find(text);
        ASSERT_NE(info, nullptr) << text;
        EXPECT_STREQ(info->id, "sketch-2");
    }
    EXPECT_STREQ(sfx_find("Sketch")->id, "sketch-1");
    EXPECT_STREQ(sfx_find("graphic pen")->id, "graphic-pen-1");
    EXPECT_STREQ(sfx_find("Motion Blur - Ghost")->id, "motion-blur-0");
    EXPECT_EQ(sfx_find("sepai"), nullptr);
    EXPECT_STREQ(sfx_message(), "there is no effect \"sepai\"; did you mean sepia?");
    EXPECT_EQ(sfx_find("sketch"), sfx_find("sketch-1"));
    EXPECT_EQ(sfx_find("pen"), nullptr);
    EXPECT_NE(std::string(sfx_message()).find("did you mean graphic-pen-1, graphic-pen-2 or graphic-pen-3?"),
              std::string::npos)
        << sfx_message();
    EXPECT_EQ(sfx_find(""), nullptr);
    EXPECT_EQ(sfx_find("{8AAE654A-D222-4D8A-968F-937591B1B696}"), nullptr);  // listed, but made by nothing
    EXPECT_EQ(sfx_find(nullptr), nullptr);
    EXPECT_EQ(sfx_find(std::string(100000, 'x').c_str()), nullptr);
    EXPECT_LT(std::strlen(sfx_message()), 200U);
}

TEST(List, NamesFormats) {
    std::set<std::string> names;
    for (int32_t format = 0; format < SFX_FORMAT_COUNT; ++format) {
        ASSERT_NE(sfx_format_name(format), nullptr);
        EXPECT_TRUE(names.insert(sfx_format_name(format)).second);
        std::string upper = sfx_format_name(format);
        for (char& c : upper) {
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        }
        int32_t found = -1;
        EXPECT_EQ(sfx_format_from_name(upper.c_str(), &found), SFX_OK);
        EXPECT_EQ(found, format);
        EXPECT_GE(sfx_format_planes(format), 1);
        EXPECT_EQ(sfx_plane_rows(format, sfx_format_planes(format), 5), 0);
        EXPECT_EQ(sfx_plane_rows(format, -1, 5), 0);
        EXPECT_EQ(sfx_plane_rows(format, 0, 0), 0);
        EXPECT_EQ(sfx_plane_row_bytes(format, 0, SFX_MAX_SIDE + 1), 0U);
    }
    int32_t format = 0;
    EXPECT_EQ(sfx_format_from_name("p010", &format), SFX_ERROR_UNKNOWN);
    EXPECT_EQ(sfx_format_from_name(nullptr, &format), SFX_ERROR_ARGUMENT);
    EXPECT_EQ(sfx_format_name(SFX_FORMAT_COUNT), nullptr);
    EXPECT_EQ(sfx_format_name(-1), nullptr);
    EXPECT_EQ(sfx_format_planes(99), 0);
    EXPECT_EQ(sfx_plane_row_bytes(SFX_YUY2, 0, 5), 12U);
    EXPECT_EQ(sfx_plane_row_bytes(SFX_NV12, 1, 5), 6U);
    EXPECT_EQ(sfx_plane_rows(SFX_NV12, 1, 5), 3);
    EXPECT_EQ(sfx_plane_rows(SFX_I422, 1, 5), 5);
    EXPECT_EQ(sfx_plane_row_bytes(SFX_I444, 2, 5), 5U);
}

TEST(List, HasTextsForEveryStatus) {
    std::set<std::string> texts;
    for (int32_t status = SFX_ERROR_FAILED; status <= SFX_DATA_MISSING; ++status) {
        EXPECT_TRUE(texts.insert(sfx_status_text(status)).second);
    }
    EXPECT_STREQ(sfx_status_text(12345), "unknown status");
    EXPECT_EQ(sfx_version(), SFX_VERSION);
    EXPECT_EQ(std::string(sfx_version_text()), std::to_string(SFX_VERSION_MAJOR) + "." +
                                                   std::to_string(SFX_VERSION_MINOR) + "." +
                                                   std::to_string(SFX_VERSION_PATCH));
}

}  // namespace
