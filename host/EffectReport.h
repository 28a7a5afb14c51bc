// What there is to say of an effect, found out by asking it.
#ifndef SPECIALEFFECTS_HOST_EFFECTREPORT_H
#define SPECIALEFFECTS_HOST_EFFECTREPORT_H

#include <string>
#include <vector>

#include "EffectNames.h"
#include "Module.h"

namespace host {

/// A row of the property table with the value that runs when nobody sets one. The two differ in some
/// effects: the table is what a host may show, the value is what the effect does.
struct PropertyReport {
    PropertyInfo info;
    std::string running;
};

/// The formats that the effect really processes, which are fewer than those it advertises: "planar",
/// "packed". Found by running it on a small frame; best done in a ScratchDirectory. Empty for an effect that
/// the module does not have.
std::vector<std::string> ProcessedFormats(const Module& module, const EffectName& name);

/// The properties after the effect has been configured for 640x480. Best done in a ScratchDirectory.
std::vector<PropertyReport> ReportProperties(const Module& module, const EffectName& name);

/// Places of the effect in the module's listing, from 0.
std::vector<size_t> PlacesInListing(const std::vector<EffectGuid>& listing, const EffectGuid& guid);

/// "integer", "boolean" or "color".
std::string TypeName(PropTypeSet type);

}  // namespace host

#endif
