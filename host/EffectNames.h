// The names under which people ask for an effect.
#ifndef SPECIALEFFECTS_HOST_EFFECTNAMES_H
#define SPECIALEFFECTS_HOST_EFFECTNAMES_H

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "framework/SpecialEffectFactory.h"

namespace host {

/// One effect that can be created.
struct EffectName {
    int number;                    ///< its place in the module's table, from 1
    std::string_view guid;         ///< in registry form
    std::string_view shortName;    ///< unique; stays as it is from version to version
    std::string_view displayName;  ///< the module's own; shared by the variants of one class
    std::optional<int> variant;    ///< what tells the variants of one class apart

    EffectGuid Guid() const;
};

/// All of them, by number.
std::span<const EffectName> AllEffects();

/// Registry form, with or without braces, in either case.
std::optional<EffectGuid> ParseGuid(std::string_view text);
std::string GuidText(const EffectGuid& guid);

/// By short name, by GUID, or by display name, which means the first effect of that name. Case does not
/// matter, nor whether words are joined by blanks or hyphens. Null when there is none.
const EffectName* FindEffect(std::string_view text);
const EffectName* FindEffect(const EffectGuid& guid);

/// The same; throws UsageError with the nearest names.
const EffectName& RequireEffect(std::string_view text);

/// At most three short names that `text` may have meant, nearest first.
std::vector<std::string_view> NearestNames(std::string_view text);

}  // namespace host

#endif
