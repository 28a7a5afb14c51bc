// What sfx.h promises, tested from outside, including calls that programs should not make but do.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "sfx/sfx.h"
#include "tests/sfx/Handles.h"
#include "tests/sfx/PlainPicture.h"

namespace {

std::vector<const sfx_effect_info*> AllEffects() {
    std::vector<const sfx_effect_info*> all;
    for (size_t i = 0; i < sfx_effect_count(); ++i) {
        all.push_back(sfx_effect_at(i));
    }
    return all;
}

/// Effects that do not need a data file, which takes seconds to make.
std::vector<const sfx_effect_info*> EffectsWithoutData() {
    std::vector<const sfx_effect_info*> all = AllEffects();
    std::erase_if(all, [](const sfx_effect_info* info) { return (info->flags & SFX_NEEDS_DATA) != 0; });
    return all;
}

sfx_status CreateStatus(const std::string& text) {
    sfx_effect* effect = nullptr;
    const sfx_status status = sfx_create(text.c_str(), &effect);
    EXPECT_EQ(effect != nullptr, status >= 0) << text.substr(0, 80);
    sfx_destroy(effect);
    return status;
}

int32_t GetInt(const EffectHandle& effect, const char* property) {
    int32_t value = INT32_MIN;
    EXPECT_EQ(sfx_get_int(effect.get(), property, &value), SFX_OK) << property;
    return value;
}

/// Gives each property a random value of its range; a choice one that has a name.
void SetAtRandom(const EffectHandle& effect, const sfx_effect_info& info, TestRandom& random) {
    for (size_t i = 0; i < info.property_count; ++i) {
        const sfx_property_info& property = *info.properties[i];
        const int64_t span = int64_t{property.maximum} - property.minimum + 1;
        const int32_t value =
            property.type == SFX_CHOICE
                ? property.choices[random.Below(static_cast<int32_t>(property.choice_count))].value
                : static_cast<int32_t>(property.minimum + random.Next() % span);
        EXPECT_EQ(sfx_set_int(effect.get(), property.id, value), SFX_OK) << property.id << " " << value;
    }
}

bool IsUtf8(const std::string& text) {
    for (size_t i = 0; i < text.size();) {
        const auto first = static_cast<uint8_t>(text[i++]);
        const int more = first < 0x80       ? 0
                         : first >> 5 == 6  ? 1
                         : first >> 4 == 14 ? 2
                         : first >> 3 == 30 ? 3
                                            : -1;
        if (more < 0) {
            return false;
        }
        for (int k = 0; k < more; ++k, ++i) {
            if (i >= text.size() || (static_cast<uint8_t>(text[i]) >> 6) != 2) {
                return false;
            }
        }
    }
    return true;
}

std::vector<uint64_t> Sums(const EffectHandle& effect, int frames, int32_t width = 64, int32_t height = 48) {
    std::vector<uint64_t> sums;
    for (int i = 0; i < frames; ++i) {
        TestFrame frame(width, height);
        frame.DrawScene(i);
        EXPECT_GE(Process(effect, frame, i), 0) << sfx_message();
        EXPECT_TRUE(frame.GuardsIntact());
        sums.push_back(frame.Checksum());
    }
    return sums;
}

// ---- arguments ---------------------------------------------------------------------------------------

TEST(Promises, NullPointersAreErrors) {
    const EffectHandle effect = Create("rain");
    sfx_effect* out = effect.get();
    int32_t number = 7;
    uint32_t seed = 7;
    char text[SFX_VALUE_SIZE] = "x";
    sfx_picture picture = SFX_PICTURE_INIT;
    const auto refused = [](int status) {
        EXPECT_EQ(status, SFX_ERROR_ARGUMENT);
        EXPECT_STRNE(sfx_message(), "");
        CreateStatus("no such effect at all");  // another message
    };
    refused(sfx_load_presets(nullptr));
    refused(sfx_create(nullptr, &out));
    EXPECT_EQ(out, nullptr);
    refused(sfx_create("rain", nullptr));
    out = effect.get();
    refused(sfx_clone(nullptr, &out));
    EXPECT_EQ(out, nullptr);
    refused(sfx_clone(effect.get(), nullptr));
    refused(sfx_print(nullptr, text, sizeof text));
    refused(sfx_print(nullptr, nullptr, 0));
    refused(sfx_print(effect.get(), nullptr, 1));
    refused(sfx_set(nullptr, "drop-size", "1"));
    refused(sfx_set(effect.get(), nullptr, "1"));
    refused(sfx_set(effect.get(), "drop-size", nullptr));
    refused(sfx_set_int(nullptr, "drop-size", 1));
    refused(sfx_set_int(effect.get(), nullptr, 1));
    refused(sfx_get(nullptr, "drop-size", text, sizeof text));
    refused(sfx_get(effect.get(), nullptr, text, sizeof text));
    refused(sfx_get(effect.get(), "drop-size", nullptr, sizeof text));
    refused(sfx_get(effect.get(), "drop-size", text, 0));
    refused(sfx_get_int(nullptr, "drop-size", &number));
    refused(sfx_get_int(effect.get(), nullptr, &number));
    refused(sfx_get_int(effect.get(), "drop-size", nullptr));
    refused(sfx_set_defaults(nullptr));
    refused(sfx_load_settings(nullptr, "/dev/null"));
    refused(sfx_load_settings(effect.get(), nullptr));
    refused(sfx_set_seed(nullptr, 1));
    refused(sfx_get_seed(nullptr, &seed));
    refused(sfx_get_seed(effect.get(), nullptr));
    refused(sfx_set_data_folder(nullptr, "/"));
    refused(sfx_format_from_name(nullptr, &number));
    refused(sfx_format_from_name("i420", nullptr));
    refused(sfx_process(nullptr, &picture, 0));
    refused(sfx_process(effect.get(), nullptr, 0));
    refused(sfx_prepare(nullptr, 64, 48));
    refused(sfx_reset(nullptr));

    EXPECT_EQ(number, 7);
    EXPECT_EQ(seed, 7U);
    EXPECT_STREQ(text, "x");
    EXPECT_EQ(sfx_set_data_folder(effect.get(), nullptr), SFX_OK);
    EXPECT_EQ(sfx_link_count(nullptr), 0U);
    EXPECT_EQ(sfx_link_info(nullptr, 0), nullptr);
    EXPECT_EQ(sfx_find(nullptr), nullptr);
    EXPECT_STRNE(sfx_message(), "");
    sfx_destroy(nullptr);
}

TEST(Promises, IndexesOutOfRangeGiveNothing) {
    const EffectHandle effect = Create("rain+sepia");
    for (const size_t beyond : {SIZE_MAX, SIZE_MAX / 2 + 1, size_t{1} << 31}) {
        EXPECT_EQ(sfx_effect_at(beyond), nullptr);
        EXPECT_EQ(sfx_preset_at(beyond), nullptr);
        EXPECT_EQ(sfx_link_info(effect.get(), beyond), nullptr);
    }
    EXPECT_EQ(sfx_effect_at(sfx_effect_count()), nullptr);
    EXPECT_EQ(sfx_preset_at(sfx_preset_count()), nullptr);
    EXPECT_EQ(sfx_link_info(effect.get(), 2), nullptr);
    for (const int32_t bad : {INT32_MIN, -1, SFX_FORMAT_COUNT, INT32_MAX}) {
        EXPECT_EQ(sfx_format_name(bad), nullptr);
        EXPECT_EQ(sfx_format_planes(bad), 0);
        EXPECT_EQ(sfx_plane_rows(bad, 0, 8), 0);
        EXPECT_EQ(sfx_plane_row_bytes(bad, 0, 8), 0U);
        EXPECT_EQ(sfx_picture_layout(nullptr, bad, 8, 8, nullptr), 0U);
        EXPECT_STRNE(sfx_status_text(bad), "");
    }
    for (int format = 0; format < SFX_FORMAT_COUNT; ++format) {
        for (const int32_t plane : {INT32_MIN, -1, sfx_format_planes(format), 4, INT32_MAX}) {
            EXPECT_EQ(sfx_plane_rows(format, plane, 8), 0);
            EXPECT_EQ(sfx_plane_row_bytes(format, plane, 8), 0U);
        }
        for (int32_t plane = 0; plane < sfx_format_planes(format); ++plane) {
            for (const int32_t side : {INT32_MIN, -1, 0}) {
                EXPECT_EQ(sfx_plane_rows(format, plane, side), 0) << side;
                EXPECT_EQ(sfx_plane_row_bytes(format, plane, side), 0U) << side;
            }
            // A size that is refused gives 0, not a wrong number.
            EXPECT_GE(sfx_plane_rows(format, plane, INT32_MAX), 0);
        }
        for (const int32_t side : {INT32_MIN, -1, 0, SFX_MAX_SIDE + 1, INT32_MAX}) {
            EXPECT_EQ(sfx_picture_layout(nullptr, format, side, 8, nullptr), 0U);
            EXPECT_EQ(sfx_picture_layout(nullptr, format, 8, side, nullptr), 0U);
        }
        EXPECT_GT(sfx_picture_layout(nullptr, format, SFX_MAX_SIDE, SFX_MAX_SIDE, nullptr),
                  size_t{SFX_MAX_SIDE} * SFX_MAX_SIDE);
    }
}

TEST(Promises, ALayoutHoldsExactlyItsPicture) {
    for (int format = 0; format < SFX_FORMAT_COUNT; ++format) {
        for (const auto& [width, height] : {std::pair{1, 1}, {1, 7}, {7, 1}, {13, 9}, {16, 8}}) {
            sfx_picture picture;
            std::memset(&picture, 0x55, sizeof picture);
            const size_t need = sfx_picture_layout(&picture, format, width, height, nullptr);
            EXPECT_EQ(picture.struct_size, sizeof picture);
            size_t sum = 0;
            for (int plane = 0; plane < sfx_format_planes(format); ++plane) {
                EXPECT_EQ(picture.planes[plane], nullptr);
                EXPECT_EQ(static_cast<size_t>(picture.strides[plane]),
                          sfx_plane_row_bytes(format, plane, width));
                sum += picture.sizes[plane];
            }
            EXPECT_EQ(sum, need);
            std::vector<uint8_t> memory(need + 64, 0xA7);
            EXPECT_EQ(sfx_picture_layout(&picture, format, width, height, memory.data() + 32), need);
            EXPECT_EQ(picture.matrix, SFX_BT601);
            EXPECT_EQ(picture.range, SFX_LIMITED);
            const EffectHandle effect = Create("polarize");
            EXPECT_EQ(sfx_process(effect.get(), &picture, 0), SFX_OK) << sfx_message();
            EXPECT_TRUE(
                std::all_of(memory.begin(), memory.begin() + 32, [](uint8_t b) { return b == 0xA7; }));
            EXPECT_TRUE(std::all_of(memory.end() - 32, memory.end(), [](uint8_t b) { return b == 0xA7; }));
        }
    }
}

TEST(Promises, StructuresOfUnknownSizeAreRefused) {
    const EffectHandle effect = Create("polarize");
    TestFrame frame(16, 16);
    const TestFrame before = frame;
    sfx_picture picture = PictureOf(frame);
    for (const size_t size : {size_t{0}, size_t{1}, sizeof picture - 1, sizeof picture / 2}) {
        picture.struct_size = size;
        EXPECT_EQ(sfx_process(effect.get(), &picture, 0), SFX_ERROR_ARGUMENT);
    }
    EXPECT_EQ(frame, before);
}

TEST(Promises, SizesOutOfRangeCannotBePrepared) {
    const EffectHandle effect = Create("sketch-2+rain");
    const std::vector<uint64_t> sums = Sums(effect, 2);
    ASSERT_EQ(sfx_reset(effect.get()), SFX_OK);
    for (const int32_t side : {INT32_MIN, -1, 0, SFX_MAX_SIDE + 1, INT32_MAX}) {
        EXPECT_EQ(sfx_prepare(effect.get(), side, 48), SFX_ERROR_PICTURE);
        EXPECT_EQ(sfx_prepare(effect.get(), 64, side), SFX_ERROR_PICTURE);
    }
    EXPECT_EQ(sfx_prepare(effect.get(), 1, 1), SFX_OK);
    EXPECT_EQ(Sums(effect, 2), sums);
}

// Every format and odd size, each plane one byte too small, with rows of every kind.
TEST(Promises, PlanesOneByteTooSmallAreRefusedUntouched) {
    const EffectHandle effect = Create("polarize");
    for (int format = 0; format < SFX_FORMAT_COUNT; ++format) {
        for (const auto& [width, height] : {std::pair{1, 1}, {1, 2}, {3, 1}, {5, 7}, {8, 6}}) {
            for (const Rows rows : {Rows::kTight, Rows::kGaps, Rows::kBottomUp}) {
                PlainPicture picture(static_cast<sfx_format>(format), width, height, rows);
                const std::vector<uint8_t> before = picture.Bytes();
                for (int plane = 0; plane < sfx_format_planes(format); ++plane) {
                    sfx_picture bad = picture.record();
                    if (bad.sizes[plane] == 1) {
                        continue;  // 0 means unknown
                    }
                    bad.sizes[plane] -= 1;
                    EXPECT_EQ(sfx_process(effect.get(), &bad, 0), SFX_ERROR_PICTURE)
                        << sfx_format_name(format) << " " << width << "x" << height;
                }
                EXPECT_EQ(picture.Bytes(), before);
                EXPECT_EQ(sfx_process(effect.get(), &picture.record(), 0), SFX_OK);
                EXPECT_TRUE(picture.GuardsIntact());
            }
        }
    }
}

TEST(Promises, StridesOfZeroMeanTightRows) {
    for (int format = 0; format < SFX_FORMAT_COUNT; ++format) {
        PlainPicture tight(static_cast<sfx_format>(format), 7, 5);
        PlainPicture zero(static_cast<sfx_format>(format), 7, 5);
        tight.Randomize(3);
        zero.Randomize(3);
        sfx_picture record = zero.record();
        std::fill_n(record.strides, 4, ptrdiff_t{0});
        const EffectHandle one = Create("sepia"), other = Create("sepia");
        EXPECT_EQ(sfx_process(one.get(), &tight.record(), 0), SFX_OK);
        EXPECT_EQ(sfx_process(other.get(), &record, 0), SFX_OK);
        EXPECT_EQ(zero.Bytes(), tight.Bytes());
        EXPECT_TRUE(zero.GuardsIntact());
    }
}

// The result is up to the caller; the memory next to the buffer is not.
TEST(Promises, PlanesThatOverlapHarmNobody) {
    constexpr size_t kGuard = 32;
    for (int format = 0; format < SFX_FORMAT_COUNT; ++format) {
        sfx_picture picture = SFX_PICTURE_INIT;
        sfx_picture_layout(&picture, format, 9, 7, nullptr);
        const size_t size = *std::max_element(picture.sizes, picture.sizes + 4);
        std::vector<uint8_t> memory(size + 2 * kGuard, 0xA7);
        std::fill_n(picture.planes, sfx_format_planes(format), memory.data() + kGuard);
        const EffectHandle effect = Create("sketch-1+rain");
        EXPECT_GE(sfx_process(effect.get(), &picture, 0), 0);
        const auto intact = [](uint8_t byte) { return byte == 0xA7; };
        EXPECT_TRUE(std::all_of(memory.begin(), memory.begin() + kGuard, intact)) << format;
        EXPECT_TRUE(std::all_of(memory.end() - kGuard, memory.end(), intact)) << format;
    }
}

// ---- texts -------------------------------------------------------------------------------------------

TEST(Promises, TextsOfNoFormAreRefusedWithAMessageInUtf8) {
    const std::string mega(1 << 20, 'x');
    const std::vector<std::string> texts = {"",
                                            " ",
                                            "+",
                                            "++",
                                            ":",
                                            "=",
                                            ",",
                                            ":=",
                                            "+:+",
                                            "sepia+",
                                            "+sepia",
                                            "sepia++sepia",
                                            "rain:",
                                            "rain:=",
                                            "rain:drop-size",
                                            "rain:drop-size=",
                                            "rain:=9",
                                            "rain:drop-size=9,",
                                            "rain:,drop-size=9",
                                            "rain:drop-size=9,,drop-period=2",
                                            "rain:drop-size=9:drop-period=2",
                                            "rain:drop-size==9",
                                            "rain:drop-size=0x10",
                                            "rain:drop-size=5.0",
                                            "rain:drop-size=9 9",
                                            "rain:drop-size=nine",
                                            "preset:",
                                            "preset",
                                            "preset:no-such",
                                            "preset:noir:drop-size=2",
                                            "preset:preset:noir",
                                            "{",
                                            "{}",
                                            "{4DD74959-BE0F-44B1-92B6}",
                                            "\xff\xfe",
                                            "\xc3",
                                            "rain\xc0\x80",
                                            "rain:\xe2\x82=1",
                                            "rain:drop-size=\xf0\x9f",
                                            "\x01\x02\n\t",
                                            mega,
                                            "rain:" + mega,
                                            "rain:drop-size=" + mega,
                                            "preset:" + mega,
                                            std::string(1 << 20, '+'),
                                            std::string(1 << 20, ','),
                                            std::string(1 << 20, '\xe2'),
                                            "\xe2\x82\xac\xe2\x82\xac\xe2\x82\xac"};
    for (const std::string& text : texts) {
        const sfx_status status = CreateStatus(text);
        EXPECT_TRUE(status == SFX_ERROR_UNKNOWN || status == SFX_ERROR_VALUE)
            << text.substr(0, 40) << " gives " << status;
        EXPECT_STRNE(sfx_message(), "");
        EXPECT_TRUE(IsUtf8(sfx_message())) << text.substr(0, 40) << ": " << sfx_message();
        EXPECT_LT(std::strlen(sfx_message()), 1024U) << text.substr(0, 40);
        if (sfx_find(text.c_str()) == nullptr) {
            EXPECT_TRUE(IsUtf8(sfx_message())) << sfx_message();
            EXPECT_LT(std::strlen(sfx_message()), 1024U);
        }
        const EffectHandle effect = Create("rain");
        EXPECT_LT(sfx_set(effect.get(), text.c_str(), "1"), 0) << text.substr(0, 40);
        EXPECT_TRUE(IsUtf8(sfx_message())) << sfx_message();
        EXPECT_LT(sfx_set(effect.get(), "drop-size", text.c_str()), 0) << text.substr(0, 40);
        EXPECT_TRUE(IsUtf8(sfx_message())) << sfx_message();
        EXPECT_EQ(Print(effect.get()), "rain");
    }
}

TEST(Promises, RandomTextsNeverDoHarm) {
    const std::string parts[] = {"rain",    "sepia", ":",      "+",  "=",       ",",     "drop-size",
                                 "preset:", "noir",  "sketch", "-2", " ",       "9",     "\xff",
                                 "true",    "#12",   "{",      "}",  "_",       "1,2,3", "2.",
                                 "-",       "99999", "\n",     "\t", "DropSize"};
    TestRandom random(5);
    for (int i = 0; i < 5000; ++i) {
        std::string text;
        for (int k = random.Below(9); k >= 0; --k) {
            text += parts[static_cast<size_t>(random.Below(static_cast<int32_t>(std::size(parts))))];
        }
        sfx_effect* effect = nullptr;
        if (sfx_create(text.c_str(), &effect) >= 0) {
            const EffectHandle handle(effect);
            const std::string printed = Print(effect);
            EXPECT_EQ(Print(Create(printed).get()), printed) << text;
        } else {
            EXPECT_TRUE(IsUtf8(sfx_message())) << sfx_message();
        }
    }
}

TEST(Promises, AtMost64LinksMakeAnEffect) {
    std::string text = "sepia";
    for (int i = 1; i < 64; ++i) {
        text += "+sepia";
    }
    const EffectHandle effect = Create(text);
    EXPECT_EQ(sfx_link_count(effect.get()), 64U);
    EXPECT_EQ(Print(effect.get()), text);
    EXPECT_LT(CreateStatus(text + "+sepia"), 0);
    EXPECT_LT(CreateStatus("preset:noir+" + text), 0);
}

TEST(Promises, ALaterSettingReplacesAnEarlierOne) {
    const EffectHandle effect = Create("rain:drop-size=3,DropSize=7, DROP-SIZE = 9 ");
    EXPECT_EQ(GetInt(effect, "drop-size"), 9);
    EXPECT_EQ(GetInt(effect, "0.DropSize"), 9);
    for (const char* const none :
         {"1.drop-size", "-1.drop-size", "99999999999999999999.drop-size", "18446744073709551616.drop-size",
          "4294967296.drop-size", ".drop-size", "0.", "0", "0.0.drop-size", "drop", "0x0.drop-size"}) {
        EXPECT_EQ(sfx_set_int(effect.get(), none, 1), SFX_ERROR_UNKNOWN) << none;
    }
    EXPECT_EQ(GetInt(effect, "drop-size"), 9);
}

TEST(Promises, NumbersTooLargeForTheirTypeAreClamped) {
    const sfx_effect_info* const rain = sfx_find("rain");
    ASSERT_NE(rain, nullptr);
    const sfx_property_info* size = nullptr;
    for (size_t i = 0; i < rain->property_count; ++i) {
        size = std::strcmp(rain->properties[i]->id, "drop-size") == 0 ? rain->properties[i] : size;
    }
    ASSERT_NE(size, nullptr);
    for (const char* const digits : {"2147483648", "4294967296", "4294967297", "9223372036854775808",
                                     "18446744073709551617", "99999999999999999999999999999999"}) {
        sfx_effect* created = nullptr;
        EXPECT_EQ(sfx_create((std::string("rain:drop-size=") + digits).c_str(), &created), SFX_CLAMPED);
        EXPECT_STRNE(sfx_message(), "");
        const EffectHandle effect(created);
        EXPECT_EQ(GetInt(effect, "drop-size"), size->maximum);
        EXPECT_EQ(sfx_set(effect.get(), "drop-size", (std::string("-") + digits).c_str()), SFX_CLAMPED);
        EXPECT_EQ(GetInt(effect, "drop-size"), size->minimum);
    }
}

TEST(Promises, PrintCutsLikeSnprintf) {
    const EffectHandle effect = Create("rain:drop-size=9+sketch-2+sepia");
    const std::string whole = Print(effect.get());
    for (size_t size = 0; size <= whole.size() + 3; ++size) {
        std::vector<char> buffer(size + 8, '~');
        EXPECT_EQ(sfx_print(effect.get(), buffer.data(), size), static_cast<int>(whole.size()));
        if (size > 0) {
            EXPECT_EQ(std::string(buffer.data()), whole.substr(0, size - 1));
        }
        const size_t used = size == 0 ? 0 : std::min(size, whole.size() + 1);
        EXPECT_TRUE(std::all_of(buffer.begin() + static_cast<ptrdiff_t>(used), buffer.end(), [](char c) {
            return c == '~';
        })) << size;
    }
    for (size_t size = 1; size < 6; ++size) {
        std::vector<char> buffer(size + 4, '~');
        EXPECT_EQ(sfx_set(effect.get(), "drop-period", "2"), SFX_OK);
        EXPECT_EQ(sfx_get(effect.get(), "drop-size", buffer.data(), size), SFX_OK);
        EXPECT_EQ(std::string(buffer.data()), std::string("9").substr(0, size - 1));
        EXPECT_EQ(buffer[size], '~');
    }
}

TEST(Promises, EveryEffectComesBackFromItsText) {
    TestRandom random(11);
    for (const sfx_effect_info* const info : AllEffects()) {
        for (int round = 0; round < 6; ++round) {
            const EffectHandle effect = Create(info->id);
            SetAtRandom(effect, *info, random);
            const std::string text = Print(effect.get());
            const EffectHandle again = Create(text);
            EXPECT_EQ(Print(again.get()), text);
            for (size_t i = 0; i < info->property_count; ++i) {
                const char* const id = info->properties[i]->id;
                EXPECT_EQ(GetInt(again, id), GetInt(effect, id)) << text;
                // The text of a value is a value again.
                const std::string value = Get(effect, id);
                EXPECT_EQ(sfx_set(again.get(), id, value.c_str()), SFX_OK) << id << " " << value;
                EXPECT_EQ(GetInt(again, id), GetInt(effect, id)) << id << " " << value;
            }
        }
    }
}

TEST(Promises, MessagesBelongToTheirThread) {
    CreateStatus("no such effect");
    const std::string mine = sfx_message();
    std::string first, theirs;
    std::thread([&] {
        first = sfx_message();
        CreateStatus("another one");
        theirs = sfx_message();
    }).join();
    EXPECT_EQ(first, "");
    EXPECT_NE(theirs, mine);
    EXPECT_EQ(sfx_message(), mine);
    CreateStatus("sepia");  // succeeds without a message
    EXPECT_EQ(sfx_message(), mine);
}

// ---- settings ----------------------------------------------------------------------------------------

TEST(Promises, SettingsOfEveryEffectSurviveSizesAndResets) {
    const Home home;
    TestRandom random(3);
    for (const sfx_effect_info* const info : EffectsWithoutData()) {
        const EffectHandle effect = Create(info->id);
        SetAtRandom(effect, *info, random);
        const std::string text = Print(effect.get());
        const auto check = [&](const char* after) {
            EXPECT_EQ(Print(effect.get()), text) << after;
            const EffectHandle fresh = Create(text);
            for (size_t i = 0; i < info->property_count; ++i) {
                EXPECT_EQ(GetInt(effect, info->properties[i]->id), GetInt(fresh, info->properties[i]->id))
                    << info->id << " " << info->properties[i]->id << " " << after;
            }
        };
        Sums(effect, 2, 64, 48);
        check("after frames");
        Sums(effect, 2, 48, 64);
        check("after a change of size");
        EXPECT_EQ(sfx_reset(effect.get()), SFX_OK);
        check("after a reset");
        Sums(effect, 1, 2, 2);
        check("after the smallest size");
        EXPECT_GE(sfx_prepare(effect.get(), 320, 240), 0);
        check("after a preparation");
        EXPECT_EQ(sfx_set_seed(effect.get(), 9), SFX_OK);
        check("after a seed");
    }
}

TEST(Promises, EffectsStartWithTheListedValues) {
    const Home home;
    for (const sfx_effect_info* const info : EffectsWithoutData()) {
        const EffectHandle effect = Create(info->id);
        const auto check = [&] {
            for (size_t i = 0; i < info->property_count; ++i) {
                const sfx_property_info& property = *info->properties[i];
                EXPECT_GE(property.start, property.minimum) << property.id;
                EXPECT_LE(property.start, property.maximum) << property.id;
                EXPECT_EQ(GetInt(effect, property.id), property.start) << info->id << " " << property.id;
            }
        };
        check();
        EXPECT_GE(sfx_prepare(effect.get(), 640, 480), 0);
        check();
        TestRandom random(8);
        SetAtRandom(effect, *info, random);
        EXPECT_EQ(sfx_set_defaults(effect.get()), SFX_OK);
        check();
        EXPECT_EQ(Print(effect.get()), info->id);
        for (size_t i = 0; i < info->property_count; ++i) {
            const sfx_property_info& property = *info->properties[i];
            for (const int32_t bound : {property.minimum, property.maximum}) {
                EXPECT_EQ(sfx_set_int(effect.get(), property.id, bound), SFX_OK) << property.id;
                EXPECT_EQ(GetInt(effect, property.id), bound) << property.id;
            }
            if (property.type == SFX_BOOLEAN) {
                EXPECT_EQ(sfx_set_int(effect.get(), property.id, INT32_MIN), SFX_OK) << property.id;
                EXPECT_EQ(GetInt(effect, property.id), 1) << property.id;
                continue;
            }
            if (property.maximum < INT32_MAX) {
                EXPECT_EQ(sfx_set_int(effect.get(), property.id, INT32_MAX), SFX_CLAMPED) << property.id;
                EXPECT_EQ(GetInt(effect, property.id), property.maximum) << property.id;
            }
            if (property.minimum > INT32_MIN) {
                EXPECT_EQ(sfx_set_int(effect.get(), property.id, INT32_MIN), SFX_CLAMPED) << property.id;
                EXPECT_EQ(GetInt(effect, property.id), property.minimum) << property.id;
            }
        }
    }
}

TEST(Promises, ACloneSharesNothingWithItsModel) {
    const EffectHandle effect = Create("rain:drop-size=9+motion-detector");
    ASSERT_EQ(sfx_set_seed(effect.get(), 77), SFX_OK);
    Sums(effect, 3);
    sfx_effect* created = nullptr;
    ASSERT_EQ(sfx_clone(effect.get(), &created), SFX_OK);
    const EffectHandle clone(created);
    uint32_t seed = 0;
    EXPECT_EQ(sfx_get_seed(clone.get(), &seed), SFX_OK);
    EXPECT_EQ(seed, 77U);
    EXPECT_EQ(Print(clone.get()), Print(effect.get()));
    EXPECT_EQ(sfx_set_int(clone.get(), "drop-size", 3), SFX_OK);
    EXPECT_EQ(GetInt(effect, "drop-size"), 9);
    EXPECT_EQ(sfx_set_int(clone.get(), "drop-size", 9), SFX_OK);
    ASSERT_EQ(sfx_reset(effect.get()), SFX_OK);
    EXPECT_EQ(Sums(clone, 3), Sums(effect, 3));
}

// ---- chance and time ---------------------------------------------------------------------------------

TEST(Promises, TheProcesssGeneratorIsLeftAlone) {
    const Home home;
    std::srand(1);
    const std::vector<int> expected = {std::rand(), std::rand(), std::rand()};
    std::srand(1);
    EXPECT_EQ(std::rand(), expected[0]);
    std::vector<std::vector<uint64_t>> sums;
    for (const sfx_effect_info* const info : EffectsWithoutData()) {
        const EffectHandle effect = Create(info->id);
        sfx_load_settings(effect.get(), WriteFile(home.Path("settings"), "1 2 3").c_str());
        sfx_set_defaults(effect.get());
        sums.push_back(Sums(effect, 2));
    }
    EXPECT_EQ(std::rand(), expected[1]);
    // Nor do numbers that the process draws show in frames, on any thread.
    std::srand(12345);
    std::thread([&] {
        size_t i = 0;
        for (const sfx_effect_info* const info : EffectsWithoutData()) {
            EXPECT_EQ(Sums(Create(info->id), 2), sums[i++]) << info->id;
        }
    }).join();
}

/// The frames of an effect that reads the clock, at these time stamps.
std::vector<uint64_t> SumsAt(const std::string& text, const std::vector<int64_t>& times) {
    const EffectHandle effect = Create(text);
    std::vector<uint64_t> sums;
    for (size_t i = 0; i < times.size(); ++i) {
        TestFrame frame(64, 48);
        frame.DrawScene(static_cast<int>(i));
        const sfx_picture picture = PictureOf(frame);
        EXPECT_GE(sfx_process(effect.get(), &picture, times[i]), 0);
        sums.push_back(frame.Checksum());
    }
    return sums;
}

TEST(Promises, AnyTimeStampIsTaken) {
    constexpr int64_t ms = 1000000;
    for (const sfx_effect_info* const info : AllEffects()) {
        if ((info->flags & SFX_USES_TIME) == 0) {
            continue;
        }
        const std::string id = info->id;
        const auto plain = SumsAt(id, {0, 40 * ms, 40 * ms, 80 * ms, 3000 * ms, 6000 * ms});
        EXPECT_EQ(SumsAt(id, {0, 40 * ms, 20 * ms, 60 * ms, 2980 * ms, 5980 * ms}), plain) << id;
        EXPECT_EQ(SumsAt(id, {INT64_MAX - 6000 * ms, INT64_MAX - 5960 * ms, INT64_MAX - 5960 * ms,
                              INT64_MAX - 5920 * ms, INT64_MAX - 3000 * ms, INT64_MAX}),
                  plain)
            << id;
        EXPECT_EQ(SumsAt(id, {INT64_MIN + 1, INT64_MIN + 1 + 40 * ms, INT64_MIN + 1, INT64_MIN + 1 + 40 * ms,
                              INT64_MIN + 1 + 2960 * ms, INT64_MIN + 1 + 5960 * ms}),
                  plain)
            << id;
        // A frame without a time stamp comes 1/30 s after the one before; the next stamp counts from there.
        EXPECT_EQ(SumsAt(id, {0, SFX_NO_TIME, SFX_NO_TIME, 1000 * ms, SFX_NO_TIME, 5000 * ms}),
                  SumsAt(id, {0, 33333333, 66666666, 1000 * ms, 1033333333, 5000 * ms}))
            << id;
        // Only undefined behaviour could go wrong here.
        SumsAt(id, {INT64_MIN + 1, INT64_MAX, INT64_MIN + 1, INT64_MAX, SFX_NO_TIME, SFX_NO_TIME, 0});
        SumsAt(id, {SFX_NO_TIME, INT64_MAX, SFX_NO_TIME, SFX_NO_TIME, INT64_MIN + 1, SFX_NO_TIME, INT64_MAX});
    }
}

// ---- files -------------------------------------------------------------------------------------------

size_t EntriesOf(const std::string& folder) {
    return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

TEST(Promises, NoFolderAtAllIsNoReasonToFailOrToWriteHere) {
    const TemporaryDirectory here;
    const Variable home("HOME", ""), config(kConfigVariable, ""), cache(kCacheVariable, "");
    for (const char* const bad : {"", "relative", "./relative", "/dev/null", kNoFolder, "/proc/none"}) {
        for (const bool unset : {false, true}) {
            const Variable one("HOME", bad), other(kCacheVariable, bad);
            if (unset) {
                SetVariable("HOME", nullptr);
            }
            const EffectHandle effect = Create("clouds");
            EXPECT_EQ(sfx_set_data_folder(effect.get(), kNoFolder), SFX_OK);
            TestFrame frame(32, 32);
            EXPECT_EQ(Process(effect, frame, 0), SFX_DATA_MISSING) << bad;
            EXPECT_STRNE(sfx_message(), "");
            EXPECT_EQ(Process(effect, frame, 1), SFX_OK) << bad;  // reported once
            EXPECT_EQ(sfx_reset(effect.get()), SFX_OK);
            EXPECT_EQ(EntriesOf("."), 0U) << bad;
        }
    }
}

// What a relative path means does not change when the process changes its current directory.
TEST(Promises, RelativePathsAreThoseOfTheCall) {
    const Home home;
    const EffectHandle effect = Create("line-art-1");
    WriteFile("settings", "1 2 3");
    ASSERT_EQ(sfx_load_settings(effect.get(), "settings"), SFX_OK);
    const std::vector<uint64_t> sums = Sums(effect, 1);
    const EffectHandle picture = Create("clouds");
    WriteFile("data/perlin.dat", std::string(1 << 20, 'x'));
    ASSERT_EQ(sfx_set_data_folder(picture.get(), "data"), SFX_OK);
    {
        const TemporaryDirectory elsewhere;
        ASSERT_EQ(sfx_reset(effect.get()), SFX_OK);
        EXPECT_EQ(Sums(effect, 1), sums);
        EXPECT_EQ(sfx_prepare(picture.get(), 32, 32), SFX_OK) << sfx_message();
        EXPECT_EQ(EntriesOf("."), 0U);
    }
}

TEST(Promises, SettingsFilesAreRegularFiles) {
    const Home home;
    const std::string fifo = home.Path("fifo");
    ASSERT_TRUE(MakePipe(fifo));
    const EffectHandle effect = Create("line-art-1");
    ASSERT_NE(effect, nullptr);
    for (const std::string& path : {fifo, home.Path(""), home.Path("none"), std::string("/dev/zero"),
                                    std::string(), std::string("/")}) {
        EXPECT_EQ(sfx_load_settings(effect.get(), path.c_str()), SFX_ERROR_FILE) << path;
        EXPECT_EQ(sfx_load_presets(path.c_str()), SFX_ERROR_FILE) << path;
    }
    for (const std::string& content :
         {std::string(), std::string("1"), std::string("-1 999999999999999999999 x"), std::string(3000, '\0'),
          std::string(1 << 20, '9'), std::string("\xff\xfe\xfd")}) {
        EXPECT_EQ(sfx_load_settings(effect.get(), WriteFile(home.Path("odd"), content).c_str()), SFX_OK);
        Sums(effect, 2);
    }
    const EffectHandle none = Create("sepia");
    EXPECT_EQ(sfx_load_settings(none.get(), home.Path("odd").c_str()), SFX_ERROR_UNKNOWN);
}

TEST(Promises, PresetFilesOfAnotherFormAddNothing) {
    const Home home;
    const size_t count = sfx_preset_count();
    const std::string good = "[promise-good]\ntitle = T\ndescription = D.\neffect = sepia\n";
    const std::vector<std::string> bad = {
        "[promise-a\ntitle = T\ndescription = D.\neffect = sepia\n",
        "[]\ntitle = T\ndescription = D.\neffect = sepia\n",
        "[Promise A]\ntitle = T\ndescription = D.\neffect = sepia\n",
        "[promise-\xff]\ntitle = T\ndescription = D.\neffect = sepia\n",
        "[promise-a]\nno equals sign\neffect = sepia\n",
        "[promise-a]\ntitle = T\ndescription = D.\n",
        "[promise-a]\ntitle = T\ndescription = D.\neffect =\n",
        "[promise-a]\ntitle = T\ndescription = D.\neffect = no-such\n",
        "[promise-a]\ntitle = T\ndescription = D.\neffect = preset:promise-a\n",
        "[promise-a]\ntitle = T\ndescription = D.\neffect = preset:promise-z\n",
        "[promise-a]\ntitle = T\ndescription = D.\neffect = sepia\ncolour = red\n",
        "[promise-a]\ntitle = \xe9t\xe9\ndescription = D.\neffect = sepia\n",
        std::string("[promise-a]\ntitle = T\0T\ndescription = D.\neffect = sepia\n", 57),
        std::string("[promise-a]\ntitle = T\ndescription = D.\neffect = se\0pia\n", 55),
        std::string(1 << 20, '['),
        std::string(100, '\0'),
        "[" + std::string(1 << 20, 'a') + "\n",
    };
    for (const std::string& text : bad) {
        for (const std::string& content : {text, good + text}) {
            EXPECT_EQ(sfx_load_presets(WriteFile(home.Path("presets"), content).c_str()), SFX_ERROR_VALUE)
                << content.substr(0, 200);
            EXPECT_TRUE(IsUtf8(sfx_message())) << sfx_message();
            EXPECT_LT(std::strlen(sfx_message()), 1024U);
            EXPECT_EQ(sfx_preset_count(), count) << content.substr(0, 200);
        }
    }
    EXPECT_EQ(sfx_load_presets(WriteFile(home.Path("presets"), "title = no section\n").c_str()),
              SFX_ERROR_VALUE);
    // An empty file, comments, other line ends and a missing last line end are not errors.
    for (const char* const content : {"", "\n", "# x", "; x\n\n  \n"}) {
        EXPECT_EQ(sfx_load_presets(WriteFile(home.Path("presets"), content).c_str()), SFX_OK) << content;
    }
    EXPECT_EQ(sfx_preset_count(), count);
    const std::string windows = "\xef\xbb\xbf[promise-w]\r\ntitle = W\r\ndescription = D.\r\neffect = sepia";
    EXPECT_EQ(sfx_load_presets(WriteFile(home.Path("presets"), windows).c_str()), SFX_OK) << sfx_message();
    EXPECT_EQ(Print(Create("preset:promise-w").get()), "sepia");
    EXPECT_EQ(sfx_preset_count(), count + 1);
}

TEST(Promises, PresetsStayReadableAfterOthersReplaceThem) {
    const Home home;
    const auto load = [&](const std::string& effect) {
        const std::string content = "[promise-one]\ntitle = T\ndescription = D.\neffect = " + effect + "\n";
        return sfx_load_presets(WriteFile(home.Path("presets"), content).c_str());
    };
    ASSERT_EQ(load("sepia"), SFX_OK) << sfx_message();
    const sfx_preset_info* const one = sfx_preset_at(sfx_preset_count() - 1);
    ASSERT_STREQ(one->id, "promise-one");
    EXPECT_EQ(one->is_user, 1);
    EXPECT_EQ(load("preset:promise-one"), SFX_ERROR_VALUE);
    EXPECT_EQ(load("rain+preset:noir"), SFX_ERROR_VALUE);
    ASSERT_EQ(load("gray-scale"), SFX_OK) << sfx_message();
    EXPECT_STREQ(one->effect, "sepia");
    EXPECT_EQ(Print(Create("preset:promise-one").get()), "gray-scale");
    EXPECT_EQ(Print(Create("rain + Preset:Promise-One+sepia").get()), "rain+gray-scale+sepia");
}

// ---- threads -----------------------------------------------------------------------------------------

TEST(Promises, AllFunctionsMayRunSideBySide) {
    const Home home;
    const EffectHandle shared = Create("rain:drop-size=5+sepia");
    const std::string file =
        WriteFile(home.Path("presets"), "[promise-t]\ntitle = T\ndescription = D.\neffect = rain+sepia\n");
    std::vector<std::thread> threads;
    const auto repeat = [&](const std::function<void(int)>& action) {
        threads.emplace_back([action] {
            for (int i = 0; i < 40; ++i) {
                action(i);
            }
        });
    };
    repeat([&](int i) {
        TestFrame frame(i % 2 == 0 ? 64 : 32, 48);
        EXPECT_GE(Process(shared, frame, i), 0);
    });
    repeat([&](int i) { EXPECT_EQ(sfx_set_int(shared.get(), "drop-size", 2 + i % 9), SFX_OK); });
    repeat([&](int i) { i % 4 == 0 ? sfx_set_defaults(shared.get()) : sfx_reset(shared.get()); });
    repeat([&](int i) {
        sfx_effect* clone = nullptr;
        EXPECT_EQ(sfx_clone(shared.get(), &clone), SFX_OK);
        const EffectHandle handle(clone);
        TestFrame frame(32, 32);
        EXPECT_GE(Process(handle, frame, i), 0);
    });
    repeat([&](int) { EXPECT_EQ(sfx_load_presets(file.c_str()), SFX_OK); });
    repeat([&](int) {
        for (size_t k = 0; k < sfx_preset_count(); ++k) {
            EXPECT_NE(sfx_preset_at(k), nullptr);
        }
        CreateStatus("preset:noir");
        Print(shared.get());
    });
    for (std::thread& thread : threads) {
        thread.join();
    }
}

// ---- RGB and 4:4:4 -----------------------------------------------------------------------------------

TEST(Promises, AlphaIsNeverChanged) {
    const Home home;
    for (const sfx_effect_info* const info : EffectsWithoutData()) {
        for (const sfx_format format : {SFX_RGBA, SFX_BGRA, SFX_ARGB, SFX_ABGR}) {
            PlainPicture picture(format, 21, 15, Rows::kGaps);
            const EffectHandle effect = Create(info->id);
            for (int i = 0; i < 2; ++i) {
                picture.Randomize(static_cast<uint64_t>(i) + 5);
                std::vector<uint8_t> alpha;
                for (int32_t at = 0; at < 21 * 15; ++at) {
                    alpha.push_back(*picture.Sample(3, at % 21, at / 21));
                }
                EXPECT_GE(sfx_process(effect.get(), &picture.record(), i), 0);
                EXPECT_TRUE(picture.GuardsIntact());
                for (int32_t at = 0; at < 21 * 15; ++at) {
                    ASSERT_EQ(*picture.Sample(3, at % 21, at / 21), alpha[static_cast<size_t>(at)])
                        << info->id;
                }
            }
        }
    }
}

// Where an effect leaves the chroma of a frame alone, gray pixels take exactly the new luma, and 4:4:4 and
// 4:2:2 pictures keep their chroma.
TEST(Promises, ChromaThatEffectsLeaveAloneStays) {
    const Home home;
    int left = 0;
    for (const sfx_effect_info* const info : EffectsWithoutData()) {
        TestFrame frame(32, 24);
        frame.Fill(0, 128, 128);
        TestRandom random(4);
        std::generate(frame.plane(0).begin(), frame.plane(0).end(), [&] { return random.Byte(); });
        const TestFrame before = frame;
        const auto pixelOf = [&](const TestFrame& from, int32_t x, int32_t y) {
            return from.plane(0)[static_cast<size_t>(y * 32 + x)];
        };
        ASSERT_GE(Process(Create(info->id), frame, 0), 0);
        if (!std::ranges::equal(frame.plane(1), before.plane(1)) ||
            !std::ranges::equal(frame.plane(2), before.plane(2))) {
            continue;
        }
        ++left;
        for (const sfx_matrix matrix : {SFX_BT601, SFX_BT709, SFX_BT2020}) {
            PlainPicture rgb(SFX_BGRA, 32, 24);
            rgb.record().matrix = matrix;
            rgb.record().range = SFX_FULL;
            for (int32_t at = 0; at < 32 * 24; ++at) {
                for (int component = 0; component < 3; ++component) {
                    *rgb.Sample(component, at % 32, at / 32) = pixelOf(before, at % 32, at / 32);
                }
            }
            EXPECT_GE(sfx_process(Create(info->id).get(), &rgb.record(), 0), 0);
            for (int32_t at = 0; at < 32 * 24; ++at) {
                for (int component = 0; component < 3; ++component) {
                    ASSERT_EQ(*rgb.Sample(component, at % 32, at / 32), pixelOf(frame, at % 32, at / 32))
                        << info->id << " matrix " << matrix << " pixel " << at;
                }
            }
        }
        for (const sfx_format format : {SFX_I422, SFX_I444, SFX_YUY2, SFX_UYVY}) {
            PlainPicture picture(format, 32, 24);
            picture.Randomize(9);
            // Chroma whose means are 128, so that the effect sees the same frame.
            for (int32_t at = 0; at < 32 * 24; ++at) {
                const int32_t x = at % 32, y = at / 32;
                *picture.Sample(0, x, y) = pixelOf(before, x, y);
                for (int component = 1; component < 3; ++component) {
                    *picture.Sample(component, x, y) = static_cast<uint8_t>(y % 2 == 0 ? 90 : 166);
                }
            }
            EXPECT_GE(sfx_process(Create(info->id).get(), &picture.record(), 0), 0);
            for (int32_t at = 0; at < 32 * 24; ++at) {
                const int32_t x = at % 32, y = at / 32;
                ASSERT_EQ(*picture.Sample(0, x, y), pixelOf(frame, x, y)) << info->id;
                for (int component = 1; component < 3; ++component) {
                    ASSERT_EQ(*picture.Sample(component, x, y), y % 2 == 0 ? 90 : 166)
                        << info->id << " " << sfx_format_name(format);
                }
            }
        }
    }
    EXPECT_GT(left, 5);
}

}  // namespace
