// The properties of a filter: what OBS shows in its dialog.
#ifndef SPECIALEFFECTS_BRIDGES_OBS_PANEL_H
#define SPECIALEFFECTS_BRIDGES_OBS_PANEL_H

#include <obs.h>

namespace sfxobs {

/// Belongs to the caller, as with OBS's callbacks. `source` is the filter; null for a kind of filter.
obs_properties_t* CreateProperties(obs_source_t* source);

}  // namespace sfxobs

#endif
