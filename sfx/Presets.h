// Named effect texts, from files.
#ifndef SPECIALEFFECTS_SFX_PRESETS_H
#define SPECIALEFFECTS_SFX_PRESETS_H

#include <string>
#include <string_view>

#include "sfx/sfx.h"

namespace sfx {

/// The library's own copy of the file that ships with it.
extern const char kShippedPresets[];

/// Presets stay valid until the library is unloaded, even when a later file replaces them. Functions may be
/// called from any thread.
size_t PresetCount();
const sfx_preset_info* PresetAt(size_t index);

/// The effect's text of a preset. Throws Failure if unknown.
std::string_view RequirePreset(std::string_view id);

/// Adds the presets of a text in the form of the file; nothing of it when a line is wrong, which throws
/// Failure with a message that begins with `source` and the line.
void AddPresets(std::string_view text, const std::string& source, bool users);

}  // namespace sfx

#endif
