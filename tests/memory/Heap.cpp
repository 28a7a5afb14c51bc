#include "tests/memory/Heap.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<int64_t> bytes, blocks, allocations, failAt;

/// In front of each block is a header, as long as its alignment, that begins with its size.
size_t Front(size_t alignment) {
    return std::max(alignment, sizeof(size_t));
}

void* Take(size_t size, size_t alignment) {
    if (++allocations == failAt) return nullptr;
    const size_t front = Front(alignment);
    void* const memory = std::aligned_alloc(front, (front + size + front - 1) / front * front);
    if (memory == nullptr) return nullptr;
    *static_cast<size_t*>(memory) = size;
    ++blocks;
    bytes += static_cast<int64_t>(size);
    return static_cast<char*>(memory) + front;
}

void* TakeOrThrow(size_t size, size_t alignment) {
    void* const block = Take(size, alignment);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

void Give(void* block, size_t alignment) {
    if (block == nullptr) return;
    void* const memory = static_cast<char*>(block) - Front(alignment);
    --blocks;
    bytes -= static_cast<int64_t>(*static_cast<size_t*>(memory));
    std::free(memory);
}

constexpr size_t kDefault = __STDCPP_DEFAULT_NEW_ALIGNMENT__;

}  // namespace

int64_t heap::LiveBytes() {
    return bytes;
}
int64_t heap::LiveBlocks() {
    return blocks;
}
int64_t heap::Allocations() {
    return allocations;
}
void heap::FailAllocation(int64_t n) {
    failAt = n < 1 ? 0 : allocations + n;
}
bool heap::HasFailed() {
    return failAt != 0 && allocations >= failAt;
}

// All forms, since those of a sanitizer's run-time library do not call each other.
void* operator new(size_t size) {
    return TakeOrThrow(size, kDefault);
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return Take(size, kDefault);
}
void* operator new(size_t size, std::align_val_t alignment) {
    return TakeOrThrow(size, static_cast<size_t>(alignment));
}
void* operator new(size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return Take(size, static_cast<size_t>(alignment));
}
void operator delete(void* block) noexcept {
    Give(block, kDefault);
}
void operator delete(void* block, size_t) noexcept {
    Give(block, kDefault);
}
void operator delete(void* block, std::align_val_t alignment) noexcept {
    Give(block, static_cast<size_t>(alignment));
}
void operator delete(void* block, size_t, std::align_val_t alignment) noexcept {
    Give(block, static_cast<size_t>(alignment));
}
void* operator new[](size_t size) {
    return TakeOrThrow(size, kDefault);
}
void* operator new[](size_t size, const std::nothrow_t&) noexcept {
    return Take(size, kDefault);
}
void* operator new[](size_t size, std::align_val_t alignment) {
    return TakeOrThrow(size, static_cast<size_t>(alignment));
}
void* operator new[](size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return Take(size, static_cast<size_t>(alignment));
}
void operator delete[](void* block) noexcept {
    Give(block, kDefault);
}
void operator delete[](void* block, size_t) noexcept {
    Give(block, kDefault);
}
void operator delete[](void* block, std::align_val_t alignment) noexcept {
    Give(block, static_cast<size_t>(alignment));
}
void operator delete[](void* block, size_t, std::align_val_t alignment) noexcept {
    Give(block, static_cast<size_t>(alignment));
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    Give(block, kDefault);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    Give(block, kDefault);
}
void operator delete(void* block, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    Give(block, static_cast<size_t>(alignment));
}
void operator delete[](void* block, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    Give(block, static_cast<size_t>(alignment));
}
