// `list`: the effects, in the module's order.
#include <fmt/format.h>

#include "Commands.h"
#include "EffectReport.h"
#include "Json.h"
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

Json JsonOf(const Row& row) {
    const bool named = row.name != nullptr;
    return Json::Object{{"number", named ? Json(row.name->number) : nullptr},
                        {"name", named ? Json(row.name->shortName) : nullptr},
                        {"displayName", named ? Json(row.name->displayName) : nullptr},
                        {"variant", named ? Json(row.name->variant) : nullptr},
                        {"guid", GuidText(row.guid)},
                        {"listed", !row.listedAt.empty()},
                        {"listedAt", row.listedAt},
                        {"creatable", !row.formats.empty()},
                        {"formats", row.formats}};
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
        Json::Array list;
        for (const Row& row : rows) list.push_back(JsonOf(row));
        Print("{}\n", Json(list).Text());
        return;
    }
    Print("{:>3}  {:<18} {:<20} {:>7}  {:<38}  {:<6}  {}\n", "no.", "name", "display name", "variant", "GUID",
          "listed", "formats");
    for (const Row& row : rows) PrintRow(row);
}

}  // namespace host
