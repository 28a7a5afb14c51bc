#include "framework/SpecialEffectFilter.h"

#include <new>

// The exported classes have no data: construction sets the table of virtual functions, copying does nothing.
CSpecialEffectFilter::CSpecialEffectFilter() = default;
CSpecialEffectFilter::CSpecialEffectFilter(const CSpecialEffectFilter&) {}
CSpecialEffectFilter& CSpecialEffectFilter::operator=(const CSpecialEffectFilter&) {
    return *this;
}

void* CSpecialEffectFilter::DeletingDestructor(uint32_t flags) {
    void* const memory = this;
    this->CSpecialEffectFilter::~CSpecialEffectFilter();
    if ((flags & 1U) != 0) ::operator delete(memory);
    return memory;  // NOLINT(clang-analyzer-cplusplus.NewDelete): the address alone
}

CInternalInfo* CSpecialEffectFilter::GetInternalInfo() {
    return nullptr;
}
int32_t CSpecialEffectFilter::GetPropCount() {
    return 0;
}
PropTypeSet CSpecialEffectFilter::GetPropTypeInfo(int32_t, WideChar*, uint32_t, WideChar*, uint32_t,
                                                  WideChar*, uint32_t) {
    return PropTypeSet::None;
}
PropTypeSet CSpecialEffectFilter::GetPropTypeInfo(int32_t, char*, uint32_t, char*, uint32_t, char*,
                                                  uint32_t) {
    return PropTypeSet::None;
}

CROISpecialEffectFilter::CROISpecialEffectFilter() = default;
CROISpecialEffectFilter::CROISpecialEffectFilter(const CROISpecialEffectFilter&) : CSpecialEffectFilter() {}
CROISpecialEffectFilter& CROISpecialEffectFilter::operator=(const CROISpecialEffectFilter&) {
    return *this;
}
