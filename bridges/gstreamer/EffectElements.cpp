#include <cctype>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "Elements.h"
#include "Filter.h"

namespace sfxgst {
namespace {

struct EffectClass {
    FilterClass parent;
    const sfx_effect_info* info;
};

constexpr uint32_t kOpaque = 0xFF000000;  // colours are 0xAARRGGBB here, 0xRRGGBB in libsfx

/// "drop-size" as "DropSize", for names of types.
std::string CamelCase(const char* id) {
    std::string name;
    bool first = true;
    for (const char* letter = id; *letter != '\0'; ++letter) {
        if (*letter == '-') {
            first = true;
            continue;
        }
        name += first ? static_cast<char>(std::toupper(static_cast<unsigned char>(*letter))) : *letter;
        first = false;
    }
    return name;
}

// ---- properties --------------------------------------------------------------------------------------

/// The values of a property as a GLib type; one without a name goes by its number. The table is never freed,
/// like the type.
GType ChoiceType(const sfx_effect_info& effect, const sfx_property_info& property) {
    const auto count = static_cast<gsize>(property.maximum - property.minimum + 1);
    // GLib initializes one class at a time.
    static auto& tables = *std::make_unique<std::deque<std::vector<GEnumValue>>>().release();
    std::vector<GEnumValue>& values = tables.emplace_back(count + 1);
    for (size_t i = 0; i < property.choice_count; ++i) {
        const sfx_choice& choice = property.choices[i];
        values[static_cast<gsize>(choice.value - property.minimum)] = {choice.value, choice.description,
                                                                       choice.id};
    }
    for (gsize i = 0; i < count; ++i) {
        if (values[i].value_nick == nullptr) {
            values[i].value = property.minimum + static_cast<int32_t>(i);
            values[i].value_name = values[i].value_nick =
                g_intern_string(std::to_string(values[i].value).c_str());
        }
    }
    const std::string name = "GstSfx" + CamelCase(effect.id) + CamelCase(property.id);
    const GType type = g_enum_register_static(name.c_str(), values.data());
    gst_type_mark_as_plugin_api(type, static_cast<GstPluginAPIFlags>(0));
    return type;
}

GParamSpec* SpecOf(const sfx_effect_info& effect, const sfx_property_info& property) {
    const char *const id = property.id, *const name = property.name, *const blurb = property.description;
    const auto flags = static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS |
                                                GST_PARAM_CONTROLLABLE | GST_PARAM_MUTABLE_PLAYING);
    switch (property.type) {
        case SFX_BOOLEAN:
            return g_param_spec_boolean(id, name, blurb, property.start != 0 ? TRUE : FALSE, flags);
        case SFX_COLOR:
            return g_param_spec_uint(id, name, blurb, 0, G_MAXUINT32,
                                     kOpaque | static_cast<uint32_t>(property.start), flags);
        case SFX_CHOICE:
            return g_param_spec_enum(id, name, blurb, ChoiceType(effect, property), property.start, flags);
        case SFX_INTEGER:
            break;
    }
    return g_param_spec_int(id, name, blurb, property.minimum, property.maximum, property.start, flags);
}

// Properties have libsfx's names, so no table is needed.

void SetProperty(GObject* object, guint, const GValue* value, GParamSpec* spec) noexcept {
    int32_t number = 0;
    if (G_VALUE_HOLDS_BOOLEAN(value)) {
        number = g_value_get_boolean(value);
    } else if (G_VALUE_HOLDS_UINT(value)) {
        number = static_cast<int32_t>(g_value_get_uint(value) & ~kOpaque);
    } else if (G_VALUE_HOLDS_ENUM(value)) {
        number = g_value_get_enum(value);
    } else {
        number = g_value_get_int(value);
    }
    if (sfx_set_int(CurrentEffect(object).get(), spec->name, number) < 0) {
        GST_WARNING_OBJECT(object, "%s: %s", spec->name, sfx_message());
    }
}

void GetProperty(GObject* object, guint, GValue* value, GParamSpec* spec) noexcept {
    int32_t number = 0;
    if (sfx_get_int(CurrentEffect(object).get(), spec->name, &number) < 0) {
        GST_WARNING_OBJECT(object, "%s: %s", spec->name, sfx_message());
    }
    if (G_VALUE_HOLDS_BOOLEAN(value)) {
        g_value_set_boolean(value, number != 0 ? TRUE : FALSE);
    } else if (G_VALUE_HOLDS_UINT(value)) {
        g_value_set_uint(value, kOpaque | static_cast<uint32_t>(number));
    } else if (G_VALUE_HOLDS_ENUM(value)) {
        g_value_set_enum(value, number);
    } else {
        g_value_set_int(value, number);
    }
}

// ---- types -------------------------------------------------------------------------------------------

void InitializeClass(gpointer klass, gpointer data) noexcept {
    const auto& info = *static_cast<const sfx_effect_info*>(data);
    static_cast<EffectClass*>(klass)->info = &info;
    DescribeElement(klass, info.title, info.description);

    GObjectClass& object = *G_OBJECT_CLASS(klass);
    object.set_property = SetProperty;
    object.get_property = GetProperty;
    for (size_t i = 0; i < info.property_count; ++i) {
        g_object_class_install_property(&object, static_cast<guint>(i + 1),
                                        SpecOf(info, *info.properties[i]));
    }
}

void InitializeInstance(GTypeInstance* instance, gpointer klass) noexcept {
    GObject* const object = G_OBJECT(instance);
    if (Effect effect = CreateEffect(static_cast<EffectClass*>(klass)->info->id)) {
        ReplaceEffect(object, std::move(effect));
    } else {
        RefuseEffect(object, sfx_message());
    }
}

bool RegisterEffectElement(GstPlugin* plugin, const sfx_effect_info& info) {
    GTypeInfo type{};
    type.class_size = sizeof(EffectClass);
    type.class_init = InitializeClass;
    type.class_data = &info;
    type.instance_size = sizeof(Filter);
    type.instance_init = InitializeInstance;
    const std::string typeName = "GstSfx" + CamelCase(info.id), name = std::string("sfx-") + info.id;
    return gst_element_register(plugin, name.c_str(), GST_RANK_NONE,
                                g_type_register_static(FilterType(), typeName.c_str(), &type,
                                                       static_cast<GTypeFlags>(0))) != FALSE;
}

}  // namespace

bool RegisterEffectElements(GstPlugin* plugin) {
    for (size_t i = 0; i < sfx_effect_count(); ++i) {
        if (!RegisterEffectElement(plugin, *sfx_effect_at(i))) {
            return false;
        }
    }
    return sfx_effect_count() > 0;
}

}  // namespace sfxgst
