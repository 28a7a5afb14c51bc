// Lens flares: glowing sprites drawn from formulas, and the field that makes them.
#ifndef SPECIALEFFECTS_EFFECTS_ANIMATED_LENSFLARES_H
#define SPECIALEFFECTS_EFFECTS_ANIMATED_LENSFLARES_H

#include "effects/animated/AnimationFramework.h"
#include "effects/animated/AnimationObjects.h"

/// The types of flare; a flare of any other type has empty frames and is invisible.
enum FlareLook : int32_t {
    kPlainGlow = 1,     ///< plain round glow
    kGlare = 2,         ///< sharp point with a wide halo
    kRaggedStar = 3,    ///< a random spike count at each degree
    kRegularStar = 4,   ///< 3 to 7 spikes, the same in all frames
    kChangingStar = 5,  ///< 5 to 11 spikes, new for each frame
    kRingedStar = 6,    ///< ragged star in a ring
};

/// Pulses through frames drawn at construction and jumps to a new place at the end of each cycle. All but the
/// plain glow also change colour.
class CLensFlaresMovingAnimation final : public CMovingAnimationObject {
  public:
    CLensFlaresMovingAnimation(int32_t objectWidth, int32_t objectHeight, int32_t frameWidth,
                               int32_t frameHeight, int32_t flareType, int32_t frameCount, int32_t maxSpeed);

    void* DeletingDestructor(uint32_t flags) override;
    bool NextFrame() override;
    void BuildFrames() override;

  private:
    int32_t FlareType;
    int32_t MaxSpeed;
};

class CFlaresField final : public CAnimationFramework {
  public:
    /// Mode 0 picks a random type for each flare; any other mode is the type of all flares.
    CFlaresField(int32_t width, int32_t height, int32_t mode);

    void* DeletingDestructor(uint32_t flags) override;
    void AddFlares(int32_t count);

  private:
    int32_t Mode;
    int32_t FlareSize;  ///< side of the square sprites
};

// The drawings, on square planes. (x, y) is a pixel's offset from the centre. Radii are clamped to half the
// plane; a radius of 0 draws nothing.

/// A round glow that fades to the rim. Sets every pixel.
void SoftDisc(CPlane8u& plane, int32_t radius);
/// The scattering of light in the human eye (Spencer et al., "Physically-Based Glare Effects for Digital
/// Images", 1995).
void GlareDisc(CPlane8u& plane, int32_t radius);
/// Rays whose lengths make `spikes` lobes, over a soft core. 0 draws a new count from `rand` at each degree,
/// a negative number one count for all.
void Star(CPlane8u& plane, int32_t radius, int32_t spikes);
/// Adds a rim of light.
void Ring(CPlane8u& plane, int32_t radius);

#endif
