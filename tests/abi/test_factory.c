/* Loading, the factory and its two tables. */
#include <string.h>

#include "catalogue.h"
#include "check.h"
#include "memory.h"
#include "tests.h"

static const uint32_t kUntouched = 0xDEADBEEF;

void test_module(void) {
    begin_check("module: exports the creation function under its own name only");
    expect(exported("CreateSpecialEffectFactory") != NULL, "CreateSpecialEffectFactory is not there");
    expect(exported("CreateFactory") == NULL, "another name is there");
    end_check();

    begin_check("module: can be unloaded and loaded again");
    release(create_factory());
    reload_module();
    Factory* factory = create_factory();
    uint32_t count = 0;
    expect_code(enumerate_effects(factory, NULL, &count), SUCCESS, "EnumerateEffects");
    expect(count == LISTED, "lists %u", count);
    release(factory);
    end_check();
}

static void test_references(void) {
    begin_check("factory: a new one is freed by its first Release");
    const long before = live_blocks();
    Factory* factory = create_factory();
    expect(live_blocks() == before + 1, "takes %ld blocks", live_blocks() - before);
    expect_code(release(factory), 0, "Release");
    expect(live_blocks() == before, "%ld blocks are left", live_blocks() - before);
    end_check();

    begin_check("factory: with one AddRef it is freed by its first Release as well");
    factory = create_factory();
    expect_code(add_ref(factory), 0, "AddRef gives 0, not the count");
    expect_code(release(factory), 0, "Release");
    expect(live_blocks() == before, "%ld blocks are left", live_blocks() - before);
    end_check();

    begin_check("factory: with three AddRef it lives until the third Release");
    factory = create_factory();
    for (int i = 0; i < 3; ++i) expect_code(add_ref(factory), 0, "AddRef");
    for (int i = 0; i < 2; ++i) {
        expect_code(release(factory), 0, "Release");
        expect(live_blocks() == before + 1, "it is gone after Release %d", i + 1);
    }
    uint32_t count = 0;
    expect_code(enumerate_effects(factory, NULL, &count), SUCCESS, "EnumerateEffects in between");
    expect_code(release(factory), 0, "last Release");
    expect(live_blocks() == before, "%ld blocks are left", live_blocks() - before);
    end_check();

    begin_check("factory: slot 7 destroys, frees on bit 0 only, and returns the object");
    factory = create_factory();
    expect(delete_factory(factory, 0) == (void*)factory, "flags 0: another address");
    expect(live_blocks() == before + 1, "flags 0: the memory was freed");
    module_free(factory);
    factory = create_factory();
    expect(delete_factory(factory, 2) == (void*)factory, "flags 2: another address");
    expect(live_blocks() == before + 1, "flags 2: the memory was freed");
    module_free(factory);
    const void* address = factory = create_factory();
    expect(delete_factory(factory, 1) == address, "flags 1: another address");
    expect(live_blocks() == before, "flags 1: the memory was not freed");
    address = factory = create_factory();
    expect(delete_factory(factory, 0xFFFFFFFF) == address, "flags -1: another address");
    expect(live_blocks() == before, "flags -1: the memory was not freed");
    end_check();

    begin_check("factory: two of them are separate objects");
    Factory *a = create_factory(), *b = create_factory();
    expect(a != b, "one address");
    add_ref(a);
    release(b);
    expect(live_blocks() == before + 1, "%ld blocks for one factory", live_blocks() - before);
    release(a);
    expect(live_blocks() == before, "%ld blocks are left", live_blocks() - before);
    end_check();
}

static void test_reserved(void) {
    Factory* factory = create_factory();
    begin_check("factory: ReservedQuery returns 0 for any arguments");
    expect_code(reserved_query(factory, 0, 0, 0, 0, 0), 0, "all 0");
    expect_code(reserved_query(factory, 1, 2, 3, 4, 5), 0, "1 to 5");
    expect_code(reserved_query(factory, ~0U, ~0U, ~0U, ~0U, ~0U), 0, "all ones");
    end_check();

    begin_check("factory: ReservedNoOp does nothing");
    const long before = live_blocks();
    reserved_no_op(factory);
    expect(live_blocks() == before, "the heap changed");
    end_check();
    release(factory);
}

/* The listing as the catalogue gives it; false when the catalogue has a hole. */
static bool expected_listing(Guid list[LISTED]) {
    bool filled[LISTED] = {false};
    for (int i = 0; i < ROWS; ++i) {
        for (int k = 0; k < 2; ++k) {
            const int place = catalogue[i].listed_at[k];
            if (place < 0) continue;
            list[place] = parse_guid(catalogue[i].guid);
            filled[place] = true;
        }
    }
    list[LISTED - 1] = parse_guid(listed_only);
    for (int i = 0; i < LISTED - 1; ++i)
        if (!filled[i]) return false;
    return true;
}

static void test_listing(void) {
    Factory* factory = create_factory();
    Guid wanted[LISTED];
    begin_check("listing: a null list yields the count 41, for any input count");
    for (uint32_t start = 0; start < 3; ++start) {
        uint32_t count = start * 0x7FFFFFFF;
        expect_code(enumerate_effects(factory, NULL, &count), SUCCESS, "result");
        expect(count == LISTED, "count is %u", count);
    }
    end_check();

    begin_check("listing: a null count is an invalid argument, with and without a list");
    Guarded list = guarded(LISTED * sizeof(Guid), 0x5C);
    expect_code(enumerate_effects(factory, NULL, NULL), INVALID_ARGUMENT, "without a list");
    expect_code(enumerate_effects(factory, (Guid*)(void*)list.data, NULL), INVALID_ARGUMENT, "with a list");
    expect(all_bytes(list.data, list.size, 0x5C), "the list was written");
    end_check();

    begin_check("listing: a count below 41 is refused and nothing changes");
    for (uint32_t n = 0; n < LISTED; ++n) {
        uint32_t count = n;
        expect_code(enumerate_effects(factory, (Guid*)(void*)list.data, &count), INVALID_ARGUMENT, "result");
        expect(count == n, "count %u became %u", n, count);
    }
    expect(all_bytes(list.data, list.size, 0x5C), "the list was written");
    end_check();

    begin_check("listing: 41 entries in their order, one twice and one that cannot be created");
    expect(expected_listing(wanted), "this program's own catalogue has a hole");
    const uint32_t counts[] = {41, 42, 1000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
    for (size_t i = 0; i < sizeof counts / sizeof *counts; ++i) {
        uint32_t count = counts[i];
        memset(list.data, 0, list.size);
        expect_code(enumerate_effects(factory, (Guid*)(void*)list.data, &count), SUCCESS, "result");
        expect(count == LISTED, "count %u became %u", counts[i], count);
        for (int k = 0; k < LISTED; ++k)
            expect(memcmp(list.data + 16 * k, &wanted[k], 16) == 0, "entry %d differs", k);
    }
    expect(guarded_intact(&list), "written in front of the list");
    expect(memcmp(list.data + 16 * 6, list.data + 16 * 28, 16) == 0, "entries 6 and 28 differ");
    end_check();

    begin_check("listing: another factory lists the same");
    Factory* other = create_factory();
    uint32_t count = LISTED;
    memset(list.data, 0, list.size);
    expect_code(enumerate_effects(other, (Guid*)(void*)list.data, &count), SUCCESS, "result");
    expect(memcmp(list.data, wanted, sizeof wanted) == 0, "the entries differ");
    release(other);
    end_check();

    guarded_free(&list);
    release(factory);
}

static void test_creation(void) {
    Factory* factory = create_factory();
    Effect* const mark = (Effect*)(uintptr_t)kUntouched;
    begin_check("creation: a null out pointer is an invalid argument, before the GUID is looked at");
    expect_code(create_effect(factory, parse_guid(listed_only), 0, NULL), INVALID_ARGUMENT, "unknown GUID");
    for (int i = 0; i < ROWS; ++i) {
        expect_code(create_effect(factory, parse_guid(catalogue[i].guid), 0, NULL), INVALID_ARGUMENT,
                    catalogue[i].guid);
    }
    end_check();

    begin_check("creation: the entry that is only listed fails and leaves the out value alone");
    Effect* effect = mark;
    expect_code(create_effect(factory, parse_guid(listed_only), 0, &effect), FAILURE, "result");
    expect(effect == mark, "the out value changed");
    end_check();

    begin_check("creation: GUIDs of zeros and of ones fail");
    Guid id;
    for (int fill = 0; fill < 256; fill += 255) {
        memset(&id, fill, sizeof id);
        expect_code(create_effect(factory, id, 0, &effect), FAILURE, "result");
        expect(effect == mark, "the out value changed");
    }
    end_check();

    begin_check("creation: all 16 bytes are compared; any one bit changed is another GUID");
    for (int i = 0; i < ROWS; ++i) {
        for (int bit = 0; bit < 128; ++bit) {
            id = parse_guid(catalogue[i].guid);
            ((uint8_t*)&id)[bit / 8] ^= (uint8_t)(1 << bit % 8);
            const uint32_t result = create_effect(factory, id, 0, &effect);
            expect(result == FAILURE, "{%s} with bit %d changed: 0x%x", catalogue[i].guid, bit, result);
        }
    }
    expect(effect == mark, "the out value changed");
    end_check();

    begin_check("creation: the second argument is ignored");
    const uint32_t words[] = {0, 1, 0x80000000, 0xFFFFFFFF};
    for (int i = 0; i < 4; ++i) {
        effect = mark;
        expect_code(
            create_effect(factory, parse_guid("3BF3AE40-0316-41B9-84C5-A8C671212CAC"), words[i], &effect),
            SUCCESS, "Sepia");
        if (effect != mark) destroy_effect(factory, effect);
        effect = mark;
        expect_code(create_effect(factory, parse_guid(listed_only), words[i], &effect), FAILURE,
                    "unknown GUID");
    }
    end_check();

    begin_check("creation: every call makes an object of its own");
    Effect *first = create_named(factory, "Gray Scale"), *second = create_named(factory, "Gray Scale");
    expect(first && second && first != second, "one address");
    destroy_effect(factory, first);
    destroy_effect(factory, second);
    end_check();

    begin_check("destruction: null is ignored");
    destroy_effect(factory, NULL);
    end_check();

    begin_check("destruction: an effect outlives its factory and may go back to another");
    const long before = live_blocks();
    Factory* other = create_factory();
    effect = create_named(other, "Sepia");
    release(other);
    Stream stream = {0, 16, 16, PLANAR};
    expect_code(configure(effect, &stream), SUCCESS, "Configure");
    destroy_effect(factory, effect);
    expect(live_blocks() == before, "%ld blocks are left", live_blocks() - before);
    end_check();

    begin_check("destruction: no Shutdown is needed before it, and one does no harm");
    for (int shut_down = 0; shut_down < 2; ++shut_down) {
        effect = create_named(factory, "Sepia");
        expect_code(configure(effect, &stream), SUCCESS, "Configure");
        if (shut_down) shutdown_effect(effect);
        destroy_effect(factory, effect);
        expect(live_blocks() == before, "%ld blocks are left", live_blocks() - before);
    }
    end_check();
    release(factory);
}

void test_factory(void) {
    test_references();
    test_reserved();
    test_listing();
    test_creation();
}
