#include "sfx/EffectList.h"

#include <algorithm>
#include <array>
#include <deque>

#include "framework/Catalogue.h"
#include "framework/Mutex.h"
#include "sfx/Guard.h"
#include "sfx/NoSurroundings.h"
#include "sfx/Words.h"

namespace sfx {
namespace {

constexpr size_t kTextCapacity = 256;  // of the contract's texts
using Text = std::array<char, kTextCapacity>;

/// Colours are 0xRRGGBB here and "red,green,blue" in the module.
std::string ModuleText(sfx_type type, int32_t value) {
    switch (type) {
        case SFX_BOOLEAN:
            return value != 0 ? "TRUE" : "FALSE";
        case SFX_COLOR:
            return std::to_string(value >> 16 & 255) + "," + std::to_string(value >> 8 & 255) + "," +
                   std::to_string(value & 255);
        case SFX_INTEGER:
        case SFX_CHOICE:
            break;
    }
    return std::to_string(value);
}

int32_t FromModuleText(sfx_type type, std::string_view text) {
    bool clamped = false;
    switch (type) {
        case SFX_BOOLEAN:
            return ParseBoolean(text).value_or(false) ? 1 : 0;
        case SFX_COLOR:
            return ParseColor(text, clamped).value_or(0);
        case SFX_INTEGER:
        case SFX_CHOICE:
            break;
    }
    return ParseInteger(text).value_or(0);
}

sfx_type TypeOf(PropTypeSet type, bool hasChoices) {
    switch (type) {
        case PropTypeSet::Boolean:
            return SFX_BOOLEAN;
        case PropTypeSet::Color:
            return SFX_COLOR;
        case PropTypeSet::Integer:
        case PropTypeSet::None:
            break;
    }
    return hasChoices ? SFX_CHOICE : SFX_INTEGER;
}

uint32_t FlagsOf(const CatalogueRow& row) {
    const auto bit = [&](uint32_t trait, uint32_t flag) { return (row.traits & trait) != 0 ? flag : 0U; };
    uint32_t flags = bit(kHasMemory, SFX_HAS_MEMORY) | bit(kMoves, SFX_MOVES) |
                     bit(kUsesChance, SFX_USES_CHANCE) | bit(kUsesTime, SFX_USES_TIME);
    if (row.dataFile != nullptr) {
        flags |= SFX_NEEDS_DATA;
    }
    if (row.IsListed()) {
        flags |= SFX_LISTED;
    }
    return flags;
}

/// "Drop size" from "drop-size".
std::string SpokenName(std::string name) {
    std::replace(name.begin(), name.end(), '-', ' ');
    if (!name.empty() && name.front() >= 'a' && name.front() <= 'z') {
        name.front() = static_cast<char>(name.front() - 'a' + 'A');
    }
    return name;
}

/// The list, and the texts that it points to.
class List {
  public:
    List() {
        for (size_t i = 0; i < EffectCatalogue().size(); ++i) {
            entries_.push_back(MakeEffect(i));
        }
        isComplete_.resize(entries_.size());
    }

    /// Without properties, unless they have been asked for.
    const std::vector<EffectEntry>& Entries() const { return entries_; }

    /// What the properties start with is known only once an effect is configured, which for all effects
    /// together takes a tenth of a second.
    const EffectEntry& Complete(size_t index) {
        const std::lock_guard lock(completing_);
        if (!isComplete_[index]) {
            AddProperties(entries_[index]);
            isComplete_[index] = true;
        }
        return entries_[index];
    }

  private:
    const char* Keep(std::string text) { return texts_.emplace_back(std::move(text)).c_str(); }

    EffectEntry MakeEffect(size_t index) {
        const CatalogueRow& row = EffectCatalogue()[index];
        NoSurroundings none;
        const SurroundingsScope scope(none);
        EffectEntry entry{};

        entry.index = index;
        Text name{};
        entry.Create()->GetInternalInfo()->GetName(name.data(), kTextCapacity);
        entry.info.struct_size = sizeof(sfx_effect_info);
        entry.info.id = row.shortName;
        entry.info.guid = row.guid;
        entry.info.name = Keep(name.data());
        entry.info.title = entry.info.name;
        if (row.variant != CatalogueRow::kOnly) {
            entry.info.title = Keep(std::string(name.data()) + " " + std::to_string(row.variant));
        }
        entry.info.kind = KindName(row.kind);
        entry.info.description = row.description;
        entry.info.variant = row.variant;
        entry.info.flags = FlagsOf(row);
        entry.info.data_file = row.dataFile;
        return entry;
    }

    void AddProperties(EffectEntry& entry) {
        const std::vector<PropertyWords> words = EffectCatalogue()[entry.index].words();
        if (words.empty()) {
            return;
        }
        NoSurroundings none;
        const SurroundingsScope scope(none);
        const Filter filter = entry.Create();
        StreamDescription stream{0, 640, 480, kFormatPlanar};
        Require(filter->Configure(&stream), SFX_ERROR_FAILED, entry.info.id, kNotConfigured);
        std::vector<PropertyEntry> properties;
        for (size_t i = 0; i < words.size(); ++i) {
            properties.push_back(MakeProperty(words[i], static_cast<int32_t>(i), *filter));
        }
        std::vector<const sfx_property_info*>& pointers = pointers_.emplace_back();
        pointers.reserve(properties.size());
        // From here on nothing moves any more, and nothing fails.
        entry.properties = std::move(properties);
        for (PropertyEntry& property : entry.properties) {
            property.info.choice_count = property.choices.size();
            property.info.choices = property.choices.data();
            pointers.push_back(&property.info);
        }
        entry.info.property_count = pointers.size();
        entry.info.properties = pointers.data();
    }

    PropertyEntry MakeProperty(const PropertyWords& words, int32_t index, CSpecialEffectFilter& filter) {
        Text name{}, defaultText{}, range{};
        const PropTypeSet type =
            filter.GetInternalInfo()->GetPropTypeInfo(index, name.data(), kTextCapacity, defaultText.data(),
                                                      kTextCapacity, range.data(), kTextCapacity);
        PropertyEntry property{};
        property.moduleName = words.name;
        for (const ValueName& value : words.values) {
            property.choices.push_back({value.value, value.id, value.description});
        }
        property.info.struct_size = sizeof(sfx_property_info);
        property.info.id = Keep(DashedName(words.name));
        property.info.name = Keep(SpokenName(property.info.id));
        property.info.description = words.description;
        property.info.type = TypeOf(type, !property.choices.empty());
        property.info.maximum = property.info.type == SFX_BOOLEAN ? 1 : 0xFFFFFF;
        if (type == PropTypeSet::Integer) {
            const std::vector<std::string_view> bounds = Split(range.data(), ',');
            property.info.minimum = ParseInteger(bounds.front()).value_or(0);
            property.info.maximum = ParseInteger(bounds.back()).value_or(0);
        }
        property.info.start = property.Get(filter);
        property.info.minimum = std::min(property.info.minimum, property.info.start);
        property.info.maximum = std::max(property.info.maximum, property.info.start);
        return property;
    }

    std::vector<EffectEntry> entries_;
    Mutex completing_;  // guards all below
    std::vector<bool> isComplete_;
    std::deque<std::string> texts_;
    std::deque<std::vector<const sfx_property_info*>> pointers_;
};

/// Never destroyed, so that what it has given out stays valid.
List& TheList() {
    static List& list = *std::make_unique<List>().release();
    return list;
}

std::string WithBraces(std::string_view guid) {
    std::string text(1, '{');
    text.append(guid.starts_with('{') ? guid.substr(1) : guid);
    return text.ends_with('}') ? text : text + '}';
}

}  // namespace

void Require(ResultCode code, sfx_status status, const char* effect, const char* what) {
    if (code == kOutOfMemory) {
        throw std::bad_alloc();
    }
    if (code != kSuccess) {
        throw Failure{Tell(status, "%s %s", effect, what)};
    }
}

int32_t PropertyEntry::Clamp(int32_t value) const {
    return std::clamp(value, info.minimum, info.maximum);
}

int32_t PropertyEntry::Parse(std::string_view text, bool& clamped) const {
    const std::string wanted = DashedLower(text);
    for (const sfx_choice& choice : choices) {
        if (wanted == choice.id) {
            return choice.value;
        }
    }
    std::optional<int32_t> value;
    const char* takes = "";
    switch (info.type) {
        case SFX_BOOLEAN:
            value = ParseBoolean(text);
            takes = "true or false";
            break;
        case SFX_COLOR:
            value = ParseColor(text, clamped);
            takes = "a colour as #rrggbb or red,green,blue";
            break;
        case SFX_INTEGER:
            value = ParseInteger(text);
            takes = "a whole number";
            break;
        case SFX_CHOICE:
            value = ParseInteger(text);
            takes = "the name or number of a choice";
            break;
    }
    if (!value) {
        std::vector<std::string_view> names;
        for (const sfx_choice& choice : choices) {
            names.emplace_back(choice.id);
        }
        throw Failure{Tell(info.type == SFX_CHOICE ? SFX_ERROR_UNKNOWN : SFX_ERROR_VALUE,
                           "%s takes %s, not \"%.*s\"%s", info.id, takes, QuotedSize(text), text.data(),
                           Suggestion(wanted, names).c_str())};
    }
    const int32_t within = Clamp(*value);
    clamped = clamped || within != *value;
    return within;
}

std::string PropertyEntry::Print(int32_t value) const {
    if (info.type == SFX_BOOLEAN) {
        return value != 0 ? "true" : "false";
    }
    if (info.type == SFX_COLOR) {
        return PrintColor(value);
    }
    for (const sfx_choice& choice : choices) {
        if (choice.value == value) {
            return choice.id;
        }
    }
    return std::to_string(value);
}

void PropertyEntry::Set(CSpecialEffectFilter& filter, int32_t value) const {
    std::string name = moduleName, text = ModuleText(info.type, value);
    PropertyRecord record{0, name.data(), text.data()};
    filter.SetProperty(&record);
}

int32_t PropertyEntry::Get(CSpecialEffectFilter& filter) const {
    std::string name = moduleName;
    Text text{};
    PropertyRecord record{0, name.data(), text.data()};
    filter.GetProperty(&record);
    return FromModuleText(info.type, text.data());
}

Filter EffectEntry::Create() const {
    Filter filter(EffectCatalogue()[index].create());
    if (filter == nullptr) {
        throw std::bad_alloc();
    }
    return filter;
}

size_t EffectEntry::FindProperty(std::string_view name) const {
    const std::string wanted = DashedLower(name);
    const auto same = [&](const PropertyEntry& property) {
        return wanted == property.info.id || SameText(Trimmed(name), property.moduleName);
    };
    return static_cast<size_t>(std::find_if(properties.begin(), properties.end(), same) - properties.begin());
}

size_t EffectEntry::RequireProperty(std::string_view name) const {
    const size_t found = FindProperty(name);
    if (found < properties.size()) {
        return found;
    }
    if (properties.empty()) {
        throw Failure{Tell(SFX_ERROR_UNKNOWN, "%s has no property \"%.*s\"; it has none", info.id,
                           QuotedSize(name), name.data())};
    }
    std::string all;
    for (const PropertyEntry& property : properties) {
        all += all.empty() ? "" : ", ";
        all += property.info.id;
    }
    throw Failure{Tell(SFX_ERROR_UNKNOWN, "%s has no property \"%.*s\"; it has %s", info.id, QuotedSize(name),
                       name.data(), all.c_str())};
}

size_t EffectCount() {
    return TheList().Entries().size();
}

const EffectEntry& EffectAt(size_t index) {
    return TheList().Complete(index);
}

const EffectEntry* FindEffect(std::string_view text) {
    const std::string wanted = DashedLower(text);
    const std::vector<EffectEntry>& all = TheList().Entries();
    const auto find = [&](auto matches) -> const EffectEntry* {
        const auto found = std::find_if(all.begin(), all.end(), matches);
        return found != all.end() ? &EffectAt(found->index) : nullptr;
    };
    if (const EffectEntry* const effect = find([&](const EffectEntry& entry) {
            return wanted == entry.info.id || wanted == DashedLower(entry.info.title) ||
                   SameText(WithBraces(wanted), entry.info.guid);
        })) {
        return effect;
    }
    if (const EffectEntry* const effect =
            find([&](const EffectEntry& entry) { return wanted == DashedLower(entry.info.name); })) {
        return effect;
    }
    std::vector<std::string_view> names;
    names.reserve(all.size());
    for (const EffectEntry& entry : all) {
        names.emplace_back(entry.info.id);
    }
    Tell(SFX_ERROR_UNKNOWN, "there is no effect \"%.80s\"%s", wanted.c_str(),
         Suggestion(wanted, names).c_str());
    return nullptr;
}

}  // namespace sfx
