/* What all effects have in common: the plain slots, Configure, and the entry checks of frames in their order.
 */
#include <string.h>

#include "catalogue.h"
#include "check.h"
#include "memory.h"
#include "picture.h"
#include "tests.h"

enum { WIDTH = 32, HEIGHT = 24 };

/* Two image addresses that must not be read: the second makes the address of Plane[0] null on this target. */
static Image* const kUnreadable[] = {(Image*)(uintptr_t)0xFFFFFFFC,
                                     (Image*)(uintptr_t)(0 - offsetof(Image, plane))};

static Random noise = {1};

static uint32_t configure_as(Effect* effect, int32_t width, int32_t height, int32_t format) {
    Stream stream = {random_next(&noise), width, height, format};
    const Stream before = stream;
    const uint32_t result = configure(effect, &stream);
    expect(memcmp(&stream, &before, sizeof stream) == 0, "Configure changed the record");
    return result;
}

/* What Configure returns for a format or size that it refuses. */
static uint32_t refusal(const CatalogueRow* row) {
    return row->traits & DISTORTION ? (uint32_t)SUCCESS : INVALID_ARGUMENT;
}

/* What a planar frame gets while there is no workspace. */
static uint32_t without_workspace(const CatalogueRow* row) {
    return row->traits & NO_WORKSPACE ? (uint32_t)SUCCESS : FAILURE;
}

/* An open picture of the format; its first bytes are those that Fish Eye writes in any case. */
static void open_picture(Picture* picture, int32_t format) {
    if (format == PACKED) {
        picture_packed(picture, WIDTH, HEIGHT, &noise);
    } else {
        picture_planar(picture, WIDTH, HEIGHT, &noise);
    }
    picture->image.format = format;
    picture->plane[0].data[0] = 0;
    for (int i = 1; i < 3 && picture->plane[i].size; ++i) picture->plane[i].data[0] = 128;
    picture_remember(picture);
}

/* A frame of the format that has to be answered with `wanted` and left as it is. */
static void expect_refused(Effect* effect, int32_t format, uint32_t wanted, const char* what) {
    Picture picture;
    open_picture(&picture, format);
    expect_code(process_frame(effect, &picture.frame), wanted, what);
    expect(picture_unchanged(&picture), "%s: the picture changed", what);
    expect(picture_intact(&picture), "%s: written past the planes or to the record", what);
    picture_close(&picture);
}

static void check_plain_slots(Effect* effect) {
    uint32_t flags = 0xDEADBEEF;
    expect_code(get_filter_flags(effect, &flags), SUCCESS, "GetFilterFlags");
    expect(flags == 0, "GetFilterFlags stores %u", flags);
    expect_code(get_filter_flags(effect, NULL), SUCCESS, "GetFilterFlags of null");
    expect_code(flush(effect, 0), SUCCESS, "Flush");
    expect_code(flush(effect, 0xFFFFFFFF), SUCCESS, "Flush of -1");
    for (int i = 0; i < 3; ++i) expect_code(shutdown_effect(effect), SUCCESS, "Shutdown before Configure");
}

static void check_formats(Effect* effect) {
    int32_t count = 77, list[3] = {55, 55, 55};
    expect_code(get_supported_formats(effect, NULL, &count), SUCCESS, "formats, null list");
    expect(count == 2, "formats, null list: count %d", count);
    const int32_t too_small[] = {1, 0, -1, INT32_MIN};
    for (int i = 0; i < 4; ++i) {
        count = too_small[i];
        expect_code(get_supported_formats(effect, list, &count), INVALID_ARGUMENT, "formats, count below 2");
        expect(count == too_small[i] && list[0] == 55 && list[1] == 55,
               "formats, count below 2: something changed");
    }
    const int32_t enough[] = {2, 3, INT32_MAX};
    for (int i = 0; i < 3; ++i) {
        count = enough[i];
        list[0] = list[1] = 55;
        expect_code(get_supported_formats(effect, list, &count), SUCCESS, "formats");
        expect(list[0] == PLANAR && list[1] == PACKED && list[2] == 55, "formats: %d, %d, %d", list[0],
               list[1], list[2]);
        expect(count == enough[i], "formats: the count was written");
    }
    expect_code(get_supported_formats(effect, list, NULL), INVALID_ARGUMENT, "formats, null count");
    expect_code(get_supported_formats(effect, NULL, NULL), INVALID_ARGUMENT, "formats, both null");
}

/* Null frames and images come before everything else, in every state. */
static void check_null_frames(Effect* effect, const char* state) {
    Frame frame = {{1, 2, 3}, NULL};
    expect(process_frame(effect, NULL) == INVALID_ARGUMENT, "%s: a null frame is not refused", state);
    expect(process_frame(effect, &frame) == INVALID_ARGUMENT, "%s: a null image is not refused", state);
    for (int i = 0; i < 2; ++i) {
        frame.image = kUnreadable[i];
        expect(process_frame(effect, &frame) == INVALID_ARGUMENT, "%s: image %p is not refused", state,
               (void*)frame.image);
    }
}

static void check_before_configure(Effect* effect, const CatalogueRow* row) {
    check_null_frames(effect, "before Configure");
    if (row->traits & NO_WORKSPACE) {
        Picture picture;
        open_picture(&picture, PLANAR);
        expect_code(process_frame(effect, &picture.frame), SUCCESS, "format 0 before Configure");
        expect(picture_intact(&picture), "format 0 before Configure: overrun");
        picture_close(&picture);
    } else {
        expect_refused(effect, PLANAR, FAILURE, "format 0 before Configure");
    }
    expect_refused(effect, PACKED, FAILURE, "format 2 before Configure");
    expect_refused(effect, 1, FAILURE, "format 1 before Configure");
    expect_refused(effect, -1, FAILURE, "format -1 before Configure");
}

static void check_bad_formats(Effect* effect, const CatalogueRow* row) {
    const int32_t formats[] = {1, 3, -1, INT32_MAX, INT32_MIN};
    for (int i = 0; i < 5; ++i) {
        expect_code(configure_as(effect, WIDTH, HEIGHT, formats[i]), refusal(row),
                    "Configure of a bad format");
        check_null_frames(effect, "bad format");
        expect_refused(effect, PLANAR, FAILURE, "format 0 after a bad one was configured");
        expect_refused(effect, PACKED, FAILURE, "format 2 after a bad one was configured");
        expect_refused(effect, formats[i], row->traits & DISTORTION ? FAILURE : INVALID_ARGUMENT,
                       "a frame of the bad format that was configured");
    }
}

static void check_bad_sizes(Effect* effect, const CatalogueRow* row) {
    const int32_t sizes[][2] = {{0, HEIGHT},  {WIDTH, 0},         {0, 0},
                                {-1, HEIGHT}, {WIDTH, -1},        {-WIDTH, -HEIGHT},
                                {16385, 16},  {16, 16385},        {INT32_MIN, INT32_MIN},
                                {65536, 1},   {1, INT32_MAX},     {INT32_MAX, INT32_MAX},
                                {16, 0},      {INT32_MIN, HEIGHT}};
    for (size_t i = 0; i < sizeof sizes / sizeof *sizes; ++i) {
        const int32_t width = sizes[i][0], height = sizes[i][1];
        expect(configure_as(effect, width, height, PLANAR) == refusal(row), "%d by %d is not refused", width,
               height);
        if (!(row->traits & NO_WORKSPACE))
            expect_refused(effect, PLANAR, FAILURE, "format 0 after a refused size");
        expect_refused(effect, PACKED, FAILURE, "format 2 after a refused size");
        expect(configure_as(effect, width, height, PACKED) == refusal(row), "%d by %d packed is not refused",
               width, height);
        expect_refused(effect, PLANAR, FAILURE, "format 0 after a refused packed size");
        /* The size is checked for every format; the distortions still return 0. */
        expect(configure_as(effect, width, height, 1) == refusal(row), "%d by %d format 1 is not refused",
               width, height);
    }
}

/* Each missing plane is refused and the others stay as they are. */
static void check_null_planes(Effect* effect, const CatalogueRow* row) {
    for (int missing = 0; missing < 3; ++missing) {
        Picture picture;
        open_picture(&picture, PLANAR);
        picture.image.plane[missing] = NULL;
        picture_remember(&picture);
        const bool luma_unused = missing == 0 && (row->traits & NO_WORKSPACE);
        const uint32_t result = process_frame(effect, &picture.frame);
        expect(result == (luma_unused ? (uint32_t)SUCCESS : INVALID_ARGUMENT), "Plane[%d] null: 0x%x",
               missing, result);
        if (!luma_unused) expect(picture_unchanged(&picture), "Plane[%d] null: the picture changed", missing);
        expect(picture_intact(&picture), "Plane[%d] null: overrun", missing);
        picture_close(&picture);
    }
}

static void check_planar(Effect* effect, const CatalogueRow* row) {
    expect_code(configure_as(effect, WIDTH, HEIGHT, PLANAR), SUCCESS, "Configure format 0");
    check_null_frames(effect, "format 0");
    check_null_planes(effect, row);
    expect_refused(effect, PACKED, FAILURE, "format 2 on planar");
    expect_refused(effect, 1, FAILURE, "format 1 on planar");
    /* The format is compared before the planes are looked at. */
    Image image = {PACKED, {NULL, NULL, NULL}, 0, {0, 0, 0}};
    Frame frame = {{0, 0, 0}, &image};
    /* Picture Me alone asks for the first plane before anything else. */
    expect_code(process_frame(effect, &frame), row->traits & FACES ? INVALID_ARGUMENT : FAILURE,
                "another format without planes");
    image.format = PLANAR;
    expect_code(process_frame(effect, &frame), INVALID_ARGUMENT, "no planes");

    if (!(row->traits & DISTORTION)) {
        expect_code(configure(effect, NULL), INVALID_ARGUMENT, "Configure of null");
    }
    for (int i = 0; i < 3; ++i) {
        Picture picture;
        open_picture(&picture, PLANAR);
        expect_code(process_frame(effect, &picture.frame), SUCCESS, "format 0");
        expect(picture_intact(&picture), "format 0: written past the planes or to the record");
        picture_close(&picture);
    }
    for (int i = 0; i < 2; ++i) expect_code(shutdown_effect(effect), SUCCESS, "Shutdown");
    if (without_workspace(row) == FAILURE) expect_refused(effect, PLANAR, FAILURE, "format 0 after Shutdown");
    expect_refused(effect, PACKED, FAILURE, "format 2 after Shutdown");
    check_null_frames(effect, "after Shutdown");
}

static void check_packed(Effect* effect, const CatalogueRow* row) {
    expect_code(configure_as(effect, WIDTH, HEIGHT, PACKED), SUCCESS, "Configure format 2");
    check_null_frames(effect, "format 2");
    expect_refused(effect, PLANAR, FAILURE, "format 0 on packed");
    expect_refused(effect, 1, FAILURE, "format 1 on packed");
    if (!(row->traits & PACKED_TOO)) {
        for (int i = 0; i < 3; ++i) expect_refused(effect, PACKED, NOT_IMPLEMENTED, "format 2");
        Image image = {PACKED, {NULL, NULL, NULL}, 0, {0, 0, 0}};
        Frame frame = {{0, 0, 0}, &image};
        expect_code(process_frame(effect, &frame), row->traits & FACES ? INVALID_ARGUMENT : NOT_IMPLEMENTED,
                    "format 2 without planes");
        return;
    }
    Picture picture;
    open_picture(&picture, PACKED);
    expect_code(process_frame(effect, &picture.frame), SUCCESS, "format 2");
    expect(picture_intact(&picture), "format 2: written past the plane or to the record");
    picture.image.plane[0] = NULL;
    picture_remember(&picture);
    expect_code(process_frame(effect, &picture.frame), INVALID_ARGUMENT, "format 2 without its plane");
    picture_close(&picture);
}

/* The other format, the other size, and Configure without Shutdown, again and again. */
static void check_reconfigure(Effect* effect) {
    for (int i = 0; i < 6; ++i) {
        expect_code(configure_as(effect, WIDTH + 2 * i, HEIGHT, i % 3 == 2 ? PACKED : PLANAR), SUCCESS,
                    "Configure");
        if (i % 3 == 2) continue;
        Picture picture;
        picture_planar(&picture, WIDTH + 2 * i, HEIGHT, &noise);
        expect_code(process_frame(effect, &picture.frame), SUCCESS, "a frame of the new size");
        expect(picture_intact(&picture), "a frame of the new size: overrun");
        picture_close(&picture);
    }
}

static void run_life(Factory* factory, const CatalogueRow* row) {
    Effect* effect = create_row(factory, row);
    for (int i = 0; i < 5; ++i) configure_as(effect, WIDTH, HEIGHT, PLANAR);
    Picture picture;
    open_picture(&picture, PLANAR);
    process_frame(effect, &picture.frame);
    picture_close(&picture);
    configure_as(effect, WIDTH, HEIGHT, PACKED);
    configure_as(effect, WIDTH, HEIGHT, PLANAR);
    configure_as(effect, 0, 0, PLANAR);
    configure_as(effect, WIDTH, HEIGHT, PLANAR);
    destroy_effect(factory, effect);
}

/* Process-wide tables are made in the first life and stay; a second life must leave nothing behind. */
static void check_leaks(Factory* factory, const CatalogueRow* row) {
    run_life(factory, row);
    const long blocks = live_blocks(), bytes = live_bytes();
    run_life(factory, row);
    expect(live_blocks() == blocks && live_bytes() == bytes, "%ld blocks of %ld bytes are left",
           live_blocks() - blocks, live_bytes() - bytes);
}

static void check_deleting_destructor(Factory* factory, const CatalogueRow* row) {
    for (uint32_t flags = 0; flags < 2; ++flags) {
        const long before = live_blocks();
        Effect* effect = create_row(factory, row);
        const void* address = effect;
        configure_as(effect, WIDTH, HEIGHT, PLANAR);
        expect(delete_effect(effect, flags) == address, "flags %u: another address", flags);
        if (flags == 0) {
            expect(live_blocks() == before + 1, "flags 0: %ld blocks, want the object's own only",
                   live_blocks() - before);
            module_free(effect);
        }
        expect(live_blocks() == before, "flags %u: %ld blocks are left", flags, live_blocks() - before);
    }
}

void test_contract(void) {
    Factory* factory = create_factory();
    for (int i = 0; i < ROWS; ++i) {
        const CatalogueRow* row = &catalogue[i];
        Effect* effect = create_row(factory, row);
        const char* name = row->name;

        begin_check("contract %d: %s, flags, Flush and early Shutdown", i + 1, name);
        check_plain_slots(effect);
        end_check();

        begin_check("contract %d: %s, supported formats", i + 1, name);
        check_formats(effect);
        end_check();

        begin_check("contract %d: %s, frames before Configure", i + 1, name);
        check_before_configure(effect, row);
        end_check();

        begin_check("contract %d: %s, bad formats", i + 1, name);
        check_bad_formats(effect, row);
        end_check();

        begin_check("contract %d: %s, bad sizes", i + 1, name);
        check_bad_sizes(effect, row);
        end_check();

        begin_check("contract %d: %s, entry checks of format 0", i + 1, name);
        check_planar(effect, row);
        end_check();

        begin_check("contract %d: %s, entry checks of format 2", i + 1, name);
        check_packed(effect, row);
        end_check();

        begin_check("contract %d: %s, Configure again without Shutdown", i + 1, name);
        check_reconfigure(effect);
        end_check();
        destroy_effect(factory, effect);

        begin_check("contract %d: %s, nothing stays behind", i + 1, name);
        check_leaks(factory, row);
        end_check();

        begin_check("contract %d: %s, slot 0 destroys, frees on bit 0 and returns the object", i + 1, name);
        check_deleting_destructor(factory, row);
        end_check();
    }
    release(factory);
}
