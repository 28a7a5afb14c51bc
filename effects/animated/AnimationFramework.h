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
    /// For video frames of this size.
    CAnimationFramework(int32_t width, int32_t height);
    ~CAnimationFramework() = default;
    CAnimationFramework(const CAnimationFramework&) = delete;
    CAnimationFramework& operator=(const CAnimationFramework&) = delete;

    /// Slot 0. Destroys the framework with its objects, frees it when bit 0 of `flags` is set, returns its
    /// address.
    virtual void* DeletingDestructor(uint32_t flags);
    /// Slots 1 and 2. `Move` and `NextFrame` of every object.
    virtual void MoveAll();
    virtual void AnimateAll();
    /// Slot 3. Adds all masks up on black and lays the result on the luma as light on light.
    virtual void RenderGlow(CPlane8u* y);
    /// Slot 4. Blends each object's colour into the luma through its mask and, `withChroma`, into the chroma.
    virtual void RenderTinted(CPlane8u* y, CPlane8u* u, CPlane8u* v, bool withChroma);
    /// Slot 5. Stamps each object's colour into the chroma where its mask is not faint, then softens both
    /// planes.
    virtual void ColorizeChroma(CPlane8u* u, CPlane8u* v);

    /// Takes the object over; returns the new count.
    size_t AddObject(AnimationObject object);
    size_t GetObjectCount() const { return Objects.size(); }
    /// The oldest `count` objects, or all; below 1 none.
    void RemoveFirst(int32_t count);
    void RemoveAll();

  protected:
    int32_t Width, Height;
    std::vector<AnimationObject> Objects;
    CPlane8u Work;

  private:
    /// Masks of one size, scaled to the chroma's.
    struct HalfSize {
        PlaneSize of;
        ResizePlan plan;
        CPlane8u mask;
    };

    const CPlane8u& HalfMask(const CPlane8u& mask);

    std::vector<HalfSize> Halves;  ///< for each size of the objects
    CPlane8u ChromaWork;
};

#endif
