#include "effects/animated/AnimationFramework.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "imaging/ExactDivision.h"
#include "imaging/PerLevel.h"

namespace {

/// Calls `row(mask, plane, count)` for every row of `mask` that lies on `plane` when its corner is at (x, y).
/// Rows are clipped to the overlap.
template <class Row>
void ForEachSharedRow(const CPlane8u& mask, int32_t x, int32_t y, int32_t planeWidth, int32_t planeHeight,
                      Row row) {
    const int32_t left = std::max(-x, 0), right = std::min(mask.width, planeWidth - x);
    const int32_t top = std::max(-y, 0), bottom = std::min(mask.height, planeHeight - y);
    if (mask.Empty() || left >= right) return;
    for (int32_t r = top; r < bottom; ++r) {
        row(mask.Row(r) + left, static_cast<ptrdiff_t>(y + r) * planeWidth + x + left,
            static_cast<size_t>(right - left));
    }
}

/// The mask is both the opacity and the value.
SE_INLINE void AddLight(const uint8_t* SE_RESTRICT mask, uint8_t* SE_RESTRICT work, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const uint8_t a = mask[i];
        work[i] = static_cast<uint8_t>(DivideBy255(static_cast<uint16_t>((255 - a) * work[i] + a * a)));
    }
}

SE_INLINE void Screen(const uint8_t* SE_RESTRICT light, uint8_t* SE_RESTRICT y, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        y[i] =
            static_cast<uint8_t>(255 - DivideBy255(static_cast<uint16_t>((255 - light[i]) * (255 - y[i]))));
    }
}

/// Mask pixels of 0 blend nothing, so they need no test.
SE_INLINE void BlendColor(const uint8_t* SE_RESTRICT mask, uint8_t alpha, uint8_t color,
                          uint8_t* SE_RESTRICT pixels, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const uint16_t a = DivideBy255(static_cast<uint16_t>(alpha * mask[i]));
        pixels[i] =
            static_cast<uint8_t>(DivideBy255(static_cast<uint16_t>((255 - a) * pixels[i] + a * color)));
    }
}

SE_INLINE void StampColor(const uint8_t* SE_RESTRICT mask, uint8_t color, uint8_t* SE_RESTRICT pixels,
                          size_t count) {
    constexpr uint8_t kFaint = 20;
    for (size_t i = 0; i < count; ++i) pixels[i] = mask[i] >= kFaint ? color : pixels[i];
}

}  // namespace

CAnimationFramework::CAnimationFramework(int32_t width, int32_t height)
    : Width(width),
      Height(height),
      Work(NewPlane(width, height)),
      ChromaWork(NewPlane(width / 2, kBandHeight)) {}

void* CAnimationFramework::DeletingDestructor(uint32_t flags) {
    return DestroyObject(this, flags);
}

void CAnimationFramework::MoveAll() {
    for (const AnimationObject& object : Objects) object->Move();
}

void CAnimationFramework::AnimateAll() {
    for (const AnimationObject& object : Objects) object->NextFrame();
}

template <class Row>
void CAnimationFramework::ForEachLitRow(Row row) {
    for (const AnimationObject& object : Objects) {
        PlanePoint at{};
        object->GetPosition(&at);
        ForEachSharedRow(*object->GetFrame(), at.x, at.y, Work.width, Work.height, row);
    }
}

/// Light of 0 changes nothing, so only pixels under masks are touched. `Work` is black before and after.
void CAnimationFramework::RenderGlow(CPlane8u* y) {
    ForEachLitRow([&](const uint8_t* mask, ptrdiff_t offset, size_t count) {
        AtLevel<AddLight>(mask, Work.data + offset, count);
    });
    // Where masks overlap, the first one takes all of the light.
    ForEachLitRow([&](const uint8_t*, ptrdiff_t offset, size_t count) {
        const auto begin = static_cast<size_t>(offset), end = std::min(begin + count, y->Size());
        if (begin < end) AtLevel<Screen>(Work.data + offset, y->data + offset, end - begin);
        std::memset(Work.data + offset, 0, count);
    });
}

void CAnimationFramework::RenderTinted(CPlane8u* y, CPlane8u* u, CPlane8u* v, bool withChroma) {
    for (const AnimationObject& object : Objects) {
        PlanePoint at{};
        object->GetPosition(&at);
        uint8_t color[4];
        object->GetColor(color);
        const CPlane8u& mask = *object->GetFrame();
        ForEachSharedRow(mask, at.x, at.y, y->width, y->height,
                         [&](const uint8_t* row, ptrdiff_t offset, size_t count) {
                             AtLevel<BlendColor>(row, color[3], color[0], y->data + offset, count);
                         });
        if (!withChroma) continue;
        ForEachSharedRow(HalfMask(mask), at.x / 2, at.y / 2, u->width, u->height,
                         [&](const uint8_t* row, ptrdiff_t offset, size_t count) {
                             AtLevel<BlendColor>(row, color[3], color[1], u->data + offset, count);
                             AtLevel<BlendColor>(row, color[3], color[2], v->data + offset, count);
                         });
    }
}

void CAnimationFramework::ColorizeChroma(CPlane8u* u, CPlane8u* v) {
    for (const AnimationObject& object : Objects) {
        PlanePoint at{};
        object->GetPosition(&at);
        uint8_t color[4];
        object->GetColor(color);
        ForEachSharedRow(HalfMask(*object->GetFrame()), at.x / 2, at.y / 2, u->width, u->height,
                         [&](const uint8_t* row, ptrdiff_t offset, size_t count) {
                             AtLevel<StampColor>(row, color[1], u->data + offset, count);
                             AtLevel<StampColor>(row, color[2], v->data + offset, count);
                         });
    }
    FilterGauss3InPlace(*u, ChromaWork);
    FilterGauss3InPlace(*v, ChromaWork);
}

/// The mask at the chroma size; valid until the next call.
const CPlane8u& CAnimationFramework::HalfMask(const CPlane8u& mask) {
    auto half = std::find_if(Halves.begin(), Halves.end(), [&](const HalfSize& entry) {
        return entry.of.width == mask.width && entry.of.height == mask.height;
    });
    if (half == Halves.end()) {
        const PlaneSize of{mask.width, mask.height}, to{mask.width / 2, mask.height / 2};
        half = Halves.insert(half, {of, ResizePlan(of, to), NewPlane(to.width, to.height)});
    }
    half->plan.Apply(mask, half->mask);
    return half->mask;
}

size_t CAnimationFramework::AddObject(AnimationObject object) {
    if (Objects.size() == Objects.max_size()) throw std::length_error("list<T> too long");
    Objects.push_back(std::move(object));
    return Objects.size();
}

void CAnimationFramework::RemoveFirst(int32_t count) {
    if (count < 1) return;
    const auto removed = std::min(static_cast<size_t>(count), Objects.size());
    Objects.erase(Objects.begin(), Objects.begin() + static_cast<ptrdiff_t>(removed));
}

void CAnimationFramework::RemoveAll() {
    Objects.clear();
}
