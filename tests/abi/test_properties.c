/* Properties as text, in the narrow and the wide form, with good, odd and hostile texts. */
#include <ctype.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "catalogue.h"
#include "check.h"
#include "memory.h"
#include "tests.h"
#include "wide.h"

enum { COOKIE = 0x13579BDF, FILL = 0x5C, LONG_TEXT = 10000 };

/* ---- one call, with its record checked ------------------------------------------------------------ */

static uint32_t set(Effect* effect, const char* name, const char* value) {
    /* Copies that end where readable memory ends, so that a read past them is detected. */
    Guarded name_copy = guarded(strlen(name) + 1, 0), value_copy = guarded(strlen(value) + 1, 0);
    memcpy(name_copy.data, name, name_copy.size);
    memcpy(value_copy.data, value, value_copy.size);
    Property property = {COOKIE, (char*)name_copy.data, (char*)value_copy.data};
    const uint32_t result = set_property(effect, &property);
    expect(property.cookie == COOKIE && property.name == (char*)name_copy.data &&
               property.value == (char*)value_copy.data,
           "SetProperty changed the record");
    expect(strcmp((char*)name_copy.data, name) == 0 && strcmp((char*)value_copy.data, value) == 0,
           "SetProperty changed a text");
    guarded_free(&name_copy);
    guarded_free(&value_copy);
    return result;
}

static uint32_t set_units(Effect* effect, const Wide* name, const Wide* value) {
    Guarded name_copy = guarded((wide_length(name) + 1) * sizeof(Wide), 0);
    Guarded value_copy = guarded((wide_length(value) + 1) * sizeof(Wide), 0);
    memcpy(name_copy.data, name, name_copy.size);
    memcpy(value_copy.data, value, value_copy.size);
    WideProperty property = {COOKIE, (Wide*)(void*)name_copy.data, (Wide*)(void*)value_copy.data};
    const uint32_t result = set_property_wide(effect, &property);
    expect(property.cookie == COOKIE && property.name == (Wide*)(void*)name_copy.data &&
               property.value == (Wide*)(void*)value_copy.data,
           "wide SetProperty changed the record");
    expect(memcmp(name_copy.data, name, name_copy.size) == 0 &&
               memcmp(value_copy.data, value, value_copy.size) == 0,
           "wide SetProperty changed a text");
    guarded_free(&name_copy);
    guarded_free(&value_copy);
    return result;
}

static uint32_t set_wide(Effect* effect, const char* name, const char* value) {
    Wide wide_name[TEXT_SIZE], wide_value[TEXT_SIZE];
    widen(wide_name, name);
    widen(wide_value, value);
    return set_units(effect, wide_name, wide_value);
}

/* `value` holds 256 characters and says on entry what the buffer holds. */
static uint32_t get(Effect* effect, const char* name, char* value) {
    Guarded buffer = guarded(TEXT_SIZE, 0);
    memcpy(buffer.data, value, TEXT_SIZE);
    char name_copy[2 * LONG_TEXT];
    snprintf(name_copy, sizeof name_copy, "%s", name);
    Property property = {COOKIE, name_copy, (char*)buffer.data};
    const uint32_t result = get_property(effect, &property);
    expect(property.cookie == COOKIE && property.name == name_copy && property.value == (char*)buffer.data,
           "GetProperty changed the record");
    expect(strcmp(name_copy, name) == 0, "GetProperty changed the name");
    expect(guarded_intact(&buffer), "GetProperty wrote in front of the value");
    memcpy(value, buffer.data, TEXT_SIZE);
    guarded_free(&buffer);
    return result;
}

/* `name` and `value` hold 256 units each, in and out. */
static uint32_t get_units(Effect* effect, Wide* name, Wide* value) {
    Guarded name_buffer = guarded(TEXT_SIZE * sizeof(Wide), 0),
            value_buffer = guarded(TEXT_SIZE * sizeof(Wide), 0);
    memcpy(name_buffer.data, name, name_buffer.size);
    memcpy(value_buffer.data, value, value_buffer.size);
    WideProperty property = {COOKIE, (Wide*)(void*)name_buffer.data, (Wide*)(void*)value_buffer.data};
    const uint32_t result = get_property_wide(effect, &property);
    expect(property.cookie == COOKIE && property.name == (Wide*)(void*)name_buffer.data &&
               property.value == (Wide*)(void*)value_buffer.data,
           "wide GetProperty changed the record");
    expect(guarded_intact(&name_buffer) && guarded_intact(&value_buffer),
           "wide GetProperty wrote in front of a text");
    memcpy(name, name_buffer.data, name_buffer.size);
    memcpy(value, value_buffer.data, value_buffer.size);
    guarded_free(&name_buffer);
    guarded_free(&value_buffer);
    return result;
}

static void expect_value(Effect* effect, const char* name, const char* wanted, const char* after) {
    char value[TEXT_SIZE];
    memset(value, FILL, sizeof value);
    const uint32_t result = get(effect, name, value);
    const bool terminated = memchr(value, 0, sizeof value) != NULL;
    expect(result == SUCCESS && terminated && wanted != NULL && strcmp(value, wanted) == 0,
           "\"%s\" after %s: 0x%x \"%.*s\", want \"%s\"", name, after, result, terminated ? 60 : 0, value,
           wanted ? wanted : "(nothing)");

    Wide wide_name[TEXT_SIZE], wide_value[TEXT_SIZE] = {0};
    widen(wide_name, name);
    expect(get_units(effect, wide_name, wide_value) == SUCCESS && wide_is(wide_value, wanted),
           "\"%s\" after %s: the wide form differs", name, after);
    expect(wide_is(wide_name, name), "\"%s\": the wide name was not written back", name);
}

static void expect_stored(Effect* effect, const char* name, const char* value, const char* stored) {
    char after[64];
    snprintf(after, sizeof after, "\"%s\"", value);
    expect_code(set(effect, name, value), SUCCESS, after);
    expect_value(effect, name, stored, after);
}

/* ---- effects with a table ------------------------------------------------------------------------- */

static bool is(const PropertyRow* row, const char* effect, const char* name) {
    return strcmp(row->effect, effect) == 0 && strcmp(row->name, name) == 0;
}

/*
 * Two properties do not show what was set: the mode of Camera Flashes shows when a frame takes it up, and the
 * number of textures depends on the frame's height.
 */
static bool shows_at_once(const PropertyRow* row) {
    return !is(row, "Camera Flashes", "Mode") && !is(row, "Picture Me", "Textures Number");
}

static void bounds_of(const PropertyRow* row, int* low, int* high) {
    if (sscanf(row->range, "%d,%d", low, high) != 2) abort();
    if (is(row, "Clouds", "Intensity")) *low = 0; /* not the 1 that the table offers */
}

static void check_integer(Effect* effect, const PropertyRow* row) {
    int low = 0, high = 0;
    bounds_of(row, &low, &high);
    const struct {
        const char* text;
        int number;
    } texts[] = {{"999", 999},
                 {"2147483647", INT32_MAX},
                 {"-2147483648", INT32_MIN},
                 {"-5", -5},
                 {"0", 0},
                 {"1", 1},
                 {"", 0},
                 {"abc", 0},
                 {" 2", 2},
                 {"+3", 3},
                 {"3.9", 3},
                 {"2,9", 2},
                 {"0x10", 0},
                 {"0012", 12},
                 {"\t\n 4", 4},
                 {"5 and more", 5}};
    for (size_t i = 0; i < sizeof texts / sizeof *texts; ++i) {
        char stored[16];
        int number = texts[i].number;
        if (number > high) number = high;
        if (number < low) number = low;
        snprintf(stored, sizeof stored, "%d", number);
        expect_stored(effect, row->name, texts[i].text, stored);
    }
    for (int number = low - 1; number <= high + 1; ++number) {
        char text[16], stored[16];
        snprintf(text, sizeof text, "%d", number);
        snprintf(stored, sizeof stored, "%d", number < low ? low : number > high ? high : number);
        expect_stored(effect, row->name, text, stored);
    }
}

static void check_boolean(Effect* effect, const PropertyRow* row) {
    const char* const yes[] = {"TRUE", "true", "tRuE", "True"};
    const char* const no[] = {"FALSE", "1",   "YES",   "",   "false", "TRUE ",
                              " TRUE", "TRU", "TRUEE", "-1", "yes"};
    for (size_t i = 0; i < sizeof no / sizeof *no; ++i) {
        expect_stored(effect, row->name, yes[i % 4], "TRUE");
        expect_stored(effect, row->name, no[i], "FALSE");
    }
}

static void check_color(Effect* effect, const PropertyRow* row) {
    const char* const texts[][2] = {
        {"1,2,3", "1,2,3"},  {"300,-5,7", "255,0,7"},     {"12,34", "0,0,0"}, {"255,255,255", "255,255,255"},
        {"9", "0,0,0"},      {"10,20,30", "10,20,30"},    {"", "0,0,0"},      {"4,5,6,7", "4,5,6"},
        {"red", "0,0,0"},    {"7,8,9 and more", "7,8,9"}, {"1;2;3", "0,0,0"}, {" 1, 2,\t3", "1,2,3"},
        {"1 ,2,3", "0,0,0"}, {"-1,256,128", "0,255,128"}, {",1,2", "0,0,0"},  {"0,0,1", "0,0,1"},
        {"1,,3", "0,0,0"},   {"+1,+2,+3", "1,2,3"},
    };
    for (size_t i = 0; i < sizeof texts / sizeof *texts; ++i)
        expect_stored(effect, row->name, texts[i][0], texts[i][1]);
}

/* A text that every kind of property takes as it is, and a second one. */
static const char* const* samples(const PropertyRow* row) {
    static const char *const integers[] = {"10", "2"}, *const small[] = {"2", "1"},
                             *const booleans[] = {"TRUE", "FALSE"}, *const colors[] = {"1,2,3", "200,100,50"};
    int low = 0, high = 0;
    if (row->type == BOOLEAN) return booleans;
    if (row->type == COLOR) return colors;
    bounds_of(row, &low, &high);
    static const char* const large[] = {"10", "12"};
    return high < 10 ? small : low > 2 ? large : integers;
}

static void change_case(char* to, const char* text, int which) {
    for (int i = 0; text[i] || (to[i] = 0); ++i) {
        const int c = (unsigned char)text[i];
        const bool upper = which == 0 || (which == 2 && i % 2);
        to[i] = (char)(upper ? toupper(c) : tolower(c));
    }
}

static void check_case(Effect* effect, const PropertyRow* row) {
    const char* const* values = samples(row);
    for (int which = 0; which < 3; ++which) {
        char name[64];
        change_case(name, row->name, which);
        for (int i = 0; i < 2; ++i) {
            expect_stored(effect, name, values[i], values[i]);
            expect_value(effect, row->name, values[i], "setting it under the name in another case");
            expect_code(set_wide(effect, name, values[1 - i]), SUCCESS, "wide SetProperty");
            expect_value(effect, row->name, values[1 - i], "setting it in the wide form");
        }
    }
}

/* 10,000 characters in the narrow form, and in the wide form, where they are cut to fit. */
static void check_long_values(Effect* effect, const PropertyRow* row) {
    const char* const* values = samples(row);
    static char text[LONG_TEXT + 1];
    static Wide wide[LONG_TEXT + 1];
    memset(text, 'x', LONG_TEXT);
    text[LONG_TEXT] = 0;
    const size_t length = strlen(values[0]);
    memcpy(text, values[0], length);
    widen(wide, text);
    /* What stands first is read as far as it goes; only a boolean has to be the whole text. */
    const char* stored = row->type == BOOLEAN ? "FALSE" : values[0];
    set(effect, row->name, values[1]);
    expect_code(set(effect, row->name, text), SUCCESS, "a value of 10,000 characters");
    expect_value(effect, row->name, stored, "10,000 characters");
    set(effect, row->name, values[1]);
    Wide name[64];
    widen(name, row->name);
    expect_code(set_units(effect, name, wide), SUCCESS, "a wide value of 10,000 characters");
    expect_value(effect, row->name, stored, "10,000 wide characters");
    /* 10,000 digits: any number within the bounds will do. */
    if (row->type != INTEGER) return;
    memset(text, '9', LONG_TEXT);
    widen(wide, text);
    int low = 0, high = 0;
    bounds_of(row, &low, &high);
    for (int form = 0; form < 2; ++form) {
        expect_code(form ? set_units(effect, name, wide) : set(effect, row->name, text), SUCCESS,
                    "10,000 digits");
        char value[TEXT_SIZE] = "";
        get(effect, row->name, value);
        expect(atoi(value) >= low && atoi(value) <= high, "10,000 digits are stored as \"%s\"", value);
    }
}

/* Lone surrogates, reversed pairs and characters outside the 16-bit plane. */
static const Wide kBroken[][4] = {{0xD800, 0},         {0xDC00, 0},         {0xD800, 'x', 0},
                                  {0xDC00, 0xD800, 0}, {0xD83D, 0xDE00, 0}, {0xDFFF, 'x', 0},
                                  {0xD800, 0xD800, 0}, {0xFFFF, 0xFFFE, 0}, {0x00E9, 0x20AC, 0},
                                  {0x0080, 0},         {0x07FF, 0x0800, 0}, {0xDBFF, 0xDFFF, 0}};
enum { BROKEN = sizeof kBroken / sizeof *kBroken };

static void check_broken_values(Effect* effect, const PropertyRow* row) {
    const char* const* values = samples(row);
    Wide name[64], value[64];
    widen(name, row->name);
    for (int i = 0; i < BROKEN; ++i) {
        set(effect, row->name, values[1]);
        widen(value, values[0]);
        memcpy(value + strlen(values[0]), kBroken[i], sizeof kBroken[i]);
        expect(set_units(effect, name, value) == SUCCESS, "broken text %d: not accepted", i);
        expect_value(effect, row->name, row->type == BOOLEAN ? "FALSE" : values[0],
                     "a value with a broken end");
    }
}

static void expect_unknown(Effect* effect, const char* name) {
    char value[TEXT_SIZE];
    memset(value, FILL, sizeof value);
    expect(set(effect, name, "1") == INVALID_ARGUMENT, "SetProperty knows \"%.40s\"", name);
    expect(get(effect, name, value) == INVALID_ARGUMENT, "GetProperty knows \"%.40s\"", name);
    expect(all_bytes((uint8_t*)value, sizeof value, FILL), "GetProperty of \"%.40s\" wrote a value", name);
}

static void check_unknown_names(Effect* effect, const PropertyRow* rows) {
    static char text[LONG_TEXT + 1];
    static Wide wide[LONG_TEXT + 1];
    expect_unknown(effect, "");
    expect_unknown(effect, "NoSuchProperty");
    snprintf(text, sizeof text, "%s ", rows[0].name);
    expect_unknown(effect, text);
    snprintf(text, sizeof text, " %s", rows[0].name);
    expect_unknown(effect, text);
    snprintf(text, sizeof text, "%.*s", (int)strlen(rows[0].name) - 1, rows[0].name);
    expect_unknown(effect, text);
    memset(text, 'x', LONG_TEXT);
    memcpy(text, rows[0].name, strlen(rows[0].name));
    expect_unknown(effect, text);
    expect_unknown(effect, "\xff\xfe\x80\xc3");

    widen(wide, text);
    Wide value[TEXT_SIZE] = {'1', 0}, name[TEXT_SIZE];
    expect_code(set_units(effect, wide, value), INVALID_ARGUMENT, "a wide name of 10,000 characters");
    widen(name, "NoSuchProperty");
    expect_code(set_units(effect, name, value), INVALID_ARGUMENT, "an unknown wide name");
    expect_code(get_units(effect, name, value), INVALID_ARGUMENT, "wide GetProperty of an unknown name");
    expect(wide_is(name, "NoSuchProperty") && wide_is(value, "1"), "it changed the texts");
    for (int i = 0; i < BROKEN; ++i) {
        memset(name, 0, sizeof name);
        memcpy(name, kBroken[i], sizeof kBroken[i]);
        expect(set_units(effect, name, value) == INVALID_ARGUMENT, "broken name %d is known", i);
        expect(get_units(effect, name, value) == INVALID_ARGUMENT, "broken name %d is known to GetProperty",
               i);
        expect(wide_length(name) < TEXT_SIZE, "broken name %d came back without its end", i);
    }
}

static void check_nulls(Effect* effect, uint32_t wanted, const char* known_name) {
    char name[64], value[TEXT_SIZE] = "1";
    Wide wide_name[64], wide_value[TEXT_SIZE] = {'1', 0};
    snprintf(name, sizeof name, "%s", known_name);
    widen(wide_name, known_name);
    Property no_name = {0, NULL, value}, no_value = {0, name, NULL}, nothing = {0, NULL, NULL};
    WideProperty no_wide_name = {0, NULL, wide_value}, no_wide_value = {0, wide_name, NULL},
                 no_wide = {0, NULL, NULL};
    Property* const narrow[] = {NULL, &no_name, &no_value, &nothing};
    WideProperty* const wide[] = {NULL, &no_wide_name, &no_wide_value, &no_wide};
    const char* const what[] = {"a null record", "a null name", "a null value", "a record of nulls"};
    for (int i = 0; i < 4; ++i) {
        uint32_t result = set_property(effect, narrow[i]);
        expect(result == wanted, "SetProperty of %s: 0x%x", what[i], result);
        result = get_property(effect, narrow[i]);
        expect(result == wanted, "GetProperty of %s: 0x%x", what[i], result);
        result = set_property_wide(effect, wide[i]);
        expect(result == wanted, "wide SetProperty of %s: 0x%x", what[i], result);
        result = get_property_wide(effect, wide[i]);
        expect(result == wanted, "wide GetProperty of %s: 0x%x", what[i], result);
    }
}

static void check_apply(Effect* effect, const CatalogueRow* row, const char* known_name) {
    const uint32_t wanted = strcmp(row->name, "Clouds") == 0 ? NOT_IMPLEMENTED : (uint32_t)SUCCESS;
    char name[64], value[TEXT_SIZE] = "1";
    Wide wide_name[64], wide_value[TEXT_SIZE] = {'1', 0};
    snprintf(name, sizeof name, "%s", known_name);
    widen(wide_name, known_name);
    Property property = {COOKIE, name, value};
    WideProperty wide_property = {COOKIE, wide_name, wide_value};
    const int32_t arguments[] = {0, 1, -1, INT32_MIN};
    for (int i = 0; i < 4; ++i) {
        expect_code(apply_property(effect, &property, arguments[i]), wanted, "ApplyProperty");
        expect_code(apply_property_wide(effect, &wide_property, arguments[i]), wanted, "wide ApplyProperty");
    }
    expect(property.cookie == COOKIE && wide_property.cookie == COOKIE, "ApplyProperty changed a cookie");
}

/* Values last through Configure and Shutdown, except those that Configure is said to overwrite. */
static void check_lasting(Factory* factory, const CatalogueRow* row, const PropertyRow* rows, int count) {
    Effect* effect = create_row(factory, row);
    const char* wanted[16] = {0};
    for (int i = 0; i < count; ++i) {
        if (!shows_at_once(&rows[i])) continue;
        const char* value = samples(&rows[i])[strcmp(start_value(row, &rows[i]), samples(&rows[i])[0]) == 0];
        wanted[i] = rows[i].configured ? rows[i].configured : value;
        set(effect, rows[i].name, value);
        expect_value(effect, rows[i].name, value, "SetProperty before Configure");
    }
    Stream stream = {0, 80, 48, PLANAR};
    expect_code(configure(effect, &stream), SUCCESS, "Configure");
    for (int i = 0; i < count; ++i)
        if (shows_at_once(&rows[i])) expect_value(effect, rows[i].name, wanted[i], "Configure");
    expect_code(shutdown_effect(effect), SUCCESS, "Shutdown");
    for (int i = 0; i < count; ++i)
        if (shows_at_once(&rows[i])) expect_value(effect, rows[i].name, wanted[i], "Shutdown");
    destroy_effect(factory, effect);
}

static void check_effect_with_table(Factory* factory, const CatalogueRow* row, int number) {
    int count = 0;
    const PropertyRow* rows = properties_of(row, &count);
    Effect* effect = create_row(factory, row);

    begin_check("properties %d: %s starts with its own values", number, row->name);
    for (int i = 0; i < count; ++i)
        expect_value(effect, rows[i].name, start_value(row, &rows[i]), "creation");
    end_check();

    for (int i = 0; i < count; ++i) {
        begin_check("properties %d: %s \"%s\"", number, row->name, rows[i].name);
        if (shows_at_once(&rows[i])) {
            if (rows[i].type == INTEGER) check_integer(effect, &rows[i]);
            if (rows[i].type == BOOLEAN) check_boolean(effect, &rows[i]);
            if (rows[i].type == COLOR) check_color(effect, &rows[i]);
            check_case(effect, &rows[i]);
            check_long_values(effect, &rows[i]);
            check_broken_values(effect, &rows[i]);
        } else {
            const char* const texts[] = {"1", "0", "-1", "999", "", "abc"};
            for (int k = 0; k < 6; ++k) {
                expect_code(set(effect, rows[i].name, texts[k]), SUCCESS, texts[k]);
                expect_code(set_wide(effect, rows[i].name, texts[k]), SUCCESS, texts[k]);
            }
        }
        end_check();
    }

    begin_check("properties %d: %s refuses names that it does not have", number, row->name);
    check_unknown_names(effect, rows);
    end_check();

    begin_check("properties %d: %s refuses null records, names and values", number, row->name);
    check_nulls(effect, INVALID_ARGUMENT, rows[0].name);
    end_check();

    begin_check("properties %d: %s, ApplyProperty", number, row->name);
    check_apply(effect, row, rows[0].name);
    end_check();
    destroy_effect(factory, effect);

    begin_check("properties %d: %s keeps what Configure does not overwrite", number, row->name);
    check_lasting(factory, row, rows, count);
    end_check();
}

/* ---- effects without a table ---------------------------------------------------------------------- */

/*
 * The wide form hands both texts through the narrow form and back, so the host gets them as they were, cut at
 * a whole character to 255 bytes of UTF-8.
 */
static void expect_round_trip(Effect* effect, const Wide* text) {
    Wide name[TEXT_SIZE] = {0}, value[TEXT_SIZE] = {0};
    const size_t length = wide_length(text), kept = units_that_fit(text, TEXT_SIZE);
    const size_t copied = length < TEXT_SIZE ? length : TEXT_SIZE - 1;
    memcpy(name, text, copied * sizeof(Wide));
    memcpy(value, text, copied * sizeof(Wide));
    expect_code(get_units(effect, name, value), SUCCESS, "wide GetProperty");
    const size_t name_length = wide_length(name), value_length = wide_length(value);
    expect(name_length == kept && memcmp(name, text, kept * sizeof(Wide)) == 0,
           "a name of %zu units comes back with %zu, want %zu", copied, name_length, kept);
    expect(value_length == kept && memcmp(value, text, kept * sizeof(Wide)) == 0,
           "a value of %zu units comes back with %zu, want %zu", copied, value_length, kept);
}

static void check_round_trips(Effect* effect) {
    /* Characters of 1, 2, 3 and 4 bytes of UTF-8, alone and behind ASCII, at every length around the limit.
     */
    const Wide characters[4][2] = {{'a', 0}, {0x00E9, 0}, {0x20AC, 0}, {0xD83D, 0xDE00}};
    for (int kind = 0; kind < 4; ++kind) {
        const size_t units = characters[kind][1] ? 2 : 1;
        for (size_t ascii = 0; ascii <= 255; ascii += ascii < 4 ? 1 : ascii < 244 ? 80 : 1) {
            Wide text[TEXT_SIZE];
            size_t length = 0;
            while (length < ascii) text[length++] = 'x';
            while (length + units < TEXT_SIZE) {
                memcpy(text + length, characters[kind], units * sizeof(Wide));
                length += units;
            }
            text[length] = 0;
            expect_round_trip(effect, text);
        }
    }
    Wide text[4];
    for (int i = 0; i < 2; ++i) {
        widen(text, i ? "abc" : "");
        expect_round_trip(effect, text);
    }
}

/* What cannot be kept has to come back as some text that ends within the buffer. */
static void check_broken_round_trips(Effect* effect) {
    for (int i = 0; i < BROKEN; ++i) {
        for (size_t ascii = 0; ascii < TEXT_SIZE - 4; ascii += ascii < 240 ? 60 : 1) {
            Wide name[TEXT_SIZE] = {0}, value[TEXT_SIZE] = {0};
            for (size_t k = 0; k < ascii; ++k) name[k] = value[k] = 'x';
            memcpy(name + ascii, kBroken[i], sizeof kBroken[i]);
            memcpy(value + ascii, kBroken[i], sizeof kBroken[i]);
            expect_code(get_units(effect, name, value), SUCCESS, "broken text");
            expect(name[TEXT_SIZE - 1] == 0 && value[TEXT_SIZE - 1] == 0, "broken text %d behind %zu: no end",
                   i, ascii);
            expect(wide_length(name) >= ascii && wide_length(value) >= ascii,
                   "broken text %d: lost its good part", i);
        }
    }
}

/* Buffers of 256 units that the host never wrote to: no terminator anywhere. */
static void check_unterminated(Effect* effect, uint32_t wanted) {
    Wide name[TEXT_SIZE], value[TEXT_SIZE];
    for (int i = 0; i < TEXT_SIZE; ++i) name[i] = value[i] = 0x4141;
    expect_code(get_units(effect, name, value), wanted, "wide GetProperty of unterminated buffers");
    const Wide* const texts[] = {name, value};
    for (int i = 0; i < 2; ++i) {
        int end = 0;
        while (end < TEXT_SIZE && texts[i][end]) ++end;
        expect(end < TEXT_SIZE, "%s came back without its end", i ? "the value" : "the name");
    }
}

static void check_accepts_everything(Effect* effect) {
    static char text[LONG_TEXT + 1];
    static Wide wide[LONG_TEXT + 1];
    memset(text, 'x', LONG_TEXT);
    widen(wide, text);
    const char* const names[] = {"", "Intensity", "NoSuchProperty", "\xff\x80", text};
    for (int i = 0; i < 5; ++i) {
        char value[TEXT_SIZE];
        memset(value, FILL, sizeof value);
        expect_code(set(effect, names[i], "1"), SUCCESS, "SetProperty");
        expect_code(set(effect, "Intensity", names[i]), SUCCESS, "SetProperty");
        expect_code(get(effect, names[i], value), SUCCESS, "GetProperty");
        expect(all_bytes((uint8_t*)value, sizeof value, FILL), "GetProperty wrote a value");
    }
    expect_code(set_units(effect, wide, wide), SUCCESS, "10,000 wide characters");
    for (int i = 0; i < BROKEN; ++i)
        expect_code(set_units(effect, kBroken[i], kBroken[i]), SUCCESS, "broken text");
    expect_code(apply_property(effect, NULL, 0), SUCCESS, "ApplyProperty of null");
    expect_code(apply_property_wide(effect, NULL, 0), SUCCESS, "wide ApplyProperty of null");
}

static void check_effect_without_table(Factory* factory, const CatalogueRow* row, int number) {
    Effect* effect = create_row(factory, row);
    begin_check("properties %d: %s has none and accepts every name", number, row->name);
    check_accepts_everything(effect);
    check_nulls(effect, SUCCESS, "Intensity");
    check_apply(effect, row, "Intensity");
    end_check();

    begin_check("properties %d: %s, wide texts come back, cut at a whole character", number, row->name);
    check_round_trips(effect);
    end_check();

    begin_check("properties %d: %s, broken wide texts come back terminated", number, row->name);
    check_broken_round_trips(effect);
    check_unterminated(effect, SUCCESS);
    end_check();
    destroy_effect(factory, effect);
}

/* ---- single cases --------------------------------------------------------------------------------- */

static void check_camera_flashes_mode(Factory* factory) {
    Effect* effect = create_named(factory, "Camera Flashes");
    begin_check("properties: the mode of Camera Flashes shows once a frame has taken it up");
    Stream stream = {0, 64, 48, PLANAR};
    expect_code(configure(effect, &stream), SUCCESS, "Configure");
    const char* const modes[][2] = {{"3", "3"}, {"0", "1"}, {"100", "7"}, {"5", "5"}};
    const char* shown = "1";
    for (int i = 0; i < 4; ++i) {
        uint8_t luma[64 * 48] = {0}, u[32 * 24] = {0}, v[32 * 24] = {0};
        Image image = {PLANAR, {luma, u, v}, 0, {sizeof luma, sizeof u, sizeof v}};
        Frame frame = {{0, 0, 0}, &image};
        expect_code(set(effect, "MODE", modes[i][0]), SUCCESS, modes[i][0]);
        expect_value(effect, "mode", shown, "SetProperty");
        expect_code(process_frame(effect, &frame), SUCCESS, "ProcessFrame");
        shown = modes[i][1];
        expect_value(effect, "mode", shown, "a frame");
    }
    end_check();
    destroy_effect(factory, effect);
}

static void check_instances_are_separate(Factory* factory) {
    Effect *a = create_named(factory, "Liquefy"), *b = create_named(factory, "Liquefy");
    begin_check("properties: two objects of one class keep their own values");
    expect_code(set(a, "INTENSITY", "999"), SUCCESS, "SetProperty");
    expect_value(a, "Intensity", "24", "\"999\"");
    expect_value(b, "Intensity", "16", "setting another object's");
    end_check();
    destroy_effect(factory, a);
    destroy_effect(factory, b);
}

void test_properties(void) {
    Factory* factory = create_factory();
    for (int i = 0; i < ROWS; ++i) {
        int count = 0;
        properties_of(&catalogue[i], &count);
        if (count) {
            check_effect_with_table(factory, &catalogue[i], i + 1);
        } else {
            check_effect_without_table(factory, &catalogue[i], i + 1);
        }
    }
    check_camera_flashes_mode(factory);
    check_instances_are_separate(factory);
    release(factory);
}
