// Sprites: small animated masks with a position, a velocity and a colour. Slot n of a class is entry n of its
// table of virtual functions, so slot 0 is an ordinary function, not a C++ destructor.
#ifndef SPECIALEFFECTS_EFFECTS_ANIMATED_ANIMATIONOBJECTS_H
#define SPECIALEFFECTS_EFFECTS_ANIMATED_ANIMATIONOBJECTS_H

#include <cstdint>
#include <memory>
#include <new>
#include <vector>

#include "imaging/Plane8u.h"

/// The body of slot 0 for each class of the family.
template <class Object>
void* DestroyObject(Object* object, uint32_t flags) {
    void* const memory = object;
    object->Object::~Object();
    if ((flags & 1U) != 0) ::operator delete(memory);
    return memory;  // NOLINT(clang-analyzer-cplusplus.NewDelete): the address alone
}

/// Owns an object of the family, or a framework, through its slot 0.
struct DeleteThroughSlot {
    template <class Object>
    void operator()(Object* object) const {
        object->DeletingDestructor(1);
    }
};
template <class Object>
using Owned = std::unique_ptr<Object, DeleteThroughSlot>;

template <class Object, class... Arguments>
Owned<Object> MakeOwned(const Arguments&... arguments) {
    return Owned<Object>(new Object(arguments...));
}

class CBaseAnimationObject {
  public:
    /// Slot 0. Destroys the object, frees it when bit 0 of `flags` is set, and returns its address.
    virtual void* DeletingDestructor(uint32_t flags) = 0;
    /// Slot 1. Moves one step along the velocity; the sprite bounces off the edges of the frame.
    virtual void Move() = 0;
    /// Slot 2. Advances the animation one step; false when its cycle has ended.
    virtual bool NextFrame() = 0;
    /// Slot 3. The mask to draw now, owned by the object.
    virtual CPlane8u* GetFrame() = 0;
    /// Slot 4. The upper left corner in the full-size frame.
    virtual void GetPosition(PlanePoint* position) = 0;
    /// Slots 5 and 6. Four bytes Y, U, V, alpha.
    virtual void GetColor(uint8_t* color) = 0;
    virtual void SetColor(const uint8_t* color) = 0;

  protected:
    ~CBaseAnimationObject() = default;
};

using AnimationObject = Owned<CBaseAnimationObject>;

/// A sprite that cycles through frames of one size. Its position stays within 0..MaxX and 0..MaxY; a sprite
/// as large as the frame, or larger, stays at 0.
class CMovingAnimationObject : public CBaseAnimationObject {
  public:
    /// With a `frameCount` of 1 or more, makes that many black frames and draws the start of the cycle from
    /// `rand` once.
    CMovingAnimationObject(int32_t objectWidth, int32_t objectHeight, int32_t frameWidth, int32_t frameHeight,
                           int32_t frameCount);
    ~CMovingAnimationObject() = default;
    CMovingAnimationObject(const CMovingAnimationObject&) = delete;
    CMovingAnimationObject& operator=(const CMovingAnimationObject&) = delete;

    void* DeletingDestructor(uint32_t flags) override;
    void Move() override;
    bool NextFrame() override;
    CPlane8u* GetFrame() override;
    void GetPosition(PlanePoint* position) override;
    void GetColor(uint8_t* color) override;
    void SetColor(const uint8_t* color) override;

    /// Slot 7. Draws the frames: here a ramp of grey up and down.
    virtual void BuildFrames();
    /// Slot 8. A random position on the frame: one draw for x, one for y.
    virtual void RandomizePosition();
    /// Slot 9. A random velocity, each component from -speed + 1 to speed + 1: one draw each.
    virtual void RandomizeVelocity(int32_t speed);
    /// Slot 10. A random colour from three draws; alpha is unchanged.
    virtual void RandomizeColor();

  protected:
    /// Draws a coordinate. Calls `rand` even where only one value is possible.
    static int32_t DrawBelow(int32_t limit);

    std::vector<CPlane8u> Frames;
    size_t FrameCursor = 0;
    int32_t ObjectWidth, ObjectHeight;
    int32_t X = 0, Y = 0;
    int32_t VelocityX = 0, VelocityY = 0;
    int32_t FrameWidth, FrameHeight;
    int32_t MaxX, MaxY;
    uint8_t Color[4] = {0, 0, 0, 255};
};

/// One fixed picture that fades in and out, and jumps to a new place when it has faded.
class CBitmapAnimationObject final : public CMovingAnimationObject {
  public:
    /// `source`, of any size, is scaled to the object's size. Draws the length of the fade, then where in it
    /// the object starts.
    CBitmapAnimationObject(int32_t objectWidth, int32_t objectHeight, int32_t frameWidth, int32_t frameHeight,
                           const CPlane8u& source);

    void* DeletingDestructor(uint32_t flags) override;
    bool NextFrame() override;
    CPlane8u* GetFrame() override { return &Picture; }
    /// Softens the interior of the picture.
    void BuildFrames() override;
    /// Picks a random position, four times out of five near the edges of the frame.
    void RandomizePosition() override;

  private:
    CPlane8u Picture;
    int32_t FadeStep, FadeLength;
};

#endif
