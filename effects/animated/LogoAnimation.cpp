#include "effects/animated/LogoAnimation.h"

#include <type_traits>
#include <utility>

#include "effects/animated/TextRenderer.h"
#include "framework/Surroundings.h"
#include "imaging/ReleaseMemory.h"
#include "imaging/ScalarColor.h"

using Effect = CLogoAnimationSpecialEffectFilter;

template <auto Member>
void Effect::SetAndRemake(Effect& effect, int32_t value) {
    effect.*Member = static_cast<std::remove_reference_t<decltype(effect.*Member)>>(value);
    effect.Dirty = true;
}

template <size_t index>
consteval Property<Effect> Effect::ColorRow(const char* name) {
    return ColorProperty<Effect>(
               name, "0,0,0", [](const Effect& effect) { return static_cast<int32_t>(effect.Colors[index]); },
               [](Effect& effect, int32_t value) {
                   effect.Colors[index] = static_cast<uint32_t>(value);
                   effect.Dirty = true;
               })
        .Says("One of the colours of the copies when random colours are off; black means unset.");
}

std::span<const Property<Effect>> Effect::Properties() {
    static constexpr ValueName kTypes[] = {
        {kText, "text", "a short text"},
        {kPicture, "picture", "the bitmap in the data file logo3.bmp, or an error message"},
    };
    static constexpr Property<Effect> rows[] = {
        IntegerProperty<&Effect::ObjectsNumber>("Objects Number", "10", "1,40").Says("Number of copies."),
        IntegerProperty<&Effect::Type>("Type", "2", "1,2")
            .Says("Content of the copies.", kTypes)
            .OnSet(SetAndRemake<&Effect::Type>),
        BooleanProperty<&Effect::MovingAnimation>("Moving Animation", "FALSE")
            .Says("Whether the copies drift.")
            .OnSet(SetAndRemake<&Effect::MovingAnimation>),
        BooleanProperty<&Effect::Colorize>("Colorize", "FALSE")
            .Says("Whether the copies tint the picture as well as brighten it."),
        BooleanProperty<&Effect::RandomColors>("Random Colors", "FALSE")
            .Says("Whether each copy gets a random colour instead of one of the set colours.")
            .OnSet(SetAndRemake<&Effect::RandomColors>),
        ColorRow<0>("Color 1"),
        ColorRow<1>("Color 2"),
        ColorRow<2>("Color 3"),
        ColorRow<3>("Color 4"),
        ColorRow<4>("Color 5"),
    };
    return rows;
}

void Effect::Prepare() {
    constexpr int32_t kCopies = 10;
    Text = "+44";
    Surroundings& surroundings = CurrentSurroundings();
    LogoPath = surroundings.DataFile("logo3.bmp");
    surroundings.Srand(static_cast<uint32_t>(surroundings.Milliseconds()));
    ObjectsNumber = kCopies;
    MovingAnimation = false;
    Colorize = true;
    PictureField = MakeOwned<CAnimationFramework>(Width(), Height());
    TextField = MakeOwned<CAnimationFramework>(Width(), Height());
    CurrentField = PictureField.get();
    Type = kPicture;
    SyncObjects(kCopies);
    CurrentField = TextField.get();
    Type = kText;
    SyncObjects(ObjectsNumber);
}

void Effect::Release() {
    CurrentField = nullptr;
    PictureField.reset();
    TextField.reset();
    ReleaseMemory(Text, LogoPath);
}

/// Brings the current field to the wanted number of copies. Removes the oldest first; appends new ones.
void Effect::SyncObjects(int32_t wanted) {
    const auto have = static_cast<int32_t>(CurrentField->GetObjectCount());
    CurrentField->RemoveFirst(have - wanted);
    for (int32_t i = have; i < wanted; ++i) {
        if (Type == kText) {
            AddTextLogo(Text);
        } else if (!AddPictureLogo(LogoPath)) {
            AddTextLogo("logo3.bmp not found");
        }
    }
}

/// Limits the logo to a quarter of the frame, width and height independently.
bool Effect::AddPictureLogo(const std::string& path) {
    CPlane8u bitmap;
    if (!bitmap.LoadBmp(path.c_str())) return false;
    const auto fitted = [](int32_t frame, int32_t logo) {
        return static_cast<double>(frame) / logo <= 4.0 ? frame / 4 : logo;
    };
    CPlane8u logo = NewPlane(fitted(Width(), bitmap.width), fitted(Height(), bitmap.height));
    ResizePlane(bitmap, logo);
    logo.Invert();
    AddLogoObject(logo);
    return true;
}

void Effect::AddTextLogo(const std::string& text) {
    CPlane8u logo = RenderText(text);
    logo.Invert();
    AddLogoObject(logo);
}

void Effect::AddLogoObject(const CPlane8u& plane) {
    constexpr int32_t kSpeed = 8;
    Owned<CBitmapAnimationObject> logo =
        MakeOwned<CBitmapAnimationObject>(plane.width, plane.height, Width(), Height(), plane);
    logo->RandomizePosition();
    logo->RandomizeVelocity(kSpeed);
    if (RandomColors) {
        logo->RandomizeColor();
    } else {
        uint8_t color[4];
        PickColor(color);
        logo->SetColor(color);
    }
    CurrentField->AddObject(std::move(logo));
}

/// A random one of the colours that are set. Black, without a draw, if none is set.
void Effect::PickColor(uint8_t* color) const {
    uint32_t set[5];
    int32_t count = 0;
    for (const uint32_t candidate : Colors) {
        if (candidate != 0) set[count++] = candidate;
    }
    const uint32_t picked = count > 0 ? set[Rand() % count] : 0;
    RgbToYuvColor(color, PackedRed(picked), PackedGreen(picked), PackedBlue(picked));
}

void Effect::ProcessPlanar(const PlanarFrame& frame) {
    CPlane8u y = CPlane8u::Over(frame.y.data, frame.y.width, frame.y.height);
    CPlane8u u = CPlane8u::Over(frame.u.data, frame.u.width, frame.u.height);
    CPlane8u v = CPlane8u::Over(frame.v.data, frame.v.width, frame.v.height);
    CurrentField = Type == kText ? TextField.get() : PictureField.get();
    if (Dirty) {
        SyncObjects(0);
        SyncObjects(ObjectsNumber);
        Dirty = false;
    }
    SyncObjects(ObjectsNumber);
    CurrentField->AnimateAll();
    if (MovingAnimation) CurrentField->MoveAll();
    CurrentField->RenderTinted(&y, &u, &v, Colorize);
}

template struct EffectClass<CLogoAnimationSpecialEffectFilter>;
