// Logo Animation: copies of a small logo fade in and out at random places, mostly near the edges.
#ifndef SPECIALEFFECTS_EFFECTS_ANIMATED_LOGOANIMATION_H
#define SPECIALEFFECTS_EFFECTS_ANIMATED_LOGOANIMATION_H

#include <string>

#include "effects/animated/AnimationFramework.h"
#include "framework/EffectBase.h"

/// The logo is a text or the bitmap in the data file logo3.bmp; if the file is missing or unreadable, a
/// message appears instead. `Configure` for planar frames seeds the random generator from the clock (nothing
/// else in the module does) and overwrites properties that were set before: "Objects Number" becomes 10,
/// "Type" text, "Moving Animation" off and "Colorize" on.
class CLogoAnimationSpecialEffectFilter final : public PlanarEffect<CLogoAnimationSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Logo Animation";
    static std::span<const Property<CLogoAnimationSpecialEffectFilter>> Properties();

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    enum LogoType : int32_t { kText = 1, kPicture = 2 };

    // Setters of properties that require new logos, and the property row of a colour.
    template <auto Member>
    static void SetAndRemake(CLogoAnimationSpecialEffectFilter& effect, int32_t value);
    template <size_t index>
    static consteval Property<CLogoAnimationSpecialEffectFilter> ColorRow(const char* name);

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
    uint32_t Colors[5] = {};  ///< 0 means unset
    bool Dirty = false;       ///< the logos must be made anew
    bool RandomColors = true;
};

#endif
