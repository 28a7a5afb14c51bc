// Reads numbers and texts from a string of bytes.
#ifndef SPECIALEFFECTS_TESTS_FUZZ_SOURCE_H
#define SPECIALEFFECTS_TESTS_FUZZ_SOURCE_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

/// Reads numbers from the bytes; zeros follow at their end.
class Source {
  public:
    explicit Source(std::span<const uint8_t> bytes) : bytes_(bytes) {}

    bool empty() const { return bytes_.empty(); }

    uint8_t Byte() {
        if (bytes_.empty()) return 0;
        const uint8_t byte = bytes_.front();
        bytes_ = bytes_.subspan(1);
        return byte;
    }

    // -128 to 127.
    int32_t SignedByte() {
        const int32_t byte = Byte();
        return byte < 128 ? byte : byte - 256;
    }

    uint32_t Word() {
        uint32_t word = 0;
        for (int i = 0; i < 4; ++i) word = word << 8 | Byte();
        return word;
    }

    // 0 to `count` - 1.
    size_t Below(size_t count) { return Byte() % count; }

    bool OneIn(size_t count) { return Below(count) == count - 1; }

    template <class T, size_t n>
    const T& Pick(const T (&list)[n]) {
        return list[Below(n)];
    }

    std::string Text(size_t length) {
        std::string text;
        while (text.size() < length && !empty()) text.push_back(static_cast<char>(Byte()));
        return text;
    }

  private:
    std::span<const uint8_t> bytes_;
};

#endif
