/* Different objects on different threads at the same time, of one class and of several. */
#include <pthread.h>
#include <stdatomic.h>
#include <stdlib.h>
#include <string.h>

#include "catalogue.h"
#include "check.h"
#include "memory.h"
#include "sepia_model.h"
#include "tests.h"
#include "wide.h"

enum { THREADS = 4, ROUNDS = 20, WIDTH = 48, HEIGHT = 32, LUMA = WIDTH * HEIGHT, CHROMA = LUMA / 4 };

static atomic_int wrong;

static void expect_here(bool holds) {
    if (!holds) atomic_fetch_add(&wrong, 1);
}

typedef struct {
    uint8_t luma[LUMA], u[CHROMA], v[CHROMA];
} Planes;

static uint32_t process(Effect* effect, Planes* planes) {
    Image image = {PLANAR, {planes->luma, planes->u, planes->v}, 0, {LUMA, CHROMA, CHROMA}};
    Frame frame = {{0, 0, 0}, &image};
    return process_frame(effect, &frame);
}

static void run_sepia(Factory* factory, Random* random) {
    Effect* effect = create_named(factory, "Sepia");
    Stream stream = {0, WIDTH, HEIGHT, PLANAR};
    expect_here(configure(effect, &stream) == SUCCESS);
    Planes planes, wanted;
    random_fill(random, (uint8_t*)&planes, sizeof planes);
    wanted = planes;
    sepia_planar_model((uint8_t*[]){wanted.luma, wanted.u, wanted.v}, WIDTH, HEIGHT);
    expect_here(process(effect, &planes) == SUCCESS);
    expect_here(memcmp(&planes, &wanted, sizeof planes) == 0);
    destroy_effect(factory, effect);
}

/* The wide forms convert through buffers; each thread must get its own texts back. */
static void run_wide_texts(Factory* factory, Random* random) {
    Effect* effect = create_named(factory, "Gray Scale");
    Wide name[TEXT_SIZE], value[TEXT_SIZE];
    char text[32];
    for (int i = 0; i < 31; ++i) text[i] = (char)('a' + random_next(random) % 26);
    text[31] = 0;
    widen(name, text);
    widen(value, text);
    WideProperty property = {0, name, value};
    expect_here(get_property_wide(effect, &property) == SUCCESS && wide_is(name, text) &&
                wide_is(value, text));
    destroy_effect(factory, effect);
}

/* Every effect there is; what the pictures look like depends on the other threads' random numbers. */
static void run_all_effects(Factory* factory, Random* random) {
    for (int i = 0; i < ROWS; ++i) {
        Effect* effect = create_row(factory, &catalogue[i]);
        Stream stream = {0, WIDTH, HEIGHT, PLANAR};
        expect_here(configure(effect, &stream) == SUCCESS);
        Planes planes;
        random_fill(random, (uint8_t*)&planes, sizeof planes);
        for (int frame = 0; frame < 3; ++frame) expect_here(process(effect, &planes) == SUCCESS);
        destroy_effect(factory, effect);
    }
}

static void run_listing(Factory* factory) {
    Guid list[LISTED];
    uint32_t count = LISTED;
    expect_here(enumerate_effects(factory, list, &count) == SUCCESS && count == LISTED);
    const Guid last = parse_guid(listed_only);
    expect_here(memcmp(&list[LISTED - 1], &last, sizeof last) == 0);
}

static void* run(void* seed) {
    Random random = {*(const uint64_t*)seed};
    Factory* factory = create_factory();
    run_listing(factory);
    run_all_effects(factory, &random);
    for (int round = 0; round < ROUNDS; ++round) {
        run_sepia(factory, &random);
        run_wide_texts(factory, &random);
    }
    release(factory);
    return NULL;
}

void test_threads(void) {
    begin_check("threads: %d of them, each with its own factory and effects", (int)THREADS);
    pthread_t threads[THREADS];
    uint64_t seeds[THREADS];
    for (int i = 0; i < THREADS; ++i) {
        seeds[i] = (uint64_t)i + 100;
        if (pthread_create(&threads[i], NULL, run, &seeds[i]) != 0) abort();
    }
    for (int i = 0; i < THREADS; ++i) pthread_join(threads[i], NULL);
    expect(atomic_load(&wrong) == 0, "%d results were wrong", atomic_load(&wrong));
    end_check();
}
