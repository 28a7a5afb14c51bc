#include "effects/animated/CameraFlashes.h"

#include <utility>

std::span<const Property<CCameraFlashesSpecialEffectFilter>> CCameraFlashesSpecialEffectFilter::Properties() {
    using Effect = CCameraFlashesSpecialEffectFilter;
    static constexpr Property<Effect> rows[] = {
        IntegerProperty<&Effect::Mode>("Mode", "1", "1,7").OnGet([](const Effect& effect) {
            return effect.ActiveMode;
        }),
        BooleanProperty<&Effect::Moving>("Moving", "TRUE"),
        BooleanProperty<&Effect::Colorizing>("Colorizing", "TRUE"),
        BooleanProperty<&Effect::Animation>("Animation", "TRUE"),
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
