// What the modes of scaling share: where the samples of an axis come from, line buffers, and plans.
#ifndef SPECIALEFFECTS_IMAGING_RESIZEAXIS_H
#define SPECIALEFFECTS_IMAGING_RESIZEAXIS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>

#include "imaging/Prim.h"

namespace resize {

/// One axis of a scaling: `length` source samples, `count` destination samples that are written.
struct Axis {
    int32_t length;
    int32_t count;
    double factor;
    double step;  // source samples from one destination sample to the next, the outermost ones coinciding

    Axis(int32_t sourceLength, double scale, int32_t destinationLength)
        : length(sourceLength), factor(scale) {
        const double scaled = length * factor;
        count = scaled + 1e-7 < destinationLength ? static_cast<int32_t>(scaled + 1e-7) : destinationLength;
        if (count == 0 && scaled >= 0.5) count = 1;
        step = scaled > 1.0 ? (length - 1) / (scaled - 1.0) : 0.0;
    }

    /// Nearest mode: the sample that destination sample k takes.
    int32_t NearestSample(int32_t k) const {
        return static_cast<int32_t>(std::min<double>((k + 0.5) * (1.0 / factor) + 1e-7, length - 1));
    }

    /// The other modes: the sample at or before destination sample k, and how far k lies behind it (0 to 1).
    struct Position {
        int32_t sample;
        double fraction;
    };
    Position Interpolated(int32_t k) const {
        const double position = k * step;
        const auto sample = static_cast<int32_t>(std::min<double>(position + 1e-7, length - 1));
        return {sample, std::clamp(position - sample, 0.0, 1.0)};
    }
};

/// Scalings from one size to another: the tables and the line buffers, made once for any number of pictures.
class Plan {
  public:
    Plan() = default;
    Plan(const Plan&) = delete;
    Plan& operator=(const Plan&) = delete;
    virtual ~Plan() = default;

    /// Scales the whole of `src` to the upper left `x.count` by `y.count` pixels of `dst`. One picture at a
    /// time: the line buffers belong to the plan.
    virtual void Run(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep) = 0;
};

/// A block from the heap, freed with the object; false when there was no memory. Contents undefined.
template <class T>
class Buffer {
  public:
    explicit Buffer(size_t count) : block_(::operator new(count * sizeof(T), kAlignment, std::nothrow)) {}
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;
    ~Buffer() { ::operator delete(block_, kAlignment); }

    explicit operator bool() const { return block_ != nullptr; }
    T* data() { return static_cast<T*>(block_); }
    T& operator[](size_t i) { return data()[i]; }

  private:
    static_assert(std::is_trivially_default_constructible_v<T> && std::is_trivially_destructible_v<T>);
    static constexpr std::align_val_t kAlignment{64};
    void* block_;
};

/// A plan that is ready to run; null when there was no memory.
template <class ReadyPlan>
std::unique_ptr<ReadyPlan> MakePlan(const Axis& x, const Axis& y) {
    std::unique_ptr<ReadyPlan> plan(new (std::nothrow) ReadyPlan(x, y));
    if (plan && !plan->Ready()) plan.reset();
    return plan;
}

/// Nearest mode: writes the sample of each destination column to `columns`, which has room for `x.count`.
void NearestColumns(const Axis& x, int32_t* columns);
/// Scales with the `columns` of `x`.
void ScaleNearest(const Axis& x, const int32_t* columns, const Axis& y, const uint8_t* src, int32_t srcStep,
                  uint8_t* dst, int32_t dstStep);

/// The modes. Null when there was no memory.
std::unique_ptr<Plan> Nearest(const Axis& x, const Axis& y);
std::unique_ptr<Plan> Linear(const Axis& x, const Axis& y);
std::unique_ptr<Plan> Lanczos(const Axis& x, const Axis& y);

/// The plan with which `interpolation`, a mode of `PrimResize8uC1`, serves a source of this size.
std::unique_ptr<Plan> PlanFor(int32_t interpolation, int32_t srcWidth, int32_t srcHeight, const Axis& x,
                              const Axis& y);

}  // namespace resize

#endif
