#include "effects/animated/CameraFlashes.h"

#include <utility>

std::span<const Property<CCameraFlashesSpecialEffectFilter>> CCameraFlashesSpecialEffectFilter::Properties() {
    using Effect = CCameraFlashesSpecialEffectFilter;
    static constexpr ValueName kModes[] = {
        {1, "glows", "plain round glows"},
        {2, "glares", "sharp points with wide halos"},
        {3, "ragged-stars", "stars with spikes of random length"},
        {4, "regular-stars", "stars with 3 to 7 even spikes"},
        {5, "changing-stars", "stars that change their spikes"},
        {6, "ringed-stars", "ragged stars in rings"},
        {7, "random", "a random kind for each flare"},
    };
    static constexpr Property<Effect> rows[] = {
        IntegerProperty<&Effect::Mode>("Mode", "1", "1,7")
            .Says("Kind of flare.", kModes)
            .OnGet([](const Effect& effect) { return effect.ActiveMode; }),
        BooleanProperty<&Effect::Moving>("Moving", "TRUE").Says("Whether the flares drift."),
        BooleanProperty<&Effect::Colorizing>("Colorizing", "TRUE")
            .Says("Whether the flares tint the picture as well as brighten it."),
        BooleanProperty<&Effect::Animation>("Animation", "TRUE")
            .Says("Whether the flares pulse and light up again elsewhere."),
    };
    return rows;
}

void CCameraFlashesSpecialEffectFilter::BuildField(int32_t mode) {
    constexpr int32_t kFlares = 10, kRandomTypes = 0;
    const int32_t fieldMode = mode >= 1 && mode <= 6 ? mode : kRandomTypes;
    Owned<CFlaresField> field = MakeOwned<CFlaresField>(Width(), Height(), fieldMode);
    field->AddFlares(kFlares);
    Field = std::move(field);
}

void CCameraFlashesSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    if (Mode != ActiveMode) {
        BuildField(Mode);
        ActiveMode = Mode;
    }
    CPlane8u y = CPlane8u::Over(frame.y.data, frame.y.width, frame.y.height);
    CPlane8u u = CPlane8u::Over(frame.u.data, frame.u.width, frame.u.height);
    CPlane8u v = CPlane8u::Over(frame.v.data, frame.v.width, frame.v.height);
    if (Moving) Field->MoveAll();
    if (Animation) Field->AnimateAll();
    Field->RenderGlow(&y);
    if (Colorizing) Field->ColorizeChroma(&u, &v);
}

template struct EffectClass<CCameraFlashesSpecialEffectFilter>;
