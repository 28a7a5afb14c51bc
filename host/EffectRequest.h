// What `-e EFFECT:NAME=VALUE,NAME=VALUE` asks for.
#ifndef SPECIALEFFECTS_HOST_EFFECTREQUEST_H
#define SPECIALEFFECTS_HOST_EFFECTREQUEST_H

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Module.h"

namespace host {

/// One property to be set, under the name that the effect's table has, its value in the form in which the
/// effect gives it back: what comes back differently has been clamped.
struct Assignment {
    std::string name;
    std::string value;
};

/// The two sides of the first colon; the second is empty when there is none.
struct EffectText {
    std::string_view effect;
    std::string_view assignments;
};
EffectText SplitEffectText(std::string_view text);

/// Splits "NAME=VALUE,NAME=VALUE". A comma begins a new property when a property's name and "=" follow it;
/// any other belongs to the value, as in "BlurColor=0,0,192". Throws UsageError for a name that is not in
/// `table` and for a value that is not of its property's type; `effect` names the effect in the message.
std::vector<Assignment> ParseAssignments(std::string_view text, std::span<const PropertyInfo> table,
                                         std::string_view effect);

}  // namespace host

#endif
