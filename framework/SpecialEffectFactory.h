// The module's one entry point: a factory that lists effects and creates them by GUID.
#ifndef SPECIALEFFECTS_FRAMEWORK_SPECIALEFFECTFACTORY_H
#define SPECIALEFFECTS_FRAMEWORK_SPECIALEFFECTFACTORY_H

#include <cstdint>

#include "framework/SpecialEffectFilter.h"

/// Identity of an effect: 16 bytes, little-endian fields, passed by value and compared bytewise.
struct EffectGuid {
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
};
static_assert(sizeof(EffectGuid) == 16);

class ISpecialEffectFactory {
  public:
    /// Slot 0. Adds a reference; always returns 0. A new factory has a count of 0.
    virtual uint32_t AddRef() = 0;

    /// Slot 1. Takes a reference away, if there is one, and destroys the factory when none is left. Returns
    /// 0.
    virtual uint32_t Release() = 0;

    /// Slot 2. Creates the effect `id`, not yet configured, and stores it in `effect`; kFailure for an
    /// unknown id, with `effect` unchanged; kInvalidArgument for a null `effect`. The caller owns the effect
    /// and gives it back to `DestroyEffect`; it may outlive the factory. `reserved` is ignored.
    /// When memory runs out, null is stored and the answer is kSuccess.
    virtual ResultCode CreateEffect(EffectGuid id, uint32_t reserved, CSpecialEffectFilter** effect) = 0;

    /// Slot 3. Shuts the effect down and deletes it. Null is ignored.
    virtual void DestroyEffect(CSpecialEffectFilter* effect) = 0;

    /// Slot 4. Always 0.
    virtual uint32_t ReservedQuery(uint32_t, uint32_t, uint32_t, uint32_t, uint32_t) = 0;

    /// Slot 5. With a null `list` stores the number of entries in `count`. Otherwise `count` says how many
    /// fit: too few is an invalid argument that changes nothing, else the whole list is copied and `count`
    /// becomes its length. A null `count` is an invalid argument. The list has one GUID twice and one that
    /// `CreateEffect` does not know.
    virtual ResultCode EnumerateEffects(EffectGuid* list, uint32_t* count) = 0;

    /// Slot 6. Does nothing.
    virtual void ReservedNoOp() = 0;

    /// Slot 7. Destroys the factory, frees its memory when bit 0 of `flags` is set, returns its address.
    virtual void* DeletingDestructor(uint32_t flags) = 0;

  protected:
    ~ISpecialEffectFactory() = default;
};

/// A new factory, or null when memory runs out.
extern "C" SPECIALEFFECTS_API ISpecialEffectFactory* CreateSpecialEffectFactory();

#endif
