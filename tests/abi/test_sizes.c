/* Every effect at sizes that a camera never has: nothing may be written outside the planes. */
#include <string.h>

#include "catalogue.h"
#include "check.h"
#include "picture.h"
#include "tests.h"

static Random noise = {4};

static bool known_code(uint32_t code) {
    return code == SUCCESS || code == INVALID_ARGUMENT || code == FAILURE || code == NOT_IMPLEMENTED;
}

/* Planes of exactly the format's bytes: 0 for chroma if a side is 1. */
static void run_frames(Effect* effect, int32_t width, int32_t height, int32_t format, int frames) {
    Stream stream = {0, width, height, format};
    const uint32_t configured = configure(effect, &stream);
    expect(configured == SUCCESS, "Configure %d by %d, format %d: 0x%x", width, height, format, configured);
    for (int i = 0; i < frames; ++i) {
        Picture picture;
        if (format == PACKED) {
            picture_packed(&picture, width, height, &noise);
        } else {
            picture_planar(&picture, width, height, &noise);
        }
        const uint32_t result = process_frame(effect, &picture.frame);
        expect(known_code(result), "%d by %d, format %d: 0x%x", width, height, format, result);
        if (result != SUCCESS) {
            expect(picture_unchanged(&picture), "%d by %d, format %d: refused, but changed", width, height,
                   format);
        }
        expect(picture_intact(&picture), "%d by %d, format %d: overrun", width, height, format);
        picture_close(&picture);
    }
}

static void check_small(Effect* effect) {
    const int32_t sides[] = {1, 2, 3, 4, 7, 8, 17, 32, 65};
    enum { SIDES = sizeof sides / sizeof *sides };
    for (int h = 0; h < SIDES; ++h) {
        for (int w = 0; w < SIDES; ++w) {
            run_frames(effect, sides[w], sides[h], PLANAR, 3);
            run_frames(effect, sides[w], sides[h], PACKED, 1);
        }
    }
}

static void check_long(Effect* effect) {
    const int32_t sizes[][2] = {{16384, 1}, {1, 16384}, {16384, 5}, {5, 16384}, {1280, 2}, {2, 1280}};
    for (size_t i = 0; i < sizeof sizes / sizeof *sizes; ++i) {
        run_frames(effect, sizes[i][0], sizes[i][1], PLANAR, 2);
        run_frames(effect, sizes[i][0], sizes[i][1], PACKED, 1);
    }
}

/* PlaneSize below what is there, zero and negative: less may be done, never more. */
static void check_small_claims(Effect* effect) {
    Stream stream = {0, 32, 24, PLANAR};
    expect_code(configure(effect, &stream), SUCCESS, "Configure");
    const int32_t claims[] = {0, 1, -1, INT32_MIN, 191};
    for (int i = 0; i < 5; ++i) {
        for (int plane = 0; plane < 3; ++plane) {
            Picture picture;
            picture_planar(&picture, 32, 24, &noise);
            picture.image.plane_size[plane] = claims[i];
            picture_remember(&picture);
            const uint32_t result = process_frame(effect, &picture.frame);
            expect(result == SUCCESS, "PlaneSize[%d] %d: 0x%x", plane, claims[i], result);
            expect(picture_intact(&picture), "PlaneSize[%d] %d: overrun", plane, claims[i]);
            picture_close(&picture);
        }
    }
}

/* Camera Flashes has twelve variants of one code; a few of them are enough for the many small sizes. */
enum { VARIANTS_TRIED = 4 };

static int variant_of(const CatalogueRow* row) {
    int variant = 0;
    for (const CatalogueRow* other = catalogue; other < row; ++other)
        if (strcmp(other->name, row->name) == 0) ++variant;
    return variant;
}

void test_sizes(void) {
    Factory* factory = create_factory();
    for (int i = 0; i < ROWS; ++i) {
        const CatalogueRow* row = &catalogue[i];
        if (variant_of(row) >= VARIANTS_TRIED) continue;
        Effect* effect = create_row(factory, row);
        begin_check("sizes %d: %s at sides of 1 to 65", i + 1, row->name);
        check_small(effect);
        end_check();
        destroy_effect(factory, effect);
    }
    release(factory);
}

void test_large_sizes(void) {
    Factory* factory = create_factory();
    for (int i = 0; i < ROWS; ++i) {
        const CatalogueRow* row = &catalogue[i];
        Effect* effect = create_row(factory, row);
        begin_check("sizes %d: %s at sides of 16384", i + 1, row->name);
        check_long(effect);
        end_check();

        begin_check("sizes %d: %s with plane sizes that promise too little", i + 1, row->name);
        check_small_claims(effect);
        end_check();
        destroy_effect(factory, effect);
    }
    release(factory);
}
