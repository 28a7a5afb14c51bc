#include "sfx/Words.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <limits>
#include <numeric>

namespace sfx {
namespace {

bool IsUpper(char c) {
    return c >= 'A' && c <= 'Z';
}
bool IsLower(char c) {
    return c >= 'a' && c <= 'z';
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
char Lower(char c) {
    return IsUpper(c) ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Levenshtein distance.
size_t EditDistance(std::string_view a, std::string_view b) {
    std::vector<size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 0; i < a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i + 1;
        for (size_t j = 0; j < b.size(); ++j) {
            const size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

/// A piece of a name counts as near, most of all its beginning.
size_t Distance(std::string_view typed, std::string_view name) {
    constexpr size_t kShortestPiece = 3;
    if (typed.size() >= kShortestPiece) {
        const size_t place = name.find(typed);
        if (place != std::string_view::npos) {
            return place == 0 ? 1 : 2;
        }
    }
    return EditDistance(typed, name);
}

}  // namespace

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view kBlank = " \t\r\n";
    const size_t first = text.find_first_not_of(kBlank);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

bool SameText(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return Lower(x) == Lower(y); });
}

std::string DashedLower(std::string_view text) {
    std::string result(Trimmed(text));
    for (char& c : result) {
        c = c == ' ' || c == '_' ? '-' : Lower(c);
    }
    return result;
}

std::string DashedName(std::string_view name) {
    std::string result;
    for (size_t i = 0; i < name.size(); ++i) {
        const bool begins = i > 0 && IsUpper(name[i]) && (IsLower(name[i - 1]) || IsDigit(name[i - 1]));
        if (begins) {
            result += '-';
        }
        result += name[i] == ' ' || name[i] == '_' ? '-' : Lower(name[i]);
    }
    return result;
}

size_t CharacterLength(std::string_view text) {
    const auto byte = [&](size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
    const unsigned lead = byte(0);
    if (lead < 0x80) {
        return text.empty() ? 0 : 1;
    }
    const size_t length = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
    // These bounds exclude overlong forms, surrogates and numbers above U+10FFFF (RFC 3629, section 4).
    const unsigned least = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned most = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    if (length == 0 || byte(1) < least || byte(1) > most) {
        return 0;
    }
    for (size_t i = 2; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) {
            return 0;
        }
    }
    return length;
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const size_t length = text.front() != '\0' ? CharacterLength(text) : 0;
        if (length == 0) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    for (size_t start = 0; start <= text.size();) {
        const size_t end = std::min(text.find(separator, start), text.size());
        pieces.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return pieces;
}

std::optional<int32_t> ParseInteger(std::string_view text) {
    text = Trimmed(text);
    const bool negative = text.starts_with('-');
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) {
            return std::nullopt;
        }
    }
    int32_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (stop != end || error == std::errc::invalid_argument) {
        return std::nullopt;
    }
    if (error == std::errc::result_out_of_range) {
        return negative ? std::numeric_limits<int32_t>::min() : std::numeric_limits<int32_t>::max();
    }
    return value;
}

std::optional<bool> ParseBoolean(std::string_view text) {
    text = Trimmed(text);
    for (const std::string_view word : {"true", "yes", "on", "1"}) {
        if (SameText(text, word)) {
            return true;
        }
    }
    for (const std::string_view word : {"false", "no", "off", "0"}) {
        if (SameText(text, word)) {
            return false;
        }
    }
    return std::nullopt;
}

std::optional<int32_t> ParseColor(std::string_view text, bool& clamped) {
    text = Trimmed(text);
    constexpr size_t kHexLength = 7;
    if (text.starts_with('#')) {
        int32_t color = 0;
        const char* const end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data() + 1, end, color, 16);
        const bool whole = text.size() == kHexLength && text[1] != '-' && stop == end && error == std::errc();
        return whole ? std::optional(color) : std::nullopt;
    }
    const std::vector<std::string_view> channels = Split(text, ',');
    if (channels.size() != 3) {
        return std::nullopt;
    }
    int32_t color = 0;
    for (const std::string_view channel : channels) {
        const std::optional<int32_t> number = ParseInteger(channel);
        if (!number) {
            return std::nullopt;
        }
        const int32_t level = std::clamp(*number, 0, 255);
        clamped = clamped || level != *number;
        color = color << 8 | level;
    }
    return color;
}

std::string PrintColor(int32_t color) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "#%06x", static_cast<unsigned>(color) & 0xFFFFFFU);
    return text.data();
}

std::vector<std::string_view> NearestNames(std::string_view typed, std::span<const std::string_view> names) {
    constexpr size_t kMost = 3, kLongest = 64;
    if (typed.size() > kLongest) {
        return {};
    }
    const std::string wanted = DashedLower(typed);
    const size_t limit = std::max<size_t>(2, wanted.size() / 2);
    struct Candidate {
        size_t distance;
        std::string_view name;
    };
    std::vector<Candidate> candidates;
    for (const std::string_view name : names) {
        const size_t distance = Distance(wanted, DashedLower(name));
        if (distance <= limit) {
            candidates.push_back({distance, name});
        }
    }
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.distance < b.distance; });
    std::vector<std::string_view> nearest;
    for (size_t i = 0; i < std::min(kMost, candidates.size()); ++i) {
        nearest.push_back(candidates[i].name);
    }
    return nearest;
}

std::string Suggestion(std::string_view typed, std::span<const std::string_view> names) {
    const std::vector<std::string_view> nearest = NearestNames(typed, names);
    std::string text;
    for (size_t i = 0; i < nearest.size(); ++i) {
        text += i == 0 ? "; did you mean " : i + 1 < nearest.size() ? ", " : " or ";
        text += nearest[i];
    }
    return text.empty() ? text : text + "?";
}

}  // namespace sfx
