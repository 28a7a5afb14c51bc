// Camera Flashes: lens flares over the picture, like flashlights going off in a crowd.
#ifndef SPECIALEFFECTS_EFFECTS_ANIMATED_CAMERAFLASHES_H
#define SPECIALEFFECTS_EFFECTS_ANIMATED_CAMERAFLASHES_H

#include "effects/animated/LensFlares.h"
#include "framework/EffectBase.h"

/// Twelve variants by the mode that a flare field starts with: 1 to 6 one type of flare for all, 7 to 12 a
/// random type for each. "Mode" shows the mode of the field that is running: a new one takes hold with the
/// next frame.
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

    int32_t Mode;  ///< what is wanted
    Owned<CFlaresField> Field;
    int32_t ActiveMode;  ///< what `Field` was built with
    bool Moving = true, Colorizing = true, Animation = true;
};

#endif
