// Where the members of libsfx's structures lie in the module's memory, for readers in JavaScript.
#include <cstddef>
#include <cstdint>

#include "sfx/sfx.h"

namespace {

/// The member "sizeof" is the size of the structure.
struct Member {
    const char* structure;
    const char* member;
    uint32_t offset;
};

#define SFX_SIZE(structure) \
    { #structure, "sizeof", sizeof(structure) }
#define SFX_MEMBER(structure, member) \
    { #structure, #member, offsetof(structure, member) }

constexpr Member kMembers[] = {
    SFX_SIZE(sfx_choice),
    SFX_MEMBER(sfx_choice, value),
    SFX_MEMBER(sfx_choice, id),
    SFX_MEMBER(sfx_choice, description),
    SFX_SIZE(sfx_property_info),
    SFX_MEMBER(sfx_property_info, id),
    SFX_MEMBER(sfx_property_info, name),
    SFX_MEMBER(sfx_property_info, description),
    SFX_MEMBER(sfx_property_info, type),
    SFX_MEMBER(sfx_property_info, minimum),
    SFX_MEMBER(sfx_property_info, maximum),
    SFX_MEMBER(sfx_property_info, start),
    SFX_MEMBER(sfx_property_info, choice_count),
    SFX_MEMBER(sfx_property_info, choices),
    SFX_SIZE(sfx_effect_info),
    SFX_MEMBER(sfx_effect_info, id),
    SFX_MEMBER(sfx_effect_info, guid),
    SFX_MEMBER(sfx_effect_info, name),
    SFX_MEMBER(sfx_effect_info, title),
    SFX_MEMBER(sfx_effect_info, kind),
    SFX_MEMBER(sfx_effect_info, description),
    SFX_MEMBER(sfx_effect_info, variant),
    SFX_MEMBER(sfx_effect_info, flags),
    SFX_MEMBER(sfx_effect_info, data_file),
    SFX_MEMBER(sfx_effect_info, property_count),
    SFX_MEMBER(sfx_effect_info, properties),
    SFX_SIZE(sfx_preset_info),
    SFX_MEMBER(sfx_preset_info, id),
    SFX_MEMBER(sfx_preset_info, title),
    SFX_MEMBER(sfx_preset_info, description),
    SFX_MEMBER(sfx_preset_info, effect),
    SFX_MEMBER(sfx_preset_info, is_user),
    SFX_SIZE(sfx_picture),
    SFX_MEMBER(sfx_picture, struct_size),
    SFX_MEMBER(sfx_picture, format),
    SFX_MEMBER(sfx_picture, width),
    SFX_MEMBER(sfx_picture, height),
    SFX_MEMBER(sfx_picture, matrix),
    SFX_MEMBER(sfx_picture, range),
    SFX_MEMBER(sfx_picture, planes),
    SFX_MEMBER(sfx_picture, strides),
    SFX_MEMBER(sfx_picture, sizes),
    {nullptr, nullptr, 0},
};

#undef SFX_SIZE
#undef SFX_MEMBER

}  // namespace

/// Rows of three 32-bit words: the addresses of two texts, a structure's and a member's name, and the
/// member's offset, or for the name "sizeof" the structure's size. A row of zeros ends them.
extern "C" const void* sfx_web_layout(void) {
    return kMembers;
}
