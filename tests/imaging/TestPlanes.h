// Bytes and planes for the tests of the imaging folder.
#ifndef SPECIALEFFECTS_TESTS_IMAGING_TESTPLANES_H
#define SPECIALEFFECTS_TESTS_IMAGING_TESTPLANES_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "imaging/Plane8u.h"
#include "tests/support/TestFrame.h"

using Bytes = std::vector<uint8_t>;

inline constexpr int32_t kHuge = std::numeric_limits<int32_t>::max();

inline Bytes RandomBytes(size_t count, uint64_t seed) {
    TestRandom random(seed);
    Bytes bytes(count);
    for (uint8_t& byte : bytes) byte = random.Byte();
    return bytes;
}

inline Bytes BytesOf(const CPlane8u& plane) {
    return Bytes(plane.data, plane.data + plane.Size());
}

inline CPlane8u RandomPlane(int32_t width, int32_t height, uint64_t seed) {
    CPlane8u plane(width, height);
    TestRandom random(seed);
    for (size_t i = 0; i < plane.Size(); ++i) plane.data[i] = random.Byte();
    return plane;
}

#endif
