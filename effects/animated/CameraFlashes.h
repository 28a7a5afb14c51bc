// Camera Flashes: lens flares over the picture, like flashlights going off in a crowd.
#ifndef SPECIALEFFECTS_EFFECTS_ANIMATED_CAMERAFLASHES_H
#define SPECIALEFFECTS_EFFECTS_ANIMATED_CAMERAFLASHES_H

#include "effects/animated/LensFlares.h"
#include "framework/EffectBase.h"

/// The variant is the mode of the first flare field: 1 to 6 use one type of flare, 7 to 12 a random type for
/// each flare. "Mode" returns the mode of the running field; a new mode takes effect at the next frame.
class CCameraFlashesSpecialEffectFilter final : public PlanarEffect<CCameraFlashesSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Camera Flashes";
    static std::span<const Property<CCameraFlashesSpecialEffectFilter>> Properties();

    explicit CCameraFlashesSpecialEffectFilter(int32_t mode) : Mode(mode), ActiveMode(mode) {}

    void Prepare() { BuildField(ActiveMode); }
    void Release() { Field.reset(); }
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    void BuildField(int32_t mode);

    int32_t Mode;  ///< the requested mode
    Owned<CFlaresField> Field;
    int32_t ActiveMode;  ///< the mode of `Field`
    bool Moving = true, Colorizing = true, Animation = true;
};

#endif
