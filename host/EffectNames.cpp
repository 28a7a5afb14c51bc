#include "EffectNames.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstring>
#include <numeric>

#include <fmt/format.h>

#include "Errors.h"

namespace host {
namespace {

// The effects that the module creates, in the order of its own table. A class with variants has its
// constructor's argument in the short name.
constexpr std::array<EffectName, 63> kEffects = {{
    {1, "{ABC27FCB-B469-428E-9A2F-C2117AD7148E}", "graphic-pen-1", "Graphic Pen", 1},
    {2, "{FB5FBC24-8123-4E32-BBA1-3E77B228A727}", "graphic-pen-2", "Graphic Pen", 2},
    {3, "{333FBC24-1123-4E32-BBA1-3E77B228A727}", "graphic-pen-3", "Graphic Pen", 3},
    {4, "{1FA2E948-426B-4BDE-A400-2EB1FEBF9522}", "graphic-pen-4", "Graphic Pen", 4},
    {5, "{1DC06F46-0253-4EF8-96AF-E69B0B535984}", "chrome-1", "Chrome", 1},
    {6, "{43206F46-1253-4EF8-22AF-E69B0B535984}", "chrome-2", "Chrome", 2},
    {7, "{0405DEA1-A404-4CC8-A70B-5C273A2A8172}", "plaster", "Plaster", {}},
    {8, "{3A849CCB-B961-40FF-ABB7-4385365DF0FC}", "sketch-1", "Sketch", 1},
    {9, "{4DD74959-BE0F-44B1-92B6-043DC61D9F39}", "sketch-2", "Sketch", 2},
    {10, "{E4CA9AFE-50ED-496A-9DC6-214A38B3AEA9}", "sketch-3", "Sketch", 3},
    {11, "{A2BACBE0-498C-4681-BBEC-F39BB439CED1}", "line-art-1", "Line Art", 1},
    {12, "{6772F07B-DE51-4FA9-A7C7-DE6430F437BF}", "line-art-2", "Line Art", 2},
    {13, "{A50A308E-0D60-46E5-A336-409E22F395DD}", "tiled-up", "Tiled Up", {}},
    {14, "{E13ED2C0-8ABF-424D-95DD-AB390B236072}", "neonize", "Neonize", {}},
    {15, "{DD6B365B-A6CD-4473-80D8-20F7A662B981}", "chalk-1", "Chalk", 1},
    {16, "{C043B0F7-A2E1-40F3-AAC7-2019FB2571C3}", "chalk-2", "Chalk", 2},
    {17, "{C1A1DEF8-8962-45EF-B416-4C51F4DED591}", "chalk-3", "Chalk", 3},
    {18, "{C116304B-F245-4111-855E-5EA4873787FB}", "liquefy-1", "Liquefy", 1},
    {19, "{09BBE22C-BF85-445E-8DF0-F90E72B6B8C0}", "liquefy-2", "Liquefy", 2},
    {20, "{D77E9CF7-CE38-4ABF-A4BA-525140515CEC}", "liquefy-3", "Liquefy", 3},
    {21, "{930E1289-65C0-403E-880A-1902FDCFEA90}", "fire", "Fire", {}},
    {22, "{D0329FE9-2E4F-46ED-BA05-70DB47014CD9}", "cotton-candy", "Cotton Candy", {}},
    {23, "{27E3D176-FB78-4F57-A94F-37EB05CA30F8}", "rain", "Rain", {}},
    {24, "{6179FB24-F31A-44C7-B0AB-8DF5F96F4315}", "four-square", "Four Square", {}},
    {25, "{31C0857C-39B7-47C5-A30D-5E7EA39D66A6}", "twirl-1", "Twirl", 1},
    {26, "{D4BD349A-13D3-45F2-8C4C-880E9D2E6280}", "twirl-2", "Twirl", 2},
    {27, "{41AAFA6F-B0F3-4759-A799-4E3DF9833D4A}", "moving-twirl", "Moving Twirl", {}},
    {28, "{7DB203B3-4EC6-497D-957F-5A938F6AAB76}", "clouds", "Clouds", {}},
    {29, "{83548554-BA11-4C26-9403-442DFA1C2BFE}", "antiquated-movie", "Antiquated Movie", {}},
    {30, "{F342D1F4-4E9C-475C-82CF-1CC347562DBC}", "hallway-vision-1", "Hallway Vision", 1},
    {31, "{2F8530C5-96DA-4BCD-9CCA-B536EAFB08BB}", "hallway-vision-2", "Hallway Vision", 2},
    {32, "{9E680B79-DC8E-4CA2-B3AE-731A26C57EAE}", "rain-drops", "Rain Drops", {}},
    {33, "{A5749CD7-26DF-440E-B377-4F9909EFE6C9}", "camera-flashes-1", "Camera Flashes", 1},
    {34, "{E729C2F2-476B-4B34-A0FC-8F62BAD8CEA0}", "camera-flashes-5", "Camera Flashes", 5},
    {35, "{727BCC5F-DF7B-4ECB-B895-22109E5F5770}", "camera-flashes-4", "Camera Flashes", 4},
    {36, "{B6C05462-D194-4022-B507-8FB2940739BB}", "camera-flashes-8", "Camera Flashes", 8},
    {37, "{33BB1C59-E80E-4B8B-A7AC-66D058A52A00}", "camera-flashes-3", "Camera Flashes", 3},
    {38, "{3BD16EB0-C94B-4D63-BEAE-D034AC9668EF}", "camera-flashes-7", "Camera Flashes", 7},
    {39, "{8BB64F99-EB1E-4D12-9E21-2B68399AFF36}", "camera-flashes-2", "Camera Flashes", 2},
    {40, "{3FB097AA-932B-4B55-83B6-6E969CBE8FB3}", "camera-flashes-6", "Camera Flashes", 6},
    {41, "{9C2835D8-1BE3-4E49-840A-CBBDA6FFAD0F}", "camera-flashes-9", "Camera Flashes", 9},
    {42, "{922AC4BE-F417-4CB9-98D7-6226C2E41589}", "camera-flashes-10", "Camera Flashes", 10},
    {43, "{7107911C-9343-414E-B78A-301C3E8154FC}", "camera-flashes-11", "Camera Flashes", 11},
    {44, "{1CCF41D6-1DB0-4210-A520-257AB271948C}", "camera-flashes-12", "Camera Flashes", 12},
    {45, "{A8DC69D3-3428-4F12-B672-BB58C95BDE25}", "motion-blur-0", "Motion Blur - Ghost", 0},
    {46, "{6C250CDD-8B28-4821-B047-B30878E3439F}", "motion-detector", "Motion Detector", {}},
    {47, "{8656338E-0410-4832-A7CA-325D902713D2}", "motion-blur-1", "Motion Blur - Ghost", 1},
    {48, "{7B4F7937-8D17-4216-B206-383740E65E17}", "colored-pencil", "Colored Pencil", {}},
    {49, "{80636C0C-87C0-4EDE-AC46-B9F78D3DBF9F}", "spot-light-0", "Spot Light", 0},
    {50, "{0255B3CB-9DF7-4B4D-ADBA-8730305B29EA}", "spot-light-1", "Spot Light", 1},
    {51, "{6A5E49C5-2ACA-4115-B778-74AA63AE43C1}", "spot-light-2", "Spot Light", 2},
    {52, "{692E6627-95B1-462D-B120-114CFBA72188}", "quark", "Quark", {}},
    {53, "{65F2B741-B4F0-4B6E-9C6B-3548B3039578}", "logo-animation", "Logo Animation", {}},
    {54, "{48D2B4EE-5668-418C-8CB2-E624F4CBCDBA}", "blockhead", "Blockhead", {}},
    {55, "{AAD9F53D-60B9-4EDA-92B7-3E0A568DE28A}", "fish-eye", "Fish Eye", {}},
    {56, "{84DF0F59-4E9F-49AA-8DA0-C46E23D07128}", "polarize", "Polarize", {}},
    {57, "{7EA36DF8-6AC3-40AD-A4F3-9B240E651079}", "comic-book", "Comic Book", {}},
    {58, "{4CD53514-D1F8-41FD-BE48-24EF98AD69D3}", "time-distortion", "Time Distortion", {}},
    {59, "{3FCD24E0-4787-4D3C-9483-2A689BD61654}", "x-ray", "X-Ray", {}},
    {60, "{E9CC3E96-DFE8-4B32-A477-13D8968339F2}", "picture-me", "Picture Me", {}},
    {61, "{DED4BDD4-E2A0-4542-808E-FC9DC4CBCEA6}", "bulge", "Bulge", {}},
    {62, "{CC006219-72F8-4E49-8E12-6E05B59269E9}", "gray-scale", "Gray Scale", {}},
    {63, "{3BF3AE40-0316-41B9-84C5-A8C671212CAC}", "sepia", "Sepia", {}},
}};

constexpr size_t kGuidLength = 38;  // with its braces

// Lower case, with blanks and underscores as hyphens: what people type for one and the same name.
std::string Normalized(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        c = c == ' ' || c == '_' ? '-' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return result;
}

// Levenshtein distance.
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

// How far `wanted` is from an effect: a piece of the name counts as near, most of all its beginning.
size_t Distance(const std::string& wanted, const EffectName& effect) {
    constexpr size_t kShortestPiece = 3;
    const std::string display = Normalized(effect.displayName);
    if (wanted.size() >= kShortestPiece) {
        const size_t place = std::min(effect.shortName.find(wanted), display.find(wanted));
        if (place == 0) return 1;
        if (place != std::string::npos) return 2;
    }
    return std::min(EditDistance(wanted, effect.shortName), EditDistance(wanted, display));
}

}  // namespace

std::span<const EffectName> AllEffects() {
    return kEffects;
}

std::optional<EffectGuid> ParseGuid(std::string_view text) {
    if (text.size() == kGuidLength && text.front() == '{' && text.back() == '}') {
        text = text.substr(1, kGuidLength - 2);
    }
    if (text.size() != kGuidLength - 2) return std::nullopt;
    for (const size_t hyphen : {8u, 13u, 18u, 23u}) {
        if (text[hyphen] != '-') return std::nullopt;
    }
    const auto hex = [&text](size_t start, size_t digits) -> std::optional<uint32_t> {
        uint32_t value = 0;
        const char* end = text.data() + start + digits;
        const auto [stop, error] = std::from_chars(text.data() + start, end, value, 16);
        if (error != std::errc() || stop != end) return std::nullopt;
        return value;
    };
    EffectGuid guid{};
    const auto data1 = hex(0, 8), data2 = hex(9, 4), data3 = hex(14, 4);
    if (!data1 || !data2 || !data3) return std::nullopt;
    guid.Data1 = *data1;
    guid.Data2 = static_cast<uint16_t>(*data2);
    guid.Data3 = static_cast<uint16_t>(*data3);
    constexpr std::array<size_t, 8> kBytes = {19, 21, 24, 26, 28, 30, 32, 34};
    for (size_t i = 0; i < kBytes.size(); ++i) {
        const auto byte = hex(kBytes[i], 2);
        if (!byte) return std::nullopt;
        guid.Data4[i] = static_cast<uint8_t>(*byte);
    }
    return guid;
}

std::string GuidText(const EffectGuid& guid) {
    const uint8_t* b = guid.Data4;
    return fmt::format("{{{:08X}-{:04X}-{:04X}-{:02X}{:02X}-{:02X}{:02X}{:02X}{:02X}{:02X}{:02X}}}",
                       guid.Data1, guid.Data2, guid.Data3, b[0], b[1], b[2], b[3], b[4], b[5], b[6], b[7]);
}

EffectGuid EffectName::Guid() const {
    return ParseGuid(guid).value();
}

const EffectName* FindEffect(const EffectGuid& guid) {
    const auto same = [&guid](const EffectName& effect) {
        const EffectGuid other = effect.Guid();
        return std::memcmp(&other, &guid, sizeof guid) == 0;
    };
    const auto found = std::find_if(kEffects.begin(), kEffects.end(), same);
    return found == kEffects.end() ? nullptr : &*found;
}

const EffectName* FindEffect(std::string_view text) {
    if (const auto guid = ParseGuid(text)) return FindEffect(*guid);
    const std::string wanted = Normalized(text);
    for (const EffectName& effect : kEffects) {
        if (wanted == effect.shortName) return &effect;
    }
    for (const EffectName& effect : kEffects) {
        if (wanted == Normalized(effect.displayName)) return &effect;
    }
    return nullptr;
}

std::vector<std::string_view> NearestNames(std::string_view text) {
    constexpr size_t kMost = 3;
    const std::string wanted = Normalized(text);
    const size_t limit = std::max<size_t>(2, wanted.size() / 2);

    struct Candidate {
        size_t distance;
        std::string_view name;
    };
    std::vector<Candidate> candidates;
    for (const EffectName& effect : kEffects) {
        const size_t distance = Distance(wanted, effect);
        if (distance <= limit) candidates.push_back({distance, effect.shortName});
    }
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.distance < b.distance; });
    std::vector<std::string_view> names;
    for (size_t i = 0; i < std::min(kMost, candidates.size()); ++i) names.push_back(candidates[i].name);
    return names;
}

const EffectName& RequireEffect(std::string_view text) {
    if (const EffectName* effect = FindEffect(text)) return *effect;
    const std::vector<std::string_view> names = NearestNames(text);
    if (names.empty()) {
        throw UsageError("there is no effect \"{}\"; \"specialeffects list --all\" shows them all", text);
    }
    throw UsageError("there is no effect \"{}\"; did you mean {}?", text, fmt::join(names, ", "));
}

}  // namespace host
