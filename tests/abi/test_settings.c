/* Settings files: which effects read one, and what bad records, paths and files do. */
#include <stdio.h>
#include <string.h>

#include "catalogue.h"
#include "check.h"
#include "memory.h"
#include "system.h"
#include "tests.h"
#include "wide.h"

enum { LONG_PATH = 10000 };

static uint32_t load(Effect* effect, const char* path) {
    static char copy[LONG_PATH + 1];
    char name[] = "settings";
    snprintf(copy, sizeof copy, "%s", path);
    Settings settings = {7, name, copy, {8, 9}};
    const uint32_t result = load_settings(effect, &settings);
    expect(settings.cookie == 7 && settings.name == name && settings.path == copy &&
               settings.reserved[0] == 8 && settings.reserved[1] == 9,
           "LoadSettings changed the record");
    return result;
}

static uint32_t load_units(Effect* effect, const Wide* path) {
    static Wide copy[LONG_PATH + 1];
    Wide name[16];
    widen(name, "settings");
    memcpy(copy, path, (wide_length(path) + 1) * sizeof(Wide));
    WideSettings settings = {7, name, copy, {8, 9}};
    const uint32_t result = load_settings_wide(effect, &settings);
    expect(settings.cookie == 7 && settings.name == name && settings.path == copy &&
               settings.reserved[0] == 8 && settings.reserved[1] == 9,
           "wide LoadSettings changed the record");
    return result;
}

static void write_file(const char* path, const char* content) {
    FILE* file = fopen(path, "wb");
    if (!expect(file != NULL, "cannot write %s", path)) return;
    fputs(content, file);
    fclose(file);
}

static bool reads_settings(const CatalogueRow* row) {
    return strcmp(row->name, "Line Art") == 0 || strcmp(row->name, "Picture Me") == 0;
}

static void check_default(Effect* effect) {
    static char path[LONG_PATH + 1];
    static Wide wide[LONG_PATH + 1];
    memset(path, 'x', LONG_PATH);
    widen(wide, path);
    expect_code(load(effect, "no such file"), SUCCESS, "LoadSettings");
    expect_code(load(effect, ""), SUCCESS, "LoadSettings of an empty path");
    expect_code(load(effect, path), SUCCESS, "LoadSettings of 10,000 characters");
    expect_code(load_units(effect, wide), SUCCESS, "LoadSettings of 10,000 wide characters");
    expect_code(load_settings(effect, NULL), SUCCESS, "LoadSettings of null");
    expect_code(load_settings_wide(effect, NULL), SUCCESS, "wide LoadSettings of null");
    Settings nothing = {0, NULL, NULL, {0, 0}};
    WideSettings no_wide = {0, NULL, NULL, {0, 0}};
    expect_code(load_settings(effect, &nothing), SUCCESS, "LoadSettings of nulls");
    expect_code(load_settings_wide(effect, &no_wide), SUCCESS, "wide LoadSettings of nulls");
}

static void expect_background(Effect* effect, const char* wanted, const char* after) {
    char name[] = "BackgroundColor", value[TEXT_SIZE] = "";
    Property property = {0, name, value};
    get_property(effect, &property);
    expect(strcmp(value, wanted) == 0, "after \"%s\": \"%s\", want \"%s\"", after, value, wanted);
}

static void test_line_art(Factory* factory) {
    Effect* effect = create_named(factory, "Line Art");
    const char* const files[][2] = {
        {"10 20 30", "10,20,30"}, {"300 -5 7\n", "255,0,7"}, {"12", "12,0,0"},     {"", "0,0,0"},
        {"red", "0,0,0"},         {"1,2,3", "1,0,0"},        {"1\n2\n3", "1,2,3"}, {"  4\t5\r\n6 7", "4,5,6"},
        {"7 8 x", "7,8,0"},       {"-1 -2 -3", "0,0,0"},
    };
    begin_check("settings: Line Art reads three numbers");
    for (size_t i = 0; i < sizeof files / sizeof *files; ++i) {
        write_file("line-art.txt", files[i][0]);
        expect_code(load(effect, "line-art.txt"), SUCCESS, "LoadSettings");
        expect_background(effect, files[i][1], files[i][0]);
        write_file("line-art.txt", "90 91 92");
        Wide path[32];
        widen(path, "line-art.txt");
        expect_code(load_units(effect, path), SUCCESS, "wide LoadSettings");
        expect_background(effect, "90,91,92", "the wide form");
    }
    remove("line-art.txt");
    end_check();

    begin_check("settings: Line Art reads a file whose name is not ASCII through the wide form");
    /* The second name is in no 8-bit code page. */
    const Wide paths[][7] = {{0x00E9, 0x20AC, '.', 't', 'x', 't', 0},
                             {0x0416, 0x4E2D, '.', 't', 'x', 't', 0}};
    for (int i = 0; i < 2; ++i) {
        FILE* file = open_to_write(paths[i]);
        if (!expect(file != NULL, "cannot write file %d", i)) continue;
        fprintf(file, "5 6 %d", 7 + i);
        fclose(file);
        expect_code(load_units(effect, paths[i]), SUCCESS, "wide LoadSettings");
        expect_background(effect, i == 0 ? "5,6,7" : "5,6,8", "the wide form");
        remove_file(paths[i]);
    }
    end_check();

    begin_check("settings: Line Art fails on what cannot be opened and keeps its colour");
    static char long_path[LONG_PATH + 1];
    static Wide long_wide[LONG_PATH + 1];
    memset(long_path, 'x', LONG_PATH);
    widen(long_wide, long_path);
    expect_code(load(effect, "no such file"), FAILURE, "a missing file");
    expect_code(load(effect, ""), FAILURE, "an empty path");
    expect_code(load(effect, long_path), FAILURE, "10,000 characters");
    expect_code(load_units(effect, long_wide), FAILURE, "10,000 wide characters");
    expect_code(load_settings(effect, NULL), FAILURE, "null");
    expect_code(load_settings_wide(effect, NULL), FAILURE, "wide null");
    Settings nothing = {0, NULL, NULL, {0, 0}};
    WideSettings no_wide = {0, NULL, NULL, {0, 0}};
    expect(load_settings(effect, &nothing) != SUCCESS, "a record of nulls succeeds");
    expect(load_settings_wide(effect, &no_wide) != SUCCESS, "a wide record of nulls succeeds");
    expect_background(effect, "5,6,8", "failures");
    end_check();
    destroy_effect(factory, effect);
}

/* Picture Me accepts another cascade; with an invalid one, frames pass unchanged. */
static void test_picture_me(Factory* factory) {
    Effect* effect = create_named(factory, "Picture Me");
    begin_check("settings: Picture Me goes on without a usable cascade");
    expect_code(load_settings(effect, NULL), FAILURE, "null");
    expect_code(load_settings_wide(effect, NULL), FAILURE, "wide null");
    Stream stream = {0, 64, 48, PLANAR};
    write_file("broken.txt", "Cascade -1 99999999 x y z\n");
    const char* const paths[] = {"no such file", "", "broken.txt", "."};
    for (int i = 0; i < 4; ++i) {
        expect_code(configure(effect, &stream), SUCCESS, "Configure");
        expect_code(load(effect, paths[i]), SUCCESS, paths[i]);
        uint8_t luma[64 * 48] = {9}, u[32 * 24] = {9}, v[32 * 24] = {9};
        Image image = {PLANAR, {luma, u, v}, 0, {sizeof luma, sizeof u, sizeof v}};
        Frame frame = {{0, 0, 0}, &image};
        expect_code(process_frame(effect, &frame), SUCCESS, "a frame");
        expect(luma[0] == 9 && all_bytes(luma + 1, sizeof luma - 1, 0), "the frame changed");
    }
    remove("broken.txt");
    end_check();
    destroy_effect(factory, effect);
}

void test_settings(void) {
    Factory* factory = create_factory();
    for (int i = 0; i < ROWS; ++i) {
        if (reads_settings(&catalogue[i])) continue;
        Effect* effect = create_row(factory, &catalogue[i]);
        begin_check("settings %d: %s has none and answers 0", i + 1, catalogue[i].name);
        check_default(effect);
        end_check();
        destroy_effect(factory, effect);
    }
    test_line_art(factory);
    test_picture_me(factory);
    release(factory);
}
