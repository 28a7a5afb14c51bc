// What the list of effects needs to know of an effect's class, without its header.
//
// Each effect's .cpp instantiates it by one line at its end:
//
//     template struct EffectClass<CSepiaSpecialEffectFilter>;
//
// (include framework/EffectBase.h, which defines the functions).
#ifndef SPECIALEFFECTS_FRAMEWORK_EFFECTCLASS_H
#define SPECIALEFFECTS_FRAMEWORK_EFFECTCLASS_H

#include <cstdint>
#include <vector>

#include "framework/PropertyWords.h"
#include "framework/SpecialEffectFilter.h"

template <class Effect>
struct EffectClass {
    /// A new effect. `variant` goes to the constructor if it takes one. Throws std::bad_alloc.
    static CSpecialEffectFilter* Make(int32_t variant);
    /// Its properties, in their order.
    static std::vector<PropertyWords> Words();
};

#endif
