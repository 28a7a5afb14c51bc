// Memory between two pages that cannot be touched: a read or a write one byte before or after it ends the
// program.
#ifndef SPECIALEFFECTS_TESTS_CHECK_KERNELS_ARENA_H
#define SPECIALEFFECTS_TESTS_CHECK_KERNELS_ARENA_H

#include <cstddef>
#include <span>

namespace check {

class Arena {
  public:
    Arena() = default;
    Arena(Arena&& other) noexcept;
    Arena& operator=(Arena&& other) noexcept;
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;
    ~Arena();

    /// Makes sure that there are `size` bytes at least. What the arena held is lost when it grows.
    void Reserve(size_t size);

    /// All bytes between the two pages.
    std::span<std::byte> bytes() const { return bytes_; }

  private:
    void Release();

    std::span<std::byte> bytes_;
};

}  // namespace check

#endif
