/* Gray Scale and Sepia on frames, byte for byte. */
#include <string.h>

#include "catalogue.h"
#include "check.h"
#include "picture.h"
#include "sepia_model.h"
#include "tests.h"

static Random noise = {3};

static void configure_as(Effect* effect, int32_t width, int32_t height, int32_t format) {
    Stream stream = {0xCAFE, width, height, format};
    expect(configure(effect, &stream) == SUCCESS, "Configure %d by %d, format %d fails", width, height,
           format);
}

/* ---- Gray Scale ----------------------------------------------------------------------------------- */

/* The first `count` bytes of the chroma plane are 128, what follows is as it was. */
static bool neutral(const Picture* picture, int plane, size_t count) {
    const Guarded* bytes = &picture->plane[plane];
    return all_bytes(bytes->data, count, 128) &&
           memcmp(bytes->data + count, picture->before[plane] + count, bytes->size - count) == 0;
}

static void check_gray_sizes(Effect* effect) {
    const int32_t sizes[][2] = {{1, 1},     {2, 2},     {3, 3},     {1, 40},    {40, 1},
                                {17, 9},    {32, 24},   {33, 25},   {320, 240}, {16384, 2},
                                {2, 16384}, {1, 16384}, {16384, 1}, {641, 479}};
    for (size_t i = 0; i < sizeof sizes / sizeof *sizes; ++i) {
        Picture picture;
        picture_planar(&picture, sizes[i][0], sizes[i][1], &noise);
        configure_as(effect, sizes[i][0], sizes[i][1], PLANAR);
        expect_code(process_frame(effect, &picture.frame), SUCCESS, "ProcessFrame");
        expect(plane_unchanged(&picture, 0) && neutral(&picture, 1, picture.plane[1].size) &&
                   neutral(&picture, 2, picture.plane[2].size) && picture_intact(&picture),
               "%d by %d: wrong picture", sizes[i][0], sizes[i][1]);
        picture_close(&picture);
    }
    Stream largest = {0, 16384, 16384, PLANAR};
    expect_code(configure(effect, &largest), SUCCESS, "Configure 16384 by 16384");
}

/* The byte count of each plane comes from the frame, not from the configured size. */
static void check_gray_counts(Effect* effect) {
    const int32_t counts[][2] = {{0, 0},   {0, 64},  {64, 0},  {1, 2},
                                 {63, 64}, {-1, 64}, {64, -1}, {INT32_MIN, INT32_MIN}};
    configure_as(effect, 16, 16, PLANAR);
    for (size_t i = 0; i < sizeof counts / sizeof *counts; ++i) {
        Picture picture;
        picture_planar(&picture, 16, 16, &noise);
        size_t filled[3] = {0, 0, 0};
        for (int k = 1; k < 3; ++k) {
            picture.image.plane_size[k] = counts[i][k - 1];
            if (counts[i][k - 1] > 0) filled[k] = (size_t)counts[i][k - 1];
        }
        picture.image.plane_size[0] = INT32_MIN; /* never asked for */
        picture_remember(&picture);
        expect_code(process_frame(effect, &picture.frame), SUCCESS, "ProcessFrame");
        expect(plane_unchanged(&picture, 0) && neutral(&picture, 1, filled[1]) &&
                   neutral(&picture, 2, filled[2]) && picture_intact(&picture),
               "sizes %d and %d: wrong picture", counts[i][0], counts[i][1]);
        picture_close(&picture);
    }
    Picture picture;
    picture_open(&picture, PLANAR, 0, 1000, 5, &noise);
    expect_code(process_frame(effect, &picture.frame), SUCCESS, "planes larger than configured");
    expect(neutral(&picture, 1, 1000) && neutral(&picture, 2, 5) && picture_intact(&picture),
           "planes larger than configured: wrong picture");
    picture_close(&picture);
}

static void test_gray_scale(Factory* factory) {
    Effect* effect = create_named(factory, "Gray Scale");
    begin_check("gray scale: chroma becomes 128, luma stays, at every size");
    check_gray_sizes(effect);
    end_check();

    begin_check("gray scale: fills as many bytes as the frame says, none for 0 or less");
    check_gray_counts(effect);
    end_check();

    begin_check("gray scale: a null luma plane does not matter, a null chroma plane refuses the frame");
    for (int missing = 0; missing < 3; ++missing) {
        Picture picture;
        picture_planar(&picture, 16, 16, &noise);
        picture.image.plane[missing] = NULL;
        picture_remember(&picture);
        expect_code(process_frame(effect, &picture.frame), missing ? INVALID_ARGUMENT : (uint32_t)SUCCESS,
                    "result");
        const bool done = neutral(&picture, 1, 64) && neutral(&picture, 2, 64);
        expect(missing ? picture_unchanged(&picture) : done, "Plane[%d] null: wrong picture", missing);
        picture_close(&picture);
    }
    end_check();

    begin_check("gray scale: works before Configure, after Shutdown and after a refused size");
    destroy_effect(factory, effect);
    effect = create_named(factory, "Gray Scale");
    Stream refused = {0, 0, -7, PLANAR};
    for (int state = 0; state < 3; ++state) {
        Picture picture;
        picture_planar(&picture, 16, 16, &noise);
        if (state == 1) shutdown_effect(effect);
        if (state == 2) expect_code(configure(effect, &refused), INVALID_ARGUMENT, "Configure");
        expect_code(process_frame(effect, &picture.frame), SUCCESS, "ProcessFrame");
        expect(neutral(&picture, 1, 64) && neutral(&picture, 2, 64) && plane_unchanged(&picture, 0),
               "state %d: wrong picture", state);
        picture_close(&picture);
    }
    end_check();

    begin_check("gray scale: in format 2 every frame is not implemented and stays as it is");
    configure_as(effect, 16, 16, PACKED);
    for (int i = 0; i < 3; ++i) {
        Picture picture;
        picture_packed(&picture, 16, 16, &noise);
        expect_code(process_frame(effect, &picture.frame), NOT_IMPLEMENTED, "ProcessFrame");
        expect(picture_unchanged(&picture) && picture_intact(&picture), "the picture changed");
        picture_close(&picture);
    }
    end_check();
    destroy_effect(factory, effect);
}

/* ---- Sepia ---------------------------------------------------------------------------------------- */

/* The planes hold what the model makes of what they held. */
static bool sepia_matches(const Picture* picture, int width, int height) {
    if (picture->image.format == PACKED) {
        sepia_packed_model(picture->before[0], width, height);
    } else {
        sepia_planar_model(picture->before, width, height);
    }
    return picture_unchanged(picture);
}

static void check_sepia_size(Effect* effect, int width, int height, int32_t format) {
    Picture picture;
    if (format == PACKED) {
        picture_packed(&picture, width, height, &noise);
    } else {
        picture_planar_round_up(&picture, width, height, &noise);
    }
    configure_as(effect, width, height, format);
    expect_code(process_frame(effect, &picture.frame), SUCCESS, "ProcessFrame");
    expect(picture_intact(&picture), "%d by %d, format %d: overrun", width, height, format);
    expect(sepia_matches(&picture, width, height), "%d by %d, format %d: wrong picture", width, height,
           format);
    picture_close(&picture);
}

static void check_sepia_sizes(Effect* effect, int32_t format) {
    for (int height = 1; height <= 40; ++height)
        for (int width = 1; width <= 40; ++width) check_sepia_size(effect, width, height, format);
    const int sizes[][2] = {{320, 240}, {641, 479}, {16384, 3}, {3, 16384},
                            {16384, 1}, {1, 16384}, {16383, 2}};
    for (size_t i = 0; i < sizeof sizes / sizeof *sizes; ++i)
        check_sepia_size(effect, sizes[i][0], sizes[i][1], format);
}

static void check_sepia_pixel(Effect* effect, const uint8_t in[3], const uint8_t out[3]) {
    uint8_t pixel[3] = {in[0], in[1], in[2]};
    Image image = {PACKED, {pixel, NULL, NULL}, 0, {3, 0, 0}};
    Frame frame = {{0, 0, 0}, &image};
    configure_as(effect, 1, 1, PACKED);
    expect_code(process_frame(effect, &frame), SUCCESS, "ProcessFrame");
    expect(memcmp(pixel, out, 3) == 0, "%d, %d, %d becomes %d, %d, %d", in[0], in[1], in[2], pixel[0],
           pixel[1], pixel[2]);
}

/* A 256 by 256 square of every first and second channel for each of many third ones. */
static void check_sepia_cube(Effect* effect) {
    Picture picture;
    picture_packed(&picture, 256, 256, &noise);
    configure_as(effect, 256, 256, PACKED);
    for (int third = 0; third < 256; third += third < 8 || third >= 248 ? 1 : 5) {
        for (int i = 0; i < 65536; ++i) {
            picture.plane[0].data[3 * i] = (uint8_t)(i & 255);
            picture.plane[0].data[3 * i + 1] = (uint8_t)(i >> 8);
            picture.plane[0].data[3 * i + 2] = (uint8_t)third;
        }
        picture_remember(&picture);
        expect_code(process_frame(effect, &picture.frame), SUCCESS, "ProcessFrame");
        expect(sepia_matches(&picture, 256, 256), "third channel %d: wrong picture", third);
    }
    picture_close(&picture);
}

/* Every luma against every U for many V, one sample of chroma for four equal lumas. */
static void check_sepia_planar_cube(Effect* effect) {
    Picture picture;
    picture_planar(&picture, 512, 512, &noise);
    configure_as(effect, 512, 512, PLANAR);
    for (int v = 0; v < 256; v += v < 3 || v >= 252 ? 1 : 17) {
        for (int y = 0; y < 512; ++y)
            for (int x = 0; x < 512; ++x) picture.plane[0].data[y * 512 + x] = (uint8_t)(y / 2);
        for (int i = 0; i < 65536; ++i) picture.plane[1].data[i] = (uint8_t)(i & 255);
        memset(picture.plane[2].data, v, 65536);
        picture_remember(&picture);
        expect_code(process_frame(effect, &picture.frame), SUCCESS, "ProcessFrame");
        expect(sepia_matches(&picture, 512, 512), "V %d: wrong picture", v);
    }
    picture_close(&picture);
}

/*
 * Odd sizes: the frame states chroma sizes too small even for rounding down. A size of 0 means unknown; the
 * planes are then assumed to be rounded up.
 */
static void check_sepia_short_chroma(Effect* effect) {
    const int32_t sizes[][2] = {{4, 5}, {5, 5}, {7, 4}, {33, 25}, {641, 4}};
    for (size_t i = 0; i < sizeof sizes / sizeof *sizes; ++i) {
        const int32_t width = sizes[i][0], height = sizes[i][1];
        const int32_t rounded_up = (width + 1) / 2 * ((height + 1) / 2), least = width / 2 * (height / 2);
        const int32_t claims[][2] = {{least - 1, rounded_up},
                                     {rounded_up, least - 1},
                                     {1, 1},
                                     {rounded_up, rounded_up},
                                     {0, 0},
                                     {-1, INT32_MIN},
                                     {0, rounded_up},
                                     {rounded_up + 1, INT32_MAX}};
        configure_as(effect, width, height, PLANAR);
        for (size_t k = 0; k < sizeof claims / sizeof *claims; ++k) {
            Picture picture;
            picture_planar_round_up(&picture, width, height, &noise);
            bool refused = false;
            for (int plane = 1; plane < 3; ++plane) {
                const int32_t claim = claims[k][plane - 1];
                picture.image.plane_size[plane] = claim;
                refused = refused || (claim > 0 && claim < least);
            }
            picture_remember(&picture);
            const uint32_t result = process_frame(effect, &picture.frame);
            expect(result == (refused ? INVALID_ARGUMENT : (uint32_t)SUCCESS), "%d by %d, sizes %d, %d: 0x%x",
                   width, height, claims[k][0], claims[k][1], result);
            expect(picture_intact(&picture), "%d by %d: overrun", width, height);
            expect(refused ? picture_unchanged(&picture) : sepia_matches(&picture, width, height),
                   "%d by %d, sizes %d, %d: wrong picture", width, height, claims[k][0], claims[k][1]);
            picture_close(&picture);
        }
    }
}

/* Null planes come before the missing workspace, and that before chroma planes that are too small. */
static void check_sepia_order(Factory* factory) {
    Effect* effect = create_named(factory, "Sepia");
    for (int state = 0; state < 4; ++state) {
        Stream stream = {0, 5, 5, PLANAR}, refused = {0, 16385, 5, PLANAR};
        if (state == 1) expect_code(configure(effect, &refused), INVALID_ARGUMENT, "Configure");
        if (state >= 2) configure_as(effect, stream.width, stream.height, PLANAR);
        if (state == 2) shutdown_effect(effect);
        const uint32_t whole = state == 3 ? (uint32_t)SUCCESS : FAILURE;
        const uint32_t small = state == 3 ? INVALID_ARGUMENT : FAILURE;
        Picture picture;
        picture_planar_round_up(&picture, 5, 5, &noise);
        for (int missing = 0; missing < 3; ++missing) {
            picture.image.plane[missing] = NULL;
            picture.image.plane_size[1] = missing == 1 ? 3 : 9;
            expect(process_frame(effect, &picture.frame) == INVALID_ARGUMENT, "state %d: Plane[%d] null",
                   state, missing);
            expect(picture_unchanged(&picture), "state %d: Plane[%d] null: the picture changed", state,
                   missing);
            picture.image.plane[missing] = picture.plane[missing].data;
        }
        picture.image.plane_size[1] = 3;
        uint32_t result = process_frame(effect, &picture.frame);
        expect(result == small, "state %d: small chroma: 0x%x", state, result);
        expect(picture_unchanged(&picture), "state %d: small chroma: the picture changed", state);
        picture.image.plane_size[1] = 9;
        result = process_frame(effect, &picture.frame);
        expect(result == whole, "state %d: a good frame: 0x%x", state, result);
        picture_close(&picture);
    }
    destroy_effect(factory, effect);
}

static void test_sepia(Factory* factory) {
    Effect* effect = create_named(factory, "Sepia");
    begin_check("sepia: format 2, black becomes 0, 0, 1 and white 255, 255, 240");
    check_sepia_pixel(effect, (const uint8_t[]){0, 0, 0}, (const uint8_t[]){0, 0, 1});
    check_sepia_pixel(effect, (const uint8_t[]){255, 255, 255}, (const uint8_t[]){255, 255, 240});
    end_check();

    begin_check("sepia: format 2 at every size from 1 to 40 and at large ones");
    check_sepia_sizes(effect, PACKED);
    end_check();

    begin_check("sepia: format 0 at every size from 1 to 40 and at large ones");
    check_sepia_sizes(effect, PLANAR);
    end_check();

    begin_check("sepia: format 2, every pair of red and green for many blues");
    check_sepia_cube(effect);
    end_check();

    begin_check("sepia: format 0, every pair of luma and U for many V");
    check_sepia_planar_cube(effect);
    end_check();

    begin_check("sepia: at odd sizes chroma planes that are too small refuse the frame");
    check_sepia_short_chroma(effect);
    end_check();

    begin_check("sepia: null planes, then the workspace, then the chroma size");
    check_sepia_order(factory);
    end_check();

    begin_check("sepia: format 2 needs no workspace");
    configure_as(effect, 16, 16, PACKED);
    shutdown_effect(effect);
    Picture picture;
    picture_packed(&picture, 16, 16, &noise);
    expect_code(process_frame(effect, &picture.frame), SUCCESS, "after Shutdown");
    expect(sepia_matches(&picture, 16, 16), "after Shutdown: wrong picture");
    Stream refused = {0, -16, 16, PACKED};
    expect_code(configure(effect, &refused), INVALID_ARGUMENT, "Configure");
    picture_remember(&picture);
    expect_code(process_frame(effect, &picture.frame), SUCCESS, "after a refused size");
    expect(picture_unchanged(&picture) && picture_intact(&picture),
           "after a refused size: the picture changed");
    picture_close(&picture);
    end_check();

    begin_check("sepia: Configure of null leaves the stream as it was");
    configure_as(effect, 16, 16, PLANAR);
    expect_code(configure(effect, NULL), INVALID_ARGUMENT, "Configure");
    picture_planar(&picture, 16, 16, &noise);
    expect_code(process_frame(effect, &picture.frame), SUCCESS, "ProcessFrame");
    expect(sepia_matches(&picture, 16, 16), "wrong picture");
    picture_close(&picture);
    end_check();
    destroy_effect(factory, effect);
}

void test_tone(void) {
    Factory* factory = create_factory();
    test_gray_scale(factory);
    test_sepia(factory);
    release(factory);
}
