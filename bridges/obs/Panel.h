// The properties of a filter: what OBS shows in its dialog.
#ifndef SPECIALEFFECTS_BRIDGES_OBS_PANEL_H
#define SPECIALEFFECTS_BRIDGES_OBS_PANEL_H

#include <obs.h>

namespace sfxobs {

class Filter;

/// Belongs to the caller, as with OBS's callbacks. `filter` is null for the properties of a kind of filter.
obs_properties_t* CreateProperties(Filter* filter);

}  // namespace sfxobs

#endif
