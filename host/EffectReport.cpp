#include "EffectReport.h"

#include <cstring>

#include "EffectChain.h"
#include "Frame.h"

namespace host {
namespace {

constexpr int kProbeWidth = 64;
constexpr int kProbeHeight = 48;

bool Processes(CSpecialEffectFilter& effect, int32_t format) {
    StreamDescription stream{0, kProbeWidth, kProbeHeight, format};
    if (effect.Configure(&stream) != kSuccess) return false;
    Frame frame(kProbeWidth, kProbeHeight, format);
    ImageRecord image = frame.Record();
    FrameRecord record{{0, 0, 0}, &image};
    const bool processed = effect.ProcessFrame(&record) == kSuccess;
    effect.Shutdown();
    return processed;
}

}  // namespace

std::vector<std::string> ProcessedFormats(const Module& module, const EffectName& name) {
    const EffectHandle effect = module.Create(name.Guid());
    std::vector<std::string> formats;
    if (!effect) return formats;
    if (Processes(*effect, kFormatPlanar)) formats.emplace_back("planar");
    if (Processes(*effect, kFormatPacked)) formats.emplace_back("packed");
    return formats;
}

std::vector<PropertyReport> ReportProperties(const Module& module, const EffectName& name) {
    const EffectHandle effect = CreateEffect(module, name);
    Configure(*effect, name, module, 640, 480, kFormatPlanar);
    std::vector<PropertyReport> reports;
    for (PropertyInfo& property : PropertiesOf(*effect)) {
        std::string running = GetProperty(*effect, property.name);
        reports.push_back({std::move(property), std::move(running)});
    }
    return reports;
}

std::vector<size_t> PlacesInListing(const std::vector<EffectGuid>& listing, const EffectGuid& guid) {
    std::vector<size_t> places;
    for (size_t i = 0; i < listing.size(); ++i) {
        if (std::memcmp(&listing[i], &guid, sizeof guid) == 0) places.push_back(i);
    }
    return places;
}

std::string TypeName(PropTypeSet type) {
    switch (type) {
        case PropTypeSet::Integer:
            return "integer";
        case PropTypeSet::Boolean:
            return "boolean";
        case PropTypeSet::Color:
            return "color";
        case PropTypeSet::None:
            break;
    }
    return "unknown";
}

}  // namespace host
