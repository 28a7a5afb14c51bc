// The list of all effects: the one place that names each of them.
#ifndef SPECIALEFFECTS_FRAMEWORK_CATALOGUE_H
#define SPECIALEFFECTS_FRAMEWORK_CATALOGUE_H

#include <span>
#include <vector>

#include "framework/PropertyWords.h"
#include "framework/SpecialEffectFactory.h"

enum class EffectKind : uint8_t { Tone, Distortion, Drawing, Time, Animated, Faces };

/// "tone", "distortion", "drawing", "time", "animated" or "faces".
const char* KindName(EffectKind kind);

/// What a host can expect of an effect with its starting properties; bits of `CatalogueRow::traits`.
enum EffectTraits : uint32_t {
    kHasMemory = 1,   ///< a frame depends on the pictures of earlier frames
    kMoves = 2,       ///< a still picture gives changing frames
    kUsesChance = 4,  ///< draws random numbers
    kUsesTime = 8,    ///< reads the clock
};

struct CatalogueRow {
    static constexpr int32_t kOnly = -1;

    EffectGuid id;
    const char* guid;       ///< the same in registry form, with braces and in upper case
    const char* shortName;  ///< lower case, dashed, unique: "sketch-2"
    int32_t variant;        ///< the argument of the constructor; `kOnly` where it takes none
    EffectKind kind;
    const char* description;  ///< one sentence
    uint32_t traits;
    const char* dataFile;  ///< name of the data file that the effect needs, or null

    struct Places {
        static constexpr int32_t kNone = -1;
        int32_t first = kNone, second = kNone;
    };
    Places listedAt;  ///< the places at which `EffectListing` has the effect

    CSpecialEffectFilter* (*make)(int32_t variant);
    std::vector<PropertyWords> (*words)();  ///< of the effect's properties, in their order

    CSpecialEffectFilter* create() const { return make(variant); }
    bool IsListed() const { return listedAt.first != Places::kNone; }
};

/// All effects that can be created, in the order in which GUIDs are looked up.
std::span<const CatalogueRow> EffectCatalogue();

/// What hosts are shown, in their order: 41 entries, one of them twice, the last one not creatable.
std::span<const EffectGuid> EffectListing();

#endif
