// The container of sprites: steps them and composes them into a frame.
#ifndef SPECIALEFFECTS_EFFECTS_ANIMATED_ANIMATIONFRAMEWORK_H
#define SPECIALEFFECTS_EFFECTS_ANIMATED_ANIMATIONFRAMEWORK_H

#include <cstdint>
#include <vector>

#include "effects/animated/AnimationObjects.h"
#include "imaging/Plane8u.h"
#include "imaging/ResizePlan.h"

/// Draws its objects in the order in which they were added, clipped to the planes.
class CAnimationFramework {
  public:
    /// For frames of this size, in pixels.
    CAnimationFramework(int32_t width, int32_t height);
    ~CAnimationFramework() = default;
    CAnimationFramework(const CAnimationFramework&) = delete;
    CAnimationFramework& operator=(const CAnimationFramework&) = delete;

    /// Slot 0. Destroys the framework and its objects, frees it when bit 0 of `flags` is set, and returns its
    /// address.
    virtual void* DeletingDestructor(uint32_t flags);
    /// Slots 1 and 2. `Move` and `NextFrame` of every object.
    virtual void MoveAll();
    virtual void AnimateAll();
    /// Slot 3. Adds all masks on black and lays the sum on the luma as light.
    virtual void RenderGlow(CPlane8u* y);
    /// Slot 4. Blends each object's colour into the luma through its mask and, `withChroma`, into the chroma.
    virtual void RenderTinted(CPlane8u* y, CPlane8u* u, CPlane8u* v, bool withChroma);
    /// Slot 5. Stamps each object's colour into the chroma where its mask is not faint, then softens both
    /// planes.
    virtual void ColorizeChroma(CPlane8u* u, CPlane8u* v);

    /// Takes ownership of the object; returns the new count.
    size_t AddObject(AnimationObject object);
    size_t GetObjectCount() const { return Objects.size(); }
    /// Removes the oldest `count` objects, or all if there are fewer. Does nothing for a count below 1.
    void RemoveFirst(int32_t count);
    void RemoveAll();

  protected:
    int32_t Width, Height;
    std::vector<AnimationObject> Objects;
    CPlane8u Work;

  private:
    /// Masks of one object size, scaled to the chroma size.
    struct HalfSize {
        PlaneSize of;
        ResizePlan plan;
        CPlane8u mask;
    };

    /// Calls `row(mask, offset, count)` for every row of every mask, clipped to the frame.
    template <class Row>
    void ForEachLitRow(Row row);
    const CPlane8u& HalfMask(const CPlane8u& mask);

    std::vector<HalfSize> Halves;  ///< one for each object size
    CPlane8u ChromaWork;
};

#endif
