/* Texts into buffers of every size: names and property tables. */
#include <string.h>

#include "catalogue.h"
#include "check.h"
#include "memory.h"
#include "tests.h"
#include "wide.h"

enum { LARGEST = 40, FILL = 0x5C };

static size_t smaller(size_t a, size_t b) {
    return a < b ? a : b;
}

/* `text` cut to fit `size` characters with the terminator; nothing at all for a size of 0. */
static void expect_cut(const Guarded* buffer, const char* text, const char* what) {
    const size_t kept = buffer->size ? smaller(strlen(text), buffer->size - 1) : 0;
    expect(guarded_intact(buffer), "%s, size %zu: written in front of the buffer", what, buffer->size);
    if (buffer->size) {
        expect(memcmp(buffer->data, text, kept) == 0 && buffer->data[kept] == 0, "%s, size %zu: wrong text",
               what, buffer->size);
    }
}

static void expect_wide_cut(const Guarded* buffer, const char* text, const char* what) {
    const Wide* wide = (const Wide*)(const void*)buffer->data;
    const size_t length = buffer->size / sizeof(Wide);
    const size_t kept = length ? smaller(strlen(text), length - 1) : 0;
    expect(guarded_intact(buffer), "%s, length %zu: written in front of the buffer", what, length);
    bool same = true;
    for (size_t i = 0; i < kept; ++i) same = same && wide[i] == (unsigned char)text[i];
    if (length) expect(same && wide[kept] == 0, "%s, length %zu: wrong text", what, length);
}

static void check_name_sizes(Description* description, const char* name) {
    for (uint32_t size = 0; size <= LARGEST; ++size) {
        Guarded buffer = guarded(size, FILL);
        const int32_t whole = get_name(description, (char*)buffer.data, size);
        expect(whole == (size > strlen(name)), "GetName, size %u: %d", size, whole);
        expect_cut(&buffer, name, "GetName");
        guarded_free(&buffer);

        buffer = guarded(size * sizeof(Wide), FILL);
        const int32_t wide = get_name_wide(description, (Wide*)(void*)buffer.data, (int32_t)size);
        expect(wide == (size > strlen(name)), "wide GetName, length %u: %d", size, wide);
        expect_wide_cut(&buffer, name, "wide GetName");
        guarded_free(&buffer);
    }
}

/* Sizes larger than the buffers; half of them are refused. */
static void check_absurd_name_sizes(Description* description, const char* name) {
    const size_t room = strlen(name) + 1;
    Guarded buffer = guarded(room, FILL), wide = guarded(room * sizeof(Wide), FILL);
    expect(get_name(description, (char*)buffer.data, 0x7FFFFFFF) == 1, "GetName, size 0x7FFFFFFF");
    expect_cut(&buffer, name, "GetName");
    expect(get_name_wide(description, (Wide*)(void*)wide.data, INT32_MAX) == 1,
           "wide GetName, length 0x7FFFFFFF");
    expect_wide_cut(&wide, name, "wide GetName");
    memset(buffer.data, FILL, buffer.size);
    memset(wide.data, FILL, wide.size);
    const uint32_t refused[] = {0x80000000, 0x80000001, 0xFFFFFFFF};
    for (int i = 0; i < 3; ++i) {
        expect(get_name(description, (char*)buffer.data, refused[i]) == 0, "GetName, size 0x%x", refused[i]);
        expect(get_name_wide(description, (Wide*)(void*)wide.data, (int32_t)refused[i]) == 0,
               "wide GetName, length %d", (int32_t)refused[i]);
    }
    expect(all_bytes(buffer.data, buffer.size, FILL), "GetName with a refused size wrote something");
    expect(all_bytes(wide.data, wide.size, FILL), "wide GetName with a refused length wrote something");
    expect(get_name(description, NULL, 10) == 0, "GetName into null");
    expect(get_name_wide(description, NULL, 10) == 0, "wide GetName into null");
    expect(get_name(description, NULL, 0) == 0, "GetName into null of size 0");
    expect(get_name_wide(description, NULL, 0) == 0, "wide GetName into null of length 0");
    guarded_free(&buffer);
    guarded_free(&wide);
}

/* One of the three buffers has `size`, the other two are large; and all three have it. */
static void check_table_sizes(Description* description, const PropertyRow* row, int index) {
    const char* const texts[3] = {row->name, row->initial, row->range};
    for (uint32_t size = 0; size <= LARGEST; ++size) {
        for (int small = 0; small < 4; ++small) {
            Guarded buffers[3], wide[3];
            uint32_t sizes[3];
            for (int k = 0; k < 3; ++k) {
                sizes[k] = small == 3 || small == k ? size : LARGEST;
                buffers[k] = guarded(sizes[k], FILL);
                wide[k] = guarded(sizes[k] * sizeof(Wide), FILL);
            }
            expect(
                prop_type_info(description, index, (char*)buffers[0].data, sizes[0], (char*)buffers[1].data,
                               sizes[1], (char*)buffers[2].data, sizes[2]) == row->type,
                "row %d, size %u: wrong type", index, size);
            expect(prop_type_info_wide(description, index, (Wide*)(void*)wide[0].data, sizes[0],
                                       (Wide*)(void*)wide[1].data, sizes[1], (Wide*)(void*)wide[2].data,
                                       sizes[2]) == row->type,
                   "row %d, length %u: wrong wide type", index, size);
            for (int k = 0; k < 3; ++k) {
                expect_cut(&buffers[k], texts[k], "GetPropTypeInfo");
                expect_wide_cut(&wide[k], texts[k], "wide GetPropTypeInfo");
                guarded_free(&buffers[k]);
                guarded_free(&wide[k]);
            }
        }
    }
}

/* A size of 0x80000000 or more, or no buffer, leaves out that one text. */
static void check_left_out_texts(Description* description, const PropertyRow* row, int index) {
    const char* const texts[3] = {row->name, row->initial, row->range};
    for (int skipped = 0; skipped < 3; ++skipped) {
        for (int null = 0; null < 2; ++null) {
            char text[3][LARGEST];
            Wide wide[3][LARGEST];
            char* to[3] = {text[0], text[1], text[2]};
            Wide* wide_to[3] = {wide[0], wide[1], wide[2]};
            uint32_t sizes[3] = {LARGEST, LARGEST, LARGEST};
            memset(text, FILL, sizeof text);
            memset(wide, FILL, sizeof wide);
            if (null) {
                to[skipped] = NULL;
                wide_to[skipped] = NULL;
            } else {
                sizes[skipped] = 0x80000000U + (uint32_t)skipped;
            }
            expect(prop_type_info(description, index, to[0], sizes[0], to[1], sizes[1], to[2], sizes[2]) ==
                       row->type,
                   "row %d without text %d: wrong type", index, skipped);
            expect(prop_type_info_wide(description, index, wide_to[0], sizes[0], wide_to[1], sizes[1],
                                       wide_to[2], sizes[2]) == row->type,
                   "row %d without text %d: wrong wide type", index, skipped);
            for (int k = 0; k < 3; ++k) {
                if (k != skipped) {
                    expect(strcmp(text[k], texts[k]) == 0 && wide_is(wide[k], texts[k]),
                           "row %d without text %d: text %d is wrong", index, skipped, k);
                    continue;
                }
                expect(all_bytes((const uint8_t*)text[k], sizeof text[k], FILL) &&
                           all_bytes((const uint8_t*)wide[k], sizeof wide[k], FILL),
                       "row %d: text %d was written", index, k);
            }
        }
    }
}

void test_text(void) {
    Factory* factory = create_factory();
    const char* last = "";
    for (int i = 0; i < ROWS; ++i) {
        const CatalogueRow* row = &catalogue[i];
        Effect* effect = create_row(factory, row);
        if (strcmp(last, row->name) == 0) { /* variants share their texts */
            destroy_effect(factory, effect);
            continue;
        }
        last = row->name;
        Description* description = get_internal_info(effect);

        begin_check("text: the name \"%s\" into buffers of 0 to 40 characters", row->name);
        check_name_sizes(description, row->name);
        end_check();

        begin_check("text: the name \"%s\" with sizes that cannot be true", row->name);
        check_absurd_name_sizes(description, row->name);
        end_check();

        int count = 0;
        const PropertyRow* rows = properties_of(row, &count);
        for (int k = 0; k < count; ++k) {
            begin_check("text: %s, row \"%s\" into buffers of 0 to 40 characters", row->name, rows[k].name);
            check_table_sizes(description, &rows[k], k);
            check_left_out_texts(description, &rows[k], k);
            end_check();
        }
        destroy_effect(factory, effect);
    }

    begin_check("text: GetName into 3 bytes gives 0, two characters and a terminator");
    Effect* effect = create_named(factory, "Gray Scale");
    char name[4] = {'?', '?', '?', '?'};
    expect(get_name(get_internal_info(effect), name, 3) == 0, "result");
    expect(memcmp(name, "Gr\0?", 4) == 0, "the buffer holds something else");
    destroy_effect(factory, effect);
    end_check();
    release(factory);
}
