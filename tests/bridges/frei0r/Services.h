// What the tests share: the names of the plugins.
#ifndef SPECIALEFFECTS_TESTS_BRIDGES_FREI0R_SERVICES_H
#define SPECIALEFFECTS_TESTS_BRIDGES_FREI0R_SERVICES_H

#include <string>

#include "sfx/sfx.h"

/// "sfx_sketch_2" for sketch-2: the name of its file, and what hosts call it.
inline std::string ServiceOf(const sfx_effect_info& info) {
    std::string name = "sfx_";
    for (const char* at = info.id; *at != '\0'; ++at) name += *at == '-' ? '_' : *at;
    return name;
}

#endif
