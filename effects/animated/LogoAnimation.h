// Logo Animation: copies of a small logo fade in and out at random places, mostly near the edges.
#ifndef SPECIALEFFECTS_EFFECTS_ANIMATED_LOGOANIMATION_H
#define SPECIALEFFECTS_EFFECTS_ANIMATED_LOGOANIMATION_H

#include <string>

#include "effects/animated/AnimationFramework.h"
#include "framework/EffectBase.h"

/// The logo is a text or the bitmap of the data file logo3.bmp; one that is missing or cannot be read shows
/// as a message. `Configure` for planar frames seeds the random generator from the clock, the only place in
/// the module that does, and sets "Objects Number" to 10, "Type" to the
/// text, "Moving Animation" off and "Colorize" on, whatever a host set before.
class CLogoAnimationSpecialEffectFilter final : public PlanarEffect<CLogoAnimationSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Logo Animation";
    static std::span<const Property<CLogoAnimationSpecialEffectFilter>> Properties();

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    enum LogoType : int32_t { kText = 1, kPicture = 2 };

    // Setters of the properties that have the logos made anew, and the row of a colour.
    template <auto Member>
    static void SetAndRemake(CLogoAnimationSpecialEffectFilter& effect, int32_t value);
    template <size_t index>
    static constexpr Property<CLogoAnimationSpecialEffectFilter> ColorRow(const char* name);

    void SyncObjects(int32_t wanted);
    bool AddPictureLogo(const std::string& path);
    void AddTextLogo(const std::string& text);
    void AddLogoObject(const CPlane8u& plane);
    void PickColor(uint8_t* color) const;

    Owned<CAnimationFramework> PictureField, TextField;
    CAnimationFramework* CurrentField = nullptr;  ///< one of the two
    int32_t ObjectsNumber = 10;
    int32_t Type = kPicture;
    bool MovingAnimation = false, Colorize = false;
    std::string Text, LogoPath;
    uint32_t Colors[5] = {};  ///< 0 is no colour
    bool Dirty = false;       ///< the logos must be made anew
    bool RandomColors = true;
};

#endif
