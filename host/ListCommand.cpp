// `list`: the effects, grouped by kind, and the presets.
#include <fmt/format.h>

#include <unistd.h>

#include <algorithm>
#include <string_view>
#include <vector>

#include "Commands.h"
#include "EffectWords.h"
#include "StandardOutput.h"
#include "Terminal.h"

namespace host {
namespace {

// Entries that only hosts of the module's own contract see: one effect a second time, and one that cannot be
// created.
struct ContractRow {
    const char* guid;
    const char* id;  // of the effect that it repeats, or null
};
constexpr ContractRow kContractRows[] = {
    {"{333FBC24-1123-4E32-BBA1-3E77B228A727}", "graphic-pen-3"},
    {"{8AAE654A-D222-4D8A-968F-937591B1B696}", nullptr},
};

std::vector<const sfx_effect_info*> Effects() {
    std::vector<const sfx_effect_info*> effects(sfx_effect_count());
    for (size_t i = 0; i < effects.size(); ++i) effects[i] = sfx_effect_at(i);
    return effects;
}

std::vector<const sfx_preset_info*> Presets() {
    std::vector<const sfx_preset_info*> presets(sfx_preset_count());
    for (size_t i = 0; i < presets.size(); ++i) presets[i] = sfx_preset_at(i);
    return presets;
}

void PrintHeading(std::string_view text) {
    if (HasStyles(STDOUT_FILENO)) {
        Print("\n\033[1m{}\033[0m\n", text);
    } else {
        Print("\n{}\n", text);
    }
}

void PrintRow(std::string_view id, std::string_view description) {
    Print("  {:<22} {}\n", id, description);
}

void PrintPresets(bool json) {
    Json::Array list;
    for (const sfx_preset_info* preset : Presets()) {
        if (json) {
            list.push_back(JsonOf(*preset));
        } else {
            PrintRow(std::string("preset:") + preset->id, preset->description);
        }
    }
    if (json) Print("{}\n", Json(list).Text());
}

void PrintWords(bool all) {
    const auto effects = Effects();
    std::vector<std::string_view> kinds;
    for (const sfx_effect_info* effect : effects) {
        if (std::find(kinds.begin(), kinds.end(), effect->kind) == kinds.end()) kinds.push_back(effect->kind);
    }
    Print("{} effects; \"specialeffects info EFFECT\" shows the properties of one\n", effects.size());
    for (const std::string_view kind : kinds) {
        PrintHeading(kind);
        for (const sfx_effect_info* effect : effects) {
            if (effect->kind == kind) PrintRow(effect->id, effect->description);
        }
    }
    if (sfx_preset_count() > 0) PrintHeading("presets");
    PrintPresets(false);
    if (!all) return;
    PrintHeading("listed for hosts of the module");
    for (const ContractRow& row : kContractRows) {
        Print("  {}  {}\n", row.guid,
              row.id != nullptr ? fmt::format("{} once more", row.id) : "cannot be created");
    }
}

void PrintJson(bool all) {
    Json::Array list;
    for (const sfx_effect_info* effect : Effects()) list.push_back(JsonOf(*effect));
    for (const ContractRow& row : kContractRows) {
        if (!all) break;
        list.push_back(Json::Object{{"id", row.id != nullptr ? Json(row.id) : Json(nullptr)},
                                    {"guid", row.guid},
                                    {"repeated", row.id != nullptr},
                                    {"creatable", row.id != nullptr}});
    }
    Print("{}\n", Json(list).Text());
}

}  // namespace

void Run(const HelpOptions& options) {
    Print("{}", options.text);
}

void Run(const ListOptions& options) {
    if (options.presets) {
        PrintPresets(options.json);
    } else if (options.json) {
        PrintJson(options.all);
    } else {
        PrintWords(options.all);
    }
}

}  // namespace host
