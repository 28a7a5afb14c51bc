/* Memory that notices: buffers that end at an unreadable page, and a count of what the module holds. */
#ifndef ABI_MEMORY_H
#define ABI_MEMORY_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

/* `size` bytes whose end is the end of readable memory; what lies in front of them is watched as well. */
typedef struct {
    uint8_t* data;
    size_t size;
    uint8_t* base;
    size_t usable;
} Guarded;

/* The bytes start as `fill`. */
Guarded guarded(size_t size, uint8_t fill);

/* Nothing in front of the buffer was written to. */
bool guarded_intact(const Guarded* buffer);
void guarded_free(Guarded* buffer);

/* True when all `size` bytes at `data` equal `value`. */
bool all_bytes(const uint8_t* data, size_t size, uint8_t value);

/*
 * How many blocks and bytes the module holds at any moment. The program brings its own operator new and
 * operator delete, which the module's calls resolve to; on Windows it counts what is on the heap.
 */
long live_blocks(void);
long live_bytes(void);

/* Frees memory that the module took with operator new. */
void module_free(void* block);

/* A repeatable sequence of random numbers that does not touch the C library's. */
typedef struct {
    uint64_t state;
} Random;
uint32_t random_next(Random* random);
void random_fill(Random* random, uint8_t* data, size_t size);

#endif
