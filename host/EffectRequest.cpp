#include "EffectRequest.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <limits>
#include <optional>

#include "Errors.h"

namespace host {
namespace {

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view kBlank = " \t";
    const size_t first = text.find_first_not_of(kBlank);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

bool SameText(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

std::vector<std::string_view> SplitAtCommas(std::string_view text) {
    std::vector<std::string_view> pieces;
    for (size_t start = 0; start <= text.size();) {
        const size_t comma = std::min(text.find(',', start), text.size());
        pieces.push_back(text.substr(start, comma - start));
        start = comma + 1;
    }
    return pieces;
}

// A decimal number; one that is too large for 32 bits becomes the largest of its sign.
std::optional<int32_t> ParseInteger(std::string_view text) {
    text = Trimmed(text);
    const bool negative = text.starts_with('-');
    if (text.starts_with('+')) text.remove_prefix(1);
    int32_t value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (stop != end || error == std::errc::invalid_argument) return std::nullopt;
    if (error == std::errc::result_out_of_range) {
        return negative ? std::numeric_limits<int32_t>::min() : std::numeric_limits<int32_t>::max();
    }
    return value;
}

std::string RangeWords(const std::string& range) {
    const size_t comma = range.find(',');
    if (comma == std::string::npos) return {};
    return fmt::format(" from {} to {}", range.substr(0, comma), range.substr(comma + 1));
}

std::string CanonicalValue(const PropertyInfo& property, std::string_view value) {
    switch (property.type) {
        case PropTypeSet::Integer:
            if (const auto number = ParseInteger(value)) return fmt::format("{}", *number);
            throw UsageError("{} takes a whole number{}, not \"{}\"", property.name,
                             RangeWords(property.range), value);
        case PropTypeSet::Boolean:
            if (SameText(value, "TRUE")) return "TRUE";
            if (SameText(value, "FALSE")) return "FALSE";
            throw UsageError("{} takes TRUE or FALSE, not \"{}\"", property.name, value);
        case PropTypeSet::Color: {
            std::vector<int32_t> parts;
            for (const std::string_view piece : SplitAtCommas(value)) {
                if (const auto number = ParseInteger(piece)) parts.push_back(*number);
            }
            if (parts.size() == 3 && std::count(value.begin(), value.end(), ',') == 2) {
                return fmt::format("{},{},{}", parts[0], parts[1], parts[2]);
            }
            throw UsageError("{} takes a colour as RED,GREEN,BLUE, each from 0 to 255, not \"{}\"",
                             property.name, value);
        }
        case PropTypeSet::None:
            break;
    }
    return std::string(value);
}

const PropertyInfo& RequireProperty(std::string_view name, std::span<const PropertyInfo> table,
                                    std::string_view effect) {
    const auto found = std::find_if(table.begin(), table.end(), [name](const PropertyInfo& property) {
        return SameText(property.name, name);
    });
    if (found != table.end()) return *found;
    if (table.empty()) throw UsageError("{} has no property \"{}\"; it has none at all", effect, name);
    std::vector<std::string_view> names;
    for (const PropertyInfo& property : table) names.push_back(property.name);
    throw UsageError("{} has no property \"{}\"; it has: {}", effect, name, fmt::join(names, ", "));
}

}  // namespace

EffectText SplitEffectText(std::string_view text) {
    const size_t colon = text.find(':');
    if (colon == std::string_view::npos) return {text, {}};
    return {text.substr(0, colon), text.substr(colon + 1)};
}

std::vector<Assignment> ParseAssignments(std::string_view text, std::span<const PropertyInfo> table,
                                         std::string_view effect) {
    struct Item {
        const PropertyInfo* property;
        std::string value;
    };
    std::vector<Item> items;
    if (text.empty()) return {};
    for (const std::string_view piece : SplitAtCommas(text)) {
        const size_t equals = piece.find('=');
        if (equals != std::string_view::npos) {
            const std::string_view name = Trimmed(piece.substr(0, equals));
            items.push_back({&RequireProperty(name, table, effect), std::string(piece.substr(equals + 1))});
        } else if (!items.empty()) {
            items.back().value.append(",").append(piece);
        } else {
            throw UsageError("\"{}\" sets nothing; properties of {} are set as NAME=VALUE", piece, effect);
        }
    }
    std::vector<Assignment> assignments;
    assignments.reserve(items.size());
    for (const Item& item : items) {
        assignments.push_back({item.property->name, CanonicalValue(*item.property, Trimmed(item.value))});
    }
    return assignments;
}

}  // namespace host
