#include "effects/animated/Rain.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "framework/Surroundings.h"
#include "imaging/PerLevel.h"
#include "imaging/Plane8u.h"
#include "imaging/ReleaseMemory.h"

namespace {

/// One row of the wave equation. `target` holds the heights of two frames ago; one sixteenth of the height is
/// lost.
SE_INLINE void PropagateRow(const int16_t* SE_RESTRICT above, const int16_t* SE_RESTRICT row,
                            const int16_t* SE_RESTRICT below, int16_t* SE_RESTRICT target, int32_t begin,
                            int32_t end) {
    for (int32_t x = begin; x < end; ++x) {
        const int32_t sum = above[x - 1] + above[x] + above[x + 1] + row[x - 1] + row[x + 1] + below[x - 1] +
                            below[x] + below[x + 1];
        const auto height = static_cast<int16_t>(sum / 4 - target[x]);
        target[x] = static_cast<int16_t>(height - (height >> 4));
    }
}

/// Whether the water is level over a run of pixels, so that the picture shows unchanged.
SE_INLINE bool IsLevel(const int16_t* above, const int16_t* row, const int16_t* below, int32_t begin,
                       int32_t end) {
    int32_t slopes = 0;
    for (int32_t x = begin; x < end; ++x) slopes |= (row[x - 1] ^ row[x + 1]) | (above[x] ^ below[x]);
    return slopes == 0;
}

}  // namespace

std::span<const Property<CRainSpecialEffectFilter>> CRainSpecialEffectFilter::Properties() {
    static constexpr Property<CRainSpecialEffectFilter> rows[] = {
        IntegerProperty<&CRainSpecialEffectFilter::DropPeriod>("DropPeriod", "1", "1,20")
            .Says("Number of frames from one drop to the next."),
        IntegerProperty<&CRainSpecialEffectFilter::DropSize>("DropSize", "3", "2,16")
            .Says("Diameter of a drop in pixels.")
            .OnSet([](CRainSpecialEffectFilter& rain, int32_t size) {
                rain.DropSize = size;
                rain.StampReady = false;
            }),
    };
    return rows;
}

void CRainSpecialEffectFilter::Prepare() {
    const size_t pixels = static_cast<size_t>(Width()) * static_cast<size_t>(Height());
    FrameCounter = 0;
    DropPeriod = 1;
    DropSize = 3;
    Output.assign(pixels, 0);
    TargetWaves.assign(pixels, 0);
    SourceWaves.assign(pixels, 0);
}

void CRainSpecialEffectFilter::Release() {
    ReleaseMemory(Output, TargetWaves, SourceWaves);
}

/// A drop is 192 high in its middle and falls off with the distance.
void CRainSpecialEffectFilter::BuildStamp() {
    const int32_t size = DropSize, half = size / 2;
    for (int32_t y = -half; y < half; ++y) {
        for (int32_t x = -half; x < half; ++x) {
            const int32_t square = x * x + y * y;
            if (square > size * size) continue;
            const double a = std::sqrt(static_cast<double>(square)) / (2 * size);
            const auto value = static_cast<int32_t>(std::cos((a + a) * 3.1415926535) * -64.0);
            Stamp[static_cast<size_t>((y + half) * size + x + half)] = static_cast<int16_t>(128 - value);
        }
    }
    StampReady = true;
}

/// The stamp replaces the water; it is not added.
void CRainSpecialEffectFilter::DropStone() {
    const int32_t size = DropSize, half = size / 2, margin = size - 1;
    const int32_t roomX = Width() - 2 * margin, roomY = Height() - 2 * margin;
    if (roomX <= 0 || roomY <= 0) return;
    if (!StampReady) BuildStamp();

    const int32_t centreX = Rand() % roomX + margin;
    const int32_t centreY = Rand() % roomY + margin;
    for (int32_t y = -half; y < half; ++y) {
        for (int32_t x = -half; x < half; ++x) {
            const int32_t atX = centreX + x, atY = centreY + y;
            if (atX < 0 || atX >= Width() || atY < 0 || atY >= Height()) continue;
            TargetWaves[static_cast<size_t>(atY) * static_cast<size_t>(Width()) + static_cast<size_t>(atX)] =
                Stamp[static_cast<size_t>((y + half) * size + x + half)];
        }
    }
}

void CRainSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    const int32_t width = Width(), height = Height();
    if (width < 3 || height < 3) return;
    uint8_t* const luma = frame.y.data;

    const uint32_t count = FrameCounter++;
    if (count == 0) std::memcpy(Output.data(), luma, Output.size());
    if (count % static_cast<uint32_t>(DropPeriod) == 0) DropStone();

    // Heights in the two outermost rows and columns are not computed.
    const auto rowOf = [&](std::vector<int16_t>& waves, int32_t y) {
        return waves.data() + ptrdiff_t{y} * width;
    };
    for (int32_t y = 2; y < height - 2; ++y) {
        AtLevel<PropagateRow>(rowOf(SourceWaves, y - 1), rowOf(SourceWaves, y), rowOf(SourceWaves, y + 1),
                              rowOf(TargetWaves, y), 2, width - 2);
    }

    // The slope shifts the sample and lights it. A sample may lie one past the last column or row; it is then
    // the next pixel in memory, or the last one of the picture. If it lies further out, the pixel keeps its
    // value from an earlier frame.
    constexpr int32_t kRun = 64;
    const int64_t last = int64_t{width} * height - 1;
    for (int32_t y = 1; y < height - 1; ++y) {
        const int16_t* const above = rowOf(TargetWaves, y - 1);
        const int16_t* const row = rowOf(TargetWaves, y);
        const int16_t* const below = rowOf(TargetWaves, y + 1);
        const uint8_t* const in = luma + ptrdiff_t{y} * width;
        uint8_t* const out = Output.data() + ptrdiff_t{y} * width;
        for (int32_t begin = 1; begin < width - 1; begin += kRun) {
            const int32_t end = std::min(begin + kRun, width - 1);
            if (AtLevel<IsLevel>(above, row, below, begin, end)) {
                std::memcpy(out + begin, in + begin, static_cast<size_t>(end - begin));
                continue;
            }
            for (int32_t x = begin; x < end; ++x) {
                const int32_t dx = row[x - 1] - row[x + 1], dy = above[x] - below[x];
                const int32_t fromX = x + dx, fromY = y + dy;
                if (fromX < 0 || fromX > width || fromY < 0 || fromY > height) continue;
                const int64_t from = std::min(int64_t{fromY} * width + fromX, last);
                out[x] = static_cast<uint8_t>(std::clamp(luma[from] + dx, 0, 255));
            }
        }
    }

    TargetWaves.swap(SourceWaves);
    std::memcpy(luma, Output.data(), Output.size());
    CPlane8u::Over(luma, width, height).ReplicateBorder(1);
}

template struct EffectClass<CRainSpecialEffectFilter>;
