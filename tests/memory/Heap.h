// The heap of this program: every operator new and delete, counted, and failing on demand.
#ifndef SPECIALEFFECTS_TESTS_MEMORY_HEAP_H
#define SPECIALEFFECTS_TESTS_MEMORY_HEAP_H

#include <cstdint>

namespace heap {

/// Bytes and blocks that are allocated at this moment.
int64_t LiveBytes();
int64_t LiveBlocks();

/// Allocations since the start of the program, also those that failed.
int64_t Allocations();

/// Makes one allocation fail, the `n`th from now on, counted from 1. Below 1 none fails.
void FailAllocation(int64_t n);

/// Whether the allocation that `FailAllocation` chose has been made and has failed.
bool HasFailed();

}  // namespace heap

#endif
