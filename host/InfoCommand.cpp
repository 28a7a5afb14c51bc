// `info`: one effect with its properties.
#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "Commands.h"
#include "EffectChain.h"
#include "EffectReport.h"
#include "ScratchDirectory.h"
#include "StandardOutput.h"

namespace host {
namespace {

struct Report {
    const EffectName* name;
    std::string displayName;
    std::vector<size_t> listedAt;
    std::vector<std::string> formats;
    std::vector<PropertyReport> properties;
};

Report MakeReport(const Module& module, const EffectName& name) {
    const ScratchDirectory scratch;
    scratch.LeaveEmptyNoiseFile();
    Report report;
    report.name = &name;
    report.displayName = NameOf(*CreateEffect(module, name));
    report.listedAt = PlacesInListing(module.Listing(), name.Guid());
    report.formats = ProcessedFormats(module, name);
    report.properties = ReportProperties(module, name);
    return report;
}

nlohmann::ordered_json Json(const Report& report) {
    nlohmann::ordered_json json;
    json["number"] = report.name->number;
    json["name"] = report.name->shortName;
    json["displayName"] = report.displayName;
    json["variant"] = report.name->variant ? nlohmann::ordered_json(*report.name->variant) : nullptr;
    json["guid"] = report.name->guid;
    json["listed"] = !report.listedAt.empty();
    json["listedAt"] = report.listedAt;
    json["formats"] = report.formats;
    json["properties"] = nlohmann::ordered_json::array();
    for (const PropertyReport& property : report.properties) {
        nlohmann::ordered_json row;
        row["name"] = property.info.name;
        row["type"] = TypeName(property.info.type);
        row["default"] = property.info.defaultText;
        row["range"] = property.info.range;
        row["running"] = property.running;
        json["properties"].push_back(std::move(row));
    }
    return json;
}

void PrintWords(const Report& report) {
    Print("{} ({})\n", report.displayName, report.name->shortName);
    Print("  GUID     {}\n", report.name->guid);
    if (report.name->variant) Print("  variant  {}\n", *report.name->variant);
    Print("  number   {}, {}\n", report.name->number,
          report.listedAt.empty() ? "not listed"
                                  : fmt::format("listed at {}", fmt::join(report.listedAt, ", ")));
    Print("  formats  {}\n", fmt::join(report.formats, ", "));
    if (report.properties.empty()) {
        Print("  no properties\n");
        return;
    }
    constexpr auto kLine = "  {:<18} {:<8} {:<12} {:<8} {}\n";
    Print("\n");
    Print(kLine, "property", "type", "default", "range", "runs with");
    for (const PropertyReport& property : report.properties) {
        Print(kLine, property.info.name, TypeName(property.info.type), property.info.defaultText,
              property.info.range.empty() ? "-" : property.info.range, property.running);
    }
}

}  // namespace

void Run(const InfoOptions& options) {
    const EffectName& name = RequireEffect(options.effect);
    const Module module(options.module);
    const Report report = MakeReport(module, name);
    if (options.json) {
        Print("{}\n", Json(report).dump(2));
    } else {
        PrintWords(report);
    }
}

}  // namespace host
