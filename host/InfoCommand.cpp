// `info`: one effect with its properties.
#include <fmt/format.h>

#include "Commands.h"
#include "EffectChain.h"
#include "EffectReport.h"
#include "Json.h"
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

Json JsonOf(const PropertyReport& property) {
    return Json::Object{{"name", property.info.name},
                        {"type", TypeName(property.info.type)},
                        {"default", property.info.defaultText},
                        {"range", property.info.range},
                        {"running", property.running}};
}

Json JsonOf(const Report& report) {
    Json::Array properties;
    for (const PropertyReport& property : report.properties) properties.push_back(JsonOf(property));
    return Json::Object{{"number", report.name->number},     {"name", report.name->shortName},
                        {"displayName", report.displayName}, {"variant", report.name->variant},
                        {"guid", report.name->guid},         {"listed", !report.listedAt.empty()},
                        {"listedAt", report.listedAt},       {"formats", report.formats},
                        {"properties", properties}};
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
        Print("{}\n", JsonOf(report).Text());
    } else {
        PrintWords(report);
    }
}

}  // namespace host
