// Frames for tests: exact planes with guard bytes around them, and the records that a host passes.
#ifndef SPECIALEFFECTS_TESTS_SUPPORT_TESTFRAME_H
#define SPECIALEFFECTS_TESTS_SUPPORT_TESTFRAME_H

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "framework/SpecialEffectFilter.h"

/// Pseudo-random numbers of the tests' own, so that the C library's generator stays with the effects.
class TestRandom {
  public:
    explicit TestRandom(uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15ULL + 1) {}
    uint32_t Next() {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 7;
        state_ ^= state_ << 17;
        return static_cast<uint32_t>(state_ >> 16);
    }
    uint8_t Byte() { return static_cast<uint8_t>(Next()); }
    int32_t Below(int32_t limit) { return static_cast<int32_t>(Next() % static_cast<uint32_t>(limit)); }

  private:
    uint64_t state_;
};

/// A frame of one format and size. Planes hold exactly what the format says: width * height bytes of luma and
/// (width / 2) * (height / 2) of chroma, or 3 * width * height packed bytes. Copies are deep; comparison
/// looks at the pixels alone.
class TestFrame {
  public:
    TestFrame(int32_t width, int32_t height, int32_t format = kFormatPlanar);
    TestFrame(const TestFrame& other);
    TestFrame& operator=(const TestFrame& other);

    int32_t width() const { return width_; }
    int32_t height() const { return height_; }
    int32_t format() const { return format_; }

    std::span<uint8_t> plane(int index);
    std::span<const uint8_t> plane(int index) const;
    uint8_t* y() { return plane(0).data(); }
    uint8_t* u() { return plane(1).data(); }
    uint8_t* v() { return plane(2).data(); }

    TestFrame& Fill(uint8_t y, uint8_t u, uint8_t v);
    /// Independent random bytes.
    TestFrame& Randomize(uint64_t seed);
    /// Picture `index` of a moving, noisy scene with flat parts, gradients, texture and hard edges.
    TestFrame& DrawScene(int index);

    /// The record that a host passes. Stays valid as long as the frame; tests may change its fields.
    FrameRecord* record();
    ImageRecord& image() {
        record();
        return image_;
    }

    /// False when a byte outside the planes has been written.
    bool GuardsIntact() const;
    /// 64-bit FNV-1a over all planes.
    uint64_t Checksum() const;

    bool operator==(const TestFrame& other) const;

  private:
    // Under AddressSanitizer the planes stand alone, so that a read beyond them is seen as well.
#if defined(__SANITIZE_ADDRESS__)
    static constexpr size_t kGuard = 0;
#else
    static constexpr size_t kGuard = 64;
#endif
    static constexpr uint8_t kGuardByte = 0xA5;

    int32_t width_, height_, format_;
    std::vector<uint8_t> storage_[3];
    ImageRecord image_{};
    FrameRecord record_{};
    bool recordMade_ = false;
};

/// The first pictures of the scene at a size, drawn once in a process. For one thread at a time.
const std::vector<TestFrame>& Scene(int32_t width, int32_t height, int count);

/// Where two frames first differ, in words; empty when they are equal.
std::string FirstDifference(const TestFrame& a, const TestFrame& b);

#endif
