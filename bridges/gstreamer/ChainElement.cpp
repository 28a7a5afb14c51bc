#include <string>
#include <utility>

#include "Elements.h"
#include "Filter.h"

namespace sfxgst {
namespace {

enum : guint { kEffect = 1 };

bool SameLinks(const Effect& a, const Effect& b) {
    const size_t count = sfx_link_count(a.get());
    if (count == 0 || count != sfx_link_count(b.get())) {
        return false;
    }
    for (size_t link = 0; link < count; ++link) {
        if (sfx_link_info(a.get(), link) != sfx_link_info(b.get(), link)) {
            return false;
        }
    }
    return true;
}

/// `to` has the same links as `from`, and keeps its history.
void CopySettings(const Effect& from, const Effect& to) {
    for (size_t link = 0; link < sfx_link_count(from.get()); ++link) {
        const sfx_effect_info& info = *sfx_link_info(from.get(), link);
        for (size_t i = 0; i < info.property_count; ++i) {
            const std::string name = std::to_string(link) + "." + info.properties[i]->id;
            int32_t wanted = 0, present = 0;
            if (sfx_get_int(from.get(), name.c_str(), &wanted) == SFX_OK &&
                sfx_get_int(to.get(), name.c_str(), &present) == SFX_OK && wanted != present) {
                sfx_set_int(to.get(), name.c_str(), wanted);
            }
        }
    }
}

void SetText(GObject* object, const char* text) {
    if (text == nullptr || *text == '\0') {
        return ReplaceEffect(object, nullptr);
    }
    Effect effect = CreateEffect(text);
    if (effect == nullptr) {
        return RefuseEffect(object, sfx_message());
    }
    const Effect current = CurrentEffect(object);
    if (SameLinks(effect, current)) {
        CopySettings(effect, current);
    } else {
        ReplaceEffect(object, std::move(effect));
    }
}

std::string TextOf(const Effect& effect) {
    const int length = sfx_print(effect.get(), nullptr, 0);
    std::string text(length > 0 ? static_cast<size_t>(length) + 1 : 1, '\0');
    // It may have become longer in between; it is terminated then, too.
    sfx_print(effect.get(), text.data(), text.size());
    return text;
}

void SetProperty(GObject* object, guint id, const GValue* value, GParamSpec* spec) noexcept {
    if (id == kEffect) {
        SetText(object, g_value_get_string(value));
    } else {
        G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
    }
}

void GetProperty(GObject* object, guint id, GValue* value, GParamSpec* spec) noexcept {
    if (id == kEffect) {
        const Effect effect = CurrentEffect(object);
        g_value_set_string(value, effect != nullptr ? TextOf(effect).c_str() : nullptr);
    } else {
        G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
    }
}

void InitializeClass(gpointer klass, gpointer) noexcept {
    DescribeElement(klass, "Special effects chain", "Applies several special effects, one after the other");
    GObjectClass& object = *G_OBJECT_CLASS(klass);
    object.set_property = SetProperty;
    object.get_property = GetProperty;
    g_object_class_install_property(
        &object, kEffect,
        g_param_spec_string(
            "effect", "Effect",
            "Effects with settings, such as sepia+rain:drop-size=9 or preset:noir; none: frames pass "
            "unchanged. Other settings for the same effects do not start them anew",
            nullptr,
            static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS |
                                     GST_PARAM_MUTABLE_PLAYING)));
}

}  // namespace

bool RegisterChainElement(GstPlugin* plugin) {
    GTypeInfo type{};
    type.class_size = sizeof(FilterClass);
    type.class_init = InitializeClass;
    type.instance_size = sizeof(Filter);
    return gst_element_register(plugin, "sfxchain", GST_RANK_NONE,
                                g_type_register_static(FilterType(), "GstSfxChain", &type,
                                                       static_cast<GTypeFlags>(0))) != FALSE;
}

}  // namespace sfxgst
