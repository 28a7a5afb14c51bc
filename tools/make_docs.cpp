// Writes a page for each effect and an index of them, from the list of effects, docs/texts.json, the pictures
// of the demo and the times of the benchmark:
//
//   make_docs SOURCE DATA DEMO TIMES.csv DOCS
//
// SOURCE is the source tree, DATA the folder of the effects' data files, DEMO the folder that `make demo`
// wrote, TIMES.csv the output of `bench_effects --csv`, and DOCS the output folder. Needs ImageMagick to
// scale the pictures.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "framework/Catalogue.h"
#include "framework/Surroundings.h"

namespace {

using nlohmann::json;
namespace fs = std::filesystem;

void Run(const std::string& command) {
    if (std::system(command.c_str()) != 0) throw std::runtime_error("failed: " + command);
}

struct Time {
    std::string milliseconds, ratio;
};

/// Times by the effect's number, from rows such as "61 Bulge,1280x720,0.245,...".
std::map<int, Time> ReadTimes(const std::string& path) {
    std::map<int, Time> times;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        std::vector<std::string> cells;
        std::istringstream in(line);
        for (std::string cell; std::getline(in, cell, ',');) cells.push_back(cell);
        if (cells.size() < 5 || cells[1] != "1280x720") continue;
        times[std::stoi(cells[0])] = {fmt::format("{:.2f}", std::stod(cells[2])),
                                      fmt::format("{:.1f}", std::stod(cells[4]))};
    }
    return times;
}

std::string PageName(const std::string& displayName) {
    std::string name;
    for (const char c : displayName) {
        if (std::isalnum(static_cast<unsigned char>(c)) != 0) {
            name += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        } else if (!name.empty() && name.back() != '-') {
            name += '-';
        }
    }
    return name;
}

struct DestroyEffect {
    void operator()(CSpecialEffectFilter* effect) const { effect->DeletingDestructor(1); }
};
using Effect = std::unique_ptr<CSpecialEffectFilter, DestroyEffect>;

/// Reads data files from one folder and writes none.
class ReadOnly final : public ProcessSurroundings {
  public:
    explicit ReadOnly(fs::path data) : data_(std::move(data)) {}
    std::string DataFile(const std::string& name) override { return (data_ / name).string(); }
    std::string NewDataFile(const std::string&) override { return {}; }

  private:
    fs::path data_;
};

constexpr uint32_t kCapacity = 256;  // enough for every text of the contract

ResultCode Configure(const Effect& effect, int32_t format) {
    StreamDescription stream{0, 640, 480, format};
    return effect->Configure(&stream);
}

std::string NameOf(const CatalogueRow& row) {
    char name[kCapacity] = "";
    Effect(row.create())->GetInternalInfo()->GetName(name, kCapacity);
    return name;
}

/// "planar", or "planar, packed" for an effect that processes packed frames too.
std::string FormatsOf(const CatalogueRow& row) {
    const Effect effect(row.create());
    Configure(effect, kFormatPacked);
    std::vector<uint8_t> pixels(size_t{640} * 480 * 3);
    const auto size = static_cast<uint32_t>(pixels.size());
    ImageRecord image{
        kFormatPacked, {pixels.data(), nullptr, nullptr}, 0, {static_cast<int32_t>(size), 0, 0}};
    FrameRecord frame{{}, &image};
    return effect->ProcessFrame(&frame) == kSuccess ? "planar, packed" : "planar";
}

/// The row's traits in words, separated by commas.
std::string TraitsOf(const CatalogueRow& row) {
    std::string text;
    const auto add = [&](bool holds, const std::string& words) {
        if (holds) text += (text.empty() ? "" : ", ") + words;
    };
    add((row.traits & kHasMemory) != 0, "remembers earlier frames");
    add((row.traits & kMoves) != 0, "moves by itself");
    add((row.traits & kUsesChance) != 0, "draws random numbers");
    add((row.traits & kUsesTime) != 0, "reads the clock");
    add(row.dataFile != nullptr, fmt::format("needs `{}`", row.dataFile != nullptr ? row.dataFile : ""));
    return text;
}

/// The table of properties, one row each.
void WriteProperties(std::ostream& out, const CatalogueRow& row) {
    const std::vector<PropertyWords> words = row.words();
    if (words.empty()) {
        out << "\nIt has no properties.\n";
        return;
    }
    const Effect effect(row.create());
    Configure(effect, kFormatPlanar);
    out << "\n| property | what it does | type | default text | range | runs after `Configure` "
           "|\n|---|---|---|---|---|---|\n";
    for (size_t i = 0; i < words.size(); ++i) {
        char name[kCapacity] = "", text[kCapacity] = "", range[kCapacity] = "", running[kCapacity] = "";
        const PropTypeSet type = effect->GetInternalInfo()->GetPropTypeInfo(
            static_cast<int32_t>(i), name, kCapacity, text, kCapacity, range, kCapacity);
        PropertyRecord record{0, name, running};
        effect->GetProperty(&record);
        std::string what = words[i].description;
        for (const ValueName& value : words[i].values) {
            what += fmt::format("<br>{} `{}`: {}", value.value, value.id, value.description);
        }
        const char* const typeName = type == PropTypeSet::Boolean ? "boolean"
                                     : type == PropTypeSet::Color ? "color"
                                                                  : "integer";
        out << fmt::format("| \"{}\" | {} | {} | {} | {} | {} |\n", name, what, typeName, text, range,
                           running);
    }
}

using Variants = std::vector<const CatalogueRow*>;

/// The row's place in the list, from 1.
int NumberOf(const CatalogueRow& row) {
    return static_cast<int>(&row - EffectCatalogue().data()) + 1;
}

void WritePage(const fs::path& docs, const std::string& displayName, const json& text,
               const Variants& variants, const std::map<int, Time>& times) {
    const std::string page = PageName(displayName);
    std::ofstream out(docs / "effects" / (page + ".md"));
    out << "# " << displayName << "\n\n"
        << text.value("about", std::string(variants.front()->description)) << "\n\n";
    out << "| before | after |\n|---|---|\n";
    out << fmt::format("| ![before](../images/before.jpg) | ![after](../images/{}.jpg) |\n\n", page);

    out << "| name | what it shows | a host can expect | GUID | listed | formats | 1280x720, one core "
           "|\n|---|---|---|---|---|---|---|\n";
    for (const CatalogueRow* row : variants) {
        const auto time = times.find(NumberOf(*row));
        const std::string cost =
            time == times.end()
                ? "not measured"
                : fmt::format("{} ms, {} x memcpy", time->second.milliseconds, time->second.ratio);
        out << fmt::format("| `{}` | {} | {} | `{}` | {} | {} | {} |\n", row->shortName, row->description,
                           TraitsOf(*row), row->guid, row->IsListed() ? "yes" : "no", FormatsOf(*row), cost);
    }
    WriteProperties(out, *variants.front());
    out << "\nKind: " << KindName(variants.front()->kind) << ".\n";
    if (text.contains("keeps")) out << "\nKeeps: " << text["keeps"].get<std::string>() << "\n";
    out << "\n[All effects](../README.md)\n";
}

/// The source file of each effect, by display name: the .cpp beside the header that states the name.
std::map<std::string, std::string> SourceFiles(const fs::path& source) {
    const std::string mark = "DisplayName = \"";
    std::map<std::string, std::string> files;
    for (const char* folder : {"effects", "facetrack"}) {
        for (const auto& entry : fs::recursive_directory_iterator(source / folder)) {
            if (entry.path().extension() != ".h") continue;
            std::ifstream header(entry.path());
            for (std::string line; std::getline(header, line);) {
                const size_t at = line.find(mark);
                if (at == std::string::npos) continue;
                const size_t begin = at + mark.size();
                const fs::path file = fs::path(entry.path()).replace_extension(".cpp");
                files[line.substr(begin, line.find('"', begin) - begin)] =
                    fs::relative(file, source).generic_string();
            }
        }
    }
    return files;
}

void Make(const fs::path& source, const fs::path& data, const fs::path& demo, const std::string& timesPath,
          const fs::path& docs) {
    const json texts = json::parse(std::ifstream(source / "docs" / "texts.json"));
    const auto times = ReadTimes(timesPath);
    const auto files = SourceFiles(source);
    ReadOnly surroundings(data);
    const SurroundingsScope scope(surroundings);
    std::map<std::string, Variants> classes;
    for (const CatalogueRow& row : EffectCatalogue()) classes[NameOf(row)].push_back(&row);
    fs::create_directories(docs / "effects");
    fs::create_directories(docs / "images");

    std::ofstream index(docs / "README.md");
    index << "# The effects\n\n![Every effect on one picture](images/contact-sheet.jpg)\n\n"
             "| effect | what it does | source |\n|---|---|---|\n";
    for (auto& [displayName, variants] : classes) {
        std::sort(variants.begin(), variants.end(),
                  [](const CatalogueRow* a, const CatalogueRow* b) { return a->variant < b->variant; });
        const json text = texts.value(displayName, json::object());
        WritePage(docs, displayName, text, variants, times);
        const std::string about = text.value("about", std::string(variants.front()->description));
        index << fmt::format(
            "| [{}](effects/{}.md) | {} | [{}](../{}) |\n", displayName, PageName(displayName),
            about.substr(0, about.find(". ") == std::string::npos ? about.size() : about.find(". ") + 1),
            fs::path(files.at(displayName)).filename().string(), files.at(displayName));
        const fs::path picture = demo / "pictures" / (std::string(variants.front()->shortName) + ".png");
        if (fs::exists(picture)) {
            Run(fmt::format("convert {} -resize 480x -quality 82 -strip {}", picture.string(),
                            (docs / "images" / (PageName(displayName) + ".jpg")).string()));
        }
    }
    index << "\nThe tables of [performance.md](performance.md) say how fast each is, and "
             "[comparison.md](comparison.md) what other collections offer. "
             "`make docs` generates these pages.\n";
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 6) {
        std::cerr << "usage: make_docs SOURCE DATA DEMO TIMES.csv DOCS\n";
        return 2;
    }
    try {
        Make(argv[1], argv[2], argv[3], argv[4], argv[5]);
    } catch (const std::exception& error) {
        std::cerr << "make_docs: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
