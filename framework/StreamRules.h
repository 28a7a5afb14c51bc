// What every effect checks of a stream and of a frame, in the order in which hosts rely on it, and the frame
// as effects see it.
#ifndef SPECIALEFFECTS_FRAMEWORK_STREAMRULES_H
#define SPECIALEFFECTS_FRAMEWORK_STREAMRULES_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "framework/SpecialEffectFilter.h"

inline constexpr int32_t kLargestSide = 16384;

/// Whether a stream of this description can be configured.
constexpr bool IsServed(const StreamDescription& stream) {
    return (stream.Format == kFormatPlanar || stream.Format == kFormatPacked) && stream.Width >= 1 &&
           stream.Width <= kLargestSide && stream.Height >= 1 && stream.Height <= kLargestSide;
}

/// Whether an image pointer may be read. Refused are null, the value that 32-bit hosts pass for "null plus
/// header", and the value for which the address of the plane pointers would be null here.
inline bool IsReadable(const ImageRecord* image) {
    const auto address = reinterpret_cast<uintptr_t>(image);
    return address != 0 && address != 0xFFFFFFFCU && address + offsetof(ImageRecord, Plane) != 0;
}

/// The entry checks that need only the records: null record or image, then the format.
inline ResultCode CheckFrame(const FrameRecord* frame, const StreamDescription& stream) {
    if (frame == nullptr || !IsReadable(frame->Image)) return kInvalidArgument;
    return frame->Image->Format == stream.Format ? kSuccess : kFailure;
}

/// Runs what may throw in `Configure`. Memory that ran out reaches a host as an exception; on Windows, where
/// its compiler may be another one, as kOutOfMemory.
template <class Run>
ResultCode GuardConfigure(Run run) {
#if defined(_WIN32)
    try {
        return run();
    } catch (...) {
        return kOutOfMemory;
    }
#else
    return run();
#endif
}

/// Bytes of a packed 24-bit picture whose rows are rounded up to a multiple of 4. The row step is
/// still 3 * width; the rounding only makes the buffer larger than needed.
constexpr size_t PackedBytes(int32_t width, int32_t height) {
    return (static_cast<size_t>(width) * 24 + 31) / 32 * 4 * static_cast<size_t>(height);
}

/// One plane of the host's frame. Row step = width.
struct FramePlane {
    uint8_t* data;
    int32_t width, height;
    int32_t size;  ///< bytes of the plane according to the host; may differ from width * height

    /// Sets all bytes that the plane has according to the host.
    void FillWhole(uint8_t value) const {
        if (size > 0) std::memset(data, value, static_cast<size_t>(size));
    }
};

/// A planar frame: luma at the stream's size, chroma at half of it, rounded down.
struct PlanarFrame {
    FramePlane y, u, v;

    PlanarFrame(const ImageRecord& image, const StreamDescription& stream)
        : y{image.Plane[0], stream.Width, stream.Height, image.PlaneSize[0]},
          u{image.Plane[1], stream.Width / 2, stream.Height / 2, image.PlaneSize[1]},
          v{image.Plane[2], stream.Width / 2, stream.Height / 2, image.PlaneSize[2]} {}

    /// Sets a quarter of the luma's bytes in each chroma plane. At odd sizes that can be more than the
    /// plane's area; what exceeds it is set only as far as `size` covers it.
    void FillChroma(uint8_t uValue, uint8_t vValue) const {
        std::memset(u.data, uValue, QuarterBytes(u));
        std::memset(v.data, vValue, QuarterBytes(v));
    }

  private:
    size_t QuarterBytes(const FramePlane& chroma) const {
        const int64_t held = int64_t{chroma.width} * chroma.height;
        const int64_t quarter = int64_t{y.width} * y.height / 4;
        return static_cast<size_t>(std::clamp<int64_t>(chroma.size, held, quarter));
    }
};

#endif
