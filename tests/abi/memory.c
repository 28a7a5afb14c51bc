#include "memory.h"

#include <malloc.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "system.h"

/* ---- guarded buffers ------------------------------------------------------------------------------ */

enum { CANARY = 0xA7 };

Guarded guarded(size_t size, uint8_t fill) {
    size_t usable = 0; /* at least one byte of canary in front */
    uint8_t* base = guarded_pages(size, &usable);
    Guarded buffer = {base + usable - size, size, base, usable};
    memset(base, CANARY, usable - size);
    memset(buffer.data, fill, size);
    return buffer;
}

bool guarded_intact(const Guarded* buffer) {
    return all_bytes(buffer->base, (size_t)(buffer->data - buffer->base), CANARY);
}

void guarded_free(Guarded* buffer) {
    free_guarded_pages(buffer->base, buffer->usable);
    memset(buffer, 0, sizeof *buffer);
}

bool all_bytes(const uint8_t* data, size_t size, uint8_t value) {
    for (size_t i = 0; i < size; ++i)
        if (data[i] != value) return false;
    return true;
}

/* ---- the module's heap ---------------------------------------------------------------------------- */

#if defined(_WIN32)

/* The module and this program share a C library and its heap. */
static long walk(long* bytes) {
    _HEAPINFO entry = {0};
    long blocks = 0;
    *bytes = 0;
    while (_heapwalk(&entry) == _HEAPOK) {
        if (entry._useflag != _USEDENTRY) continue;
        ++blocks;
        *bytes += (long)entry._size;
    }
    return blocks;
}

long live_blocks(void) {
    long bytes;
    return walk(&bytes);
}
long live_bytes(void) {
    long bytes;
    walk(&bytes);
    return bytes;
}
void module_free(void* block) {
    free(block);
}

#else

static atomic_long blocks, bytes;

long live_blocks(void) {
    return atomic_load(&blocks);
}
long live_bytes(void) {
    return atomic_load(&bytes);
}

static void* count_in(void* block) {
    if (!block) {
        fprintf(stderr, "abi_host: out of memory\n");
        exit(2);
    }
    atomic_fetch_add(&blocks, 1);
    atomic_fetch_add(&bytes, (long)malloc_usable_size(block));
    return block;
}

static void* take(size_t size) {
    return count_in(malloc(size ? size : 1));
}

static void* take_aligned(size_t size, size_t alignment) {
    void* block = NULL;
    return count_in(posix_memalign(&block, alignment, size ? size : 1) == 0 ? block : NULL);
}

void module_free(void* block) {
    if (!block) return;
    atomic_fetch_sub(&blocks, 1);
    atomic_fetch_sub(&bytes, (long)malloc_usable_size(block));
    free(block);
}

/*
 * operator new and operator delete under their linker names. The program is searched before every library,
 * so the module and the C++ run-time library find these.
 */
/* NOLINTBEGIN(bugprone-reserved-identifier) */
#define EXPORTED __attribute__((visibility("default")))
EXPORTED void* _Znwm(size_t size);
EXPORTED void* _Znam(size_t size);
EXPORTED void* _ZnwmRKSt9nothrow_t(size_t size, const void* tag);
EXPORTED void* _ZnamRKSt9nothrow_t(size_t size, const void* tag);
EXPORTED void* _ZnwmSt11align_val_t(size_t size, size_t alignment);
EXPORTED void* _ZnamSt11align_val_t(size_t size, size_t alignment);
EXPORTED void* _ZnwmSt11align_val_tRKSt9nothrow_t(size_t size, size_t alignment, const void* tag);
EXPORTED void* _ZnamSt11align_val_tRKSt9nothrow_t(size_t size, size_t alignment, const void* tag);
EXPORTED void _ZdlPv(void* block);
EXPORTED void _ZdaPv(void* block);
EXPORTED void _ZdlPvm(void* block, size_t size);
EXPORTED void _ZdaPvm(void* block, size_t size);
EXPORTED void _ZdlPvRKSt9nothrow_t(void* block, const void* tag);
EXPORTED void _ZdaPvRKSt9nothrow_t(void* block, const void* tag);
EXPORTED void _ZdlPvSt11align_val_t(void* block, size_t alignment);
EXPORTED void _ZdaPvSt11align_val_t(void* block, size_t alignment);
EXPORTED void _ZdlPvSt11align_val_tRKSt9nothrow_t(void* block, size_t alignment, const void* tag);
EXPORTED void _ZdaPvSt11align_val_tRKSt9nothrow_t(void* block, size_t alignment, const void* tag);
EXPORTED void _ZdlPvmSt11align_val_t(void* block, size_t size, size_t alignment);
EXPORTED void _ZdaPvmSt11align_val_t(void* block, size_t size, size_t alignment);
/* NOLINTEND(bugprone-reserved-identifier) */

void* _Znwm(size_t size) {
    return take(size);
}
void* _Znam(size_t size) {
    return take(size);
}
void* _ZnwmRKSt9nothrow_t(size_t size, const void* tag) {
    (void)tag;
    return take(size);
}
void* _ZnamRKSt9nothrow_t(size_t size, const void* tag) {
    (void)tag;
    return take(size);
}
void* _ZnwmSt11align_val_t(size_t size, size_t alignment) {
    return take_aligned(size, alignment);
}
void* _ZnamSt11align_val_t(size_t size, size_t alignment) {
    return take_aligned(size, alignment);
}
void* _ZnwmSt11align_val_tRKSt9nothrow_t(size_t size, size_t alignment, const void* tag) {
    (void)tag;
    return take_aligned(size, alignment);
}
void* _ZnamSt11align_val_tRKSt9nothrow_t(size_t size, size_t alignment, const void* tag) {
    (void)tag;
    return take_aligned(size, alignment);
}
void _ZdlPv(void* block) {
    module_free(block);
}
void _ZdaPv(void* block) {
    module_free(block);
}
void _ZdlPvm(void* block, size_t size) {
    (void)size;
    module_free(block);
}
void _ZdaPvm(void* block, size_t size) {
    (void)size;
    module_free(block);
}
void _ZdlPvRKSt9nothrow_t(void* block, const void* tag) {
    (void)tag;
    module_free(block);
}
void _ZdaPvRKSt9nothrow_t(void* block, const void* tag) {
    (void)tag;
    module_free(block);
}
void _ZdlPvSt11align_val_t(void* block, size_t alignment) {
    (void)alignment;
    module_free(block);
}
void _ZdaPvSt11align_val_t(void* block, size_t alignment) {
    (void)alignment;
    module_free(block);
}
void _ZdlPvSt11align_val_tRKSt9nothrow_t(void* block, size_t alignment, const void* tag) {
    (void)alignment;
    (void)tag;
    module_free(block);
}
void _ZdaPvSt11align_val_tRKSt9nothrow_t(void* block, size_t alignment, const void* tag) {
    (void)alignment;
    (void)tag;
    module_free(block);
}
void _ZdlPvmSt11align_val_t(void* block, size_t size, size_t alignment) {
    (void)size;
    (void)alignment;
    module_free(block);
}
void _ZdaPvmSt11align_val_t(void* block, size_t size, size_t alignment) {
    (void)size;
    (void)alignment;
    module_free(block);
}

#endif

/* ---- random numbers ------------------------------------------------------------------------------- */

uint32_t random_next(Random* random) {
    random->state = random->state * UINT64_C(6364136223846793005) + UINT64_C(1442695040888963407);
    return (uint32_t)(random->state >> 33);
}

void random_fill(Random* random, uint8_t* data, size_t size) {
    for (size_t i = 0; i < size; ++i) data[i] = (uint8_t)random_next(random);
}
