// `list`: the effects, in the module's order.
#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "Commands.h"
#include "EffectReport.h"
#include "ScratchDirectory.h"
#include "StandardOutput.h"

namespace host {
namespace {

// One line of the list. The module lists one effect that it cannot create: it has a GUID and nothing else.
struct Row {
    EffectGuid guid;
    const EffectName* name;
    std::vector<size_t> listedAt;
    std::vector<std::string> formats;
};

std::vector<Row> Rows(const Module& module, bool all) {
    const ScratchDirectory scratch;
    scratch.LeaveEmptyNoiseFile();
    const std::vector<EffectGuid> listing = module.Listing();
    std::vector<Row> rows;
    const auto add = [&](const EffectGuid& guid, const EffectName* name) {
        rows.push_back({guid, name, PlacesInListing(listing, guid), {}});
        if (name != nullptr) rows.back().formats = ProcessedFormats(module, *name);
    };
    if (all) {
        for (const EffectName& name : AllEffects()) add(name.Guid(), &name);
    } else {
        for (const EffectGuid& guid : listing) add(guid, FindEffect(guid));
    }
    return rows;
}

nlohmann::ordered_json Json(const Row& row) {
    nlohmann::ordered_json json;
    json["number"] = row.name != nullptr ? nlohmann::ordered_json(row.name->number) : nullptr;
    json["name"] = row.name != nullptr ? nlohmann::ordered_json(row.name->shortName) : nullptr;
    json["displayName"] = row.name != nullptr ? nlohmann::ordered_json(row.name->displayName) : nullptr;
    const bool variant = row.name != nullptr && row.name->variant.has_value();
    json["variant"] = variant ? nlohmann::ordered_json(*row.name->variant) : nullptr;
    json["guid"] = GuidText(row.guid);
    json["listed"] = !row.listedAt.empty();
    json["listedAt"] = row.listedAt;
    json["creatable"] = !row.formats.empty();
    json["formats"] = row.formats;
    return json;
}

void PrintRow(const Row& row) {
    constexpr auto kLine = "{:>3}  {:<18} {:<20} {:>7}  {:<38}  {:<6}  {}\n";
    const std::string formats =
        row.formats.empty() ? "cannot be created" : fmt::format("{}", fmt::join(row.formats, ", "));
    const char* listed = row.listedAt.empty() ? "no" : "yes";
    if (row.name == nullptr) {
        Print(kLine, "-", "-", "-", "-", GuidText(row.guid), listed, formats);
        return;
    }
    const std::string variant = row.name->variant ? std::to_string(*row.name->variant) : "-";
    Print(kLine, row.name->number, row.name->shortName, row.name->displayName, variant, GuidText(row.guid),
          listed, formats);
}

}  // namespace

void Run(const ListOptions& options) {
    const Module module(options.module);
    const std::vector<Row> rows = Rows(module, options.all);
    if (options.json) {
        nlohmann::ordered_json json = nlohmann::ordered_json::array();
        for (const Row& row : rows) json.push_back(Json(row));
        Print("{}\n", json.dump(2));
        return;
    }
    Print("{:>3}  {:<18} {:<20} {:>7}  {:<38}  {:<6}  {}\n", "no.", "name", "display name", "variant", "GUID",
          "listed", "formats");
    for (const Row& row : rows) PrintRow(row);
}

}  // namespace host
