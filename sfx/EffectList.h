// The list of effects that libsfx publishes, and the module's objects behind it.
#ifndef SPECIALEFFECTS_SFX_EFFECTLIST_H
#define SPECIALEFFECTS_SFX_EFFECTLIST_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "framework/SpecialEffectFilter.h"
#include "sfx/sfx.h"

namespace sfx {

struct DestroyFilter {
    void operator()(CSpecialEffectFilter* filter) const { filter->DeletingDestructor(1); }
};
/// An effect object of the module.
using Filter = std::unique_ptr<CSpecialEffectFilter, DestroyFilter>;

/// Throws where a call of the module's did not succeed: std::bad_alloc, or a Failure of this status whose
/// message says what the effect did.
void Require(ResultCode code, sfx_status status, const char* effect, const char* what);
inline constexpr const char* kNotConfigured = "cannot be configured";

struct PropertyEntry {
    sfx_property_info info;
    const char* moduleName;  ///< what `SetProperty` and `GetProperty` take
    std::vector<sfx_choice> choices;

    /// The nearest value that the property can have.
    int32_t Clamp(int32_t value) const;
    /// A value from its text. Throws Failure, and sets `clamped` where the text is beyond the bounds.
    int32_t Parse(std::string_view text, bool& clamped) const;
    std::string Print(int32_t value) const;

    void Set(CSpecialEffectFilter& filter, int32_t value) const;
    int32_t Get(CSpecialEffectFilter& filter) const;
};

struct EffectEntry {
    sfx_effect_info info;
    size_t index;  ///< of the row in the module's catalogue
    std::vector<PropertyEntry> properties;

    /// A new effect. Throws std::bad_alloc.
    Filter Create() const;
    /// The place of a property by its id or the module's name for it; properties.size() if unknown.
    size_t FindProperty(std::string_view name) const;
    /// The same; throws Failure if unknown.
    size_t RequireProperty(std::string_view name) const;
};

/// The list is made at the first call, an effect's properties when it is first asked for; both are kept.
/// Throws std::bad_alloc.
size_t EffectCount();
/// `index` is less than the count.
const EffectEntry& EffectAt(size_t index);

/// By id, GUID, title or name. Null, with a message, if unknown.
const EffectEntry* FindEffect(std::string_view text);

}  // namespace sfx

#endif
