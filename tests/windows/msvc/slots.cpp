// Uses of the contract's interfaces, so that the compiler lists their tables of virtual operations.
#define SPECIALEFFECTS_STATIC
#include "framework/SpecialEffectFactory.h"

struct Factory : ISpecialEffectFactory {
    virtual void Last();
};
struct Info : CInternalInfo {
    virtual void Last();
};
struct Filter : CROISpecialEffectFilter {
    virtual void Last();
};

uint32_t Use(Factory& factory, Info& info, Filter& filter) {
    factory.Last();
    info.Last();
    filter.Last();
    return filter.Shutdown();
}
