/* Every row of the catalogue: the object, its name, its property table. */
#include <string.h>

#include "catalogue.h"
#include "check.h"
#include "memory.h"
#include "tests.h"
#include "wide.h"

enum { ROOM = 64 };

static void check_name(Description* description, const char* wanted) {
    char name[ROOM] = "?";
    Wide wide[ROOM] = {'?'};
    expect(get_name(description, name, ROOM) == 1 && strcmp(name, wanted) == 0,
           "GetName: \"%s\", want \"%s\"", name, wanted);
    expect(get_name_wide(description, wide, ROOM) == 1 && wide_is(wide, wanted), "wide GetName differs");
}

static void check_table(Description* description, const PropertyRow* rows, int count) {
    expect(prop_count(description) == count, "GetPropCount: %d, want %d", prop_count(description), count);
    for (int i = 0; i < count; ++i) {
        char name[ROOM] = "?", initial[ROOM] = "?", range[ROOM] = "?";
        const int type = prop_type_info(description, i, name, ROOM, initial, ROOM, range, ROOM);
        expect(type == rows[i].type, "row %d: type %d, want %d", i, type, rows[i].type);
        expect(strcmp(name, rows[i].name) == 0 && strcmp(initial, rows[i].initial) == 0 &&
                   strcmp(range, rows[i].range) == 0,
               "row %d: \"%s\" \"%s\" \"%s\", want \"%s\" \"%s\" \"%s\"", i, name, initial, range,
               rows[i].name, rows[i].initial, rows[i].range);

        Wide wide_name[ROOM] = {'?'}, wide_initial[ROOM] = {'?'}, wide_range[ROOM] = {'?'};
        const int wide_type =
            prop_type_info_wide(description, i, wide_name, ROOM, wide_initial, ROOM, wide_range, ROOM);
        expect(wide_type == type && wide_is(wide_name, name) && wide_is(wide_initial, initial) &&
                   wide_is(wide_range, range),
               "row %d: the wide form differs", i);
    }
    const int outside[] = {count, count + 1, -1, INT32_MAX, INT32_MIN};
    for (int i = 0; i < 5; ++i) {
        char text[3][ROOM];
        Wide wide[3][ROOM];
        memset(text, 0x5C, sizeof text);
        memset(wide, 0x5C, sizeof wide);
        const int type = prop_type_info(description, outside[i], text[0], ROOM, text[1], ROOM, text[2], ROOM);
        expect(type == NO_PROPERTY, "index %d: type %d", outside[i], type);
        expect(all_bytes((const uint8_t*)text, sizeof text, 0x5C), "index %d: a buffer was touched",
               outside[i]);
        const int wide_type =
            prop_type_info_wide(description, outside[i], wide[0], ROOM, wide[1], ROOM, wide[2], ROOM);
        expect(wide_type == NO_PROPERTY, "index %d: wide type %d", outside[i], wide_type);
        expect(all_bytes((const uint8_t*)wide, sizeof wide, 0x5C), "index %d: a wide buffer was touched",
               outside[i]);
    }
}

/* Slots 16 to 18 of the filter itself always say that there is nothing. */
static void check_filter_says_nothing(Effect* effect) {
    expect(filter_prop_count(effect) == 0, "GetPropCount of the filter: %d", filter_prop_count(effect));
    for (int index = -1; index < 3; ++index) {
        char text[3][ROOM];
        Wide wide[3][ROOM];
        memset(text, 0x5C, sizeof text);
        memset(wide, 0x5C, sizeof wide);
        expect(filter_prop_type_info(effect, index, text[0], ROOM, text[1], ROOM, text[2], ROOM) ==
                       NO_PROPERTY &&
                   filter_prop_type_info_wide(effect, index, wide[0], ROOM, wide[1], ROOM, wide[2], ROOM) ==
                       NO_PROPERTY,
               "GetPropTypeInfo of the filter knows index %d", index);
        expect(all_bytes((const uint8_t*)text, sizeof text, 0x5C) &&
                   all_bytes((const uint8_t*)wide, sizeof wide, 0x5C),
               "GetPropTypeInfo of the filter wrote a text");
    }
}

void test_catalogue(void) {
    Factory* factory = create_factory();
    for (int i = 0; i < ROWS; ++i) {
        const CatalogueRow* row = &catalogue[i];
        Effect* effect = create_row(factory, row);
        int count = 0;
        const PropertyRow* rows = properties_of(row, &count);
        begin_check("catalogue %d: %s has its name and its table of %d", i + 1, row->name, count);
        Description* description = get_internal_info(effect);
        expect(description != NULL, "GetInternalInfo gives null");
        if (description != NULL) {
            expect(get_internal_info(effect) == description,
                   "GetInternalInfo gives another object each time");
            check_name(description, row->name);
            check_table(description, rows, count);
        }
        check_filter_says_nothing(effect);
        end_check();
        destroy_effect(factory, effect);
    }
    release(factory);
}
