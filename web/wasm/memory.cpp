// operator new and delete: those of Debian's libc++ for WebAssembly end the program when memory runs out,
// these throw std::bad_alloc.
#include <cstdlib>
#include <new>

namespace {

void* Allocate(size_t size) noexcept {
    return std::malloc(size > 0 ? size : 1);
}

void* Allocate(size_t size, std::align_val_t alignment) noexcept {
    const auto step = static_cast<size_t>(alignment);
    const size_t whole = (size + step - 1) / step * step;
    return whole >= size ? std::aligned_alloc(step, whole > 0 ? whole : step) : nullptr;
}

void* Require(void* memory) {
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

}  // namespace

void* operator new(size_t size) {
    return Require(Allocate(size));
}
void* operator new[](size_t size) {
    return Require(Allocate(size));
}
void* operator new(size_t size, std::align_val_t alignment) {
    return Require(Allocate(size, alignment));
}
void* operator new[](size_t size, std::align_val_t alignment) {
    return Require(Allocate(size, alignment));
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}
void* operator new[](size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}
void* operator new(size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return Allocate(size, alignment);
}
void* operator new[](size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return Allocate(size, alignment);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, size_t, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, size_t, std::align_val_t) noexcept {
    std::free(memory);
}
