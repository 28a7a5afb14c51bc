// The one place that ties a GUID to an effect class and to its constructor argument.
#ifndef SPECIALEFFECTS_FRAMEWORK_CATALOGUE_H
#define SPECIALEFFECTS_FRAMEWORK_CATALOGUE_H

#include <span>

#include "framework/SpecialEffectFactory.h"

struct CatalogueRow {
    EffectGuid id;
    CSpecialEffectFilter* (*create)();
};

/// All effects that can be created, in the order in which GUIDs are looked up.
std::span<const CatalogueRow> EffectCatalogue();

/// What hosts are shown, in their order: 41 entries, one of them twice, the last one not creatable.
std::span<const EffectGuid> EffectListing();

#endif
