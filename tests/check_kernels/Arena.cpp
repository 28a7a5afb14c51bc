#include "tests/check_kernels/Arena.h"

#include <sys/mman.h>
#include <unistd.h>

#include <new>
#include <utility>

namespace check {
namespace {

size_t PageSize() {
    static const auto size = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    return size;
}

}  // namespace

Arena::Arena(Arena&& other) noexcept : bytes_(std::exchange(other.bytes_, {})) {}

Arena& Arena::operator=(Arena&& other) noexcept {
    std::swap(bytes_, other.bytes_);
    return *this;
}

Arena::~Arena() {
    Release();
}

void Arena::Reserve(size_t size) {
    if (size <= bytes_.size()) {
        return;
    }
    Release();
    const size_t page = PageSize();
    const size_t inner = (size + page - 1) / page * page;
    void* block = mmap(nullptr, inner + 2 * page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (block == MAP_FAILED) {
        throw std::bad_alloc();
    }
    std::byte* first = static_cast<std::byte*>(block) + page;
    if (mprotect(first, inner, PROT_READ | PROT_WRITE) != 0) {
        munmap(block, inner + 2 * page);
        throw std::bad_alloc();
    }
    bytes_ = {first, inner};
}

void Arena::Release() {
    if (!bytes_.empty()) {
        munmap(bytes_.data() - PageSize(), bytes_.size() + 2 * PageSize());
        bytes_ = {};
    }
}

}  // namespace check
