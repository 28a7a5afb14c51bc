// Writes the page of every effect, and their index, from what the module says of itself, what docs/texts.json
// says of it, the pictures of the demo and the times of the benchmark:
//
//   make_docs PROGRAM TEXTS.json DEMO TIMES.csv DOCS
//
// PROGRAM is the host program; DEMO the folder that the demo wrote; TIMES.csv what
// `bench_effects --csv` printed; DOCS the folder that is written. Pictures are scaled with
// ImageMagick.
#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;
namespace fs = std::filesystem;

std::string Output(const std::string& command) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    if (!pipe) throw std::runtime_error("cannot run " + command);
    std::string text;
    std::array<char, 4096> part{};
    while (const size_t got = std::fread(part.data(), 1, part.size(), pipe.get())) {
        text.append(part.data(), got);
    }
    return text;
}

void Run(const std::string& command) {
    if (std::system(command.c_str()) != 0) throw std::runtime_error("failed: " + command);
}

struct Time {
    std::string milliseconds, ratio;
};

/// Rows such as "61 Bulge,1280x720,0.245,...", as the times of effects by number.
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

void WritePage(const fs::path& docs, const std::string& displayName, const json& text,
               const std::vector<json>& variants, const std::map<int, Time>& times) {
    const std::string page = PageName(displayName);
    std::ofstream out(docs / "effects" / (page + ".md"));
    out << "# " << displayName << "\n\n" << text.at("about").get<std::string>() << "\n\n";
    out << "| before | after |\n|---|---|\n";
    out << fmt::format("| ![before](../images/before.jpg) | ![after](../images/{}.jpg) |\n\n", page);

    out << "| variant | name | GUID | listed | formats | 1280x720, one core |\n|---|---|---|---|---|---|\n";
    for (const json& variant : variants) {
        const std::string number =
            variant["variant"].is_null() ? "" : std::to_string(variant["variant"].get<int>());
        std::string what;
        if (text.contains("variants") && text["variants"].contains(number)) what = text["variants"][number];
        const auto time = times.find(variant["number"].get<int>());
        const std::string cost =
            time == times.end()
                ? "not measured"
                : fmt::format("{} ms, {} x memcpy", time->second.milliseconds, time->second.ratio);
        std::string formats;
        for (const json& format : variant["formats"]) {
            formats += (formats.empty() ? "" : ", ") + format.get<std::string>();
        }
        out << fmt::format("| {}{} | `{}` | `{}` | {} | {} | {} |\n", number, what.empty() ? "" : ": " + what,
                           variant["name"].get<std::string>(), variant["guid"].get<std::string>(),
                           variant["listed"].get<bool>() ? "yes" : "no", formats, cost);
    }

    const json& properties = variants.front()["properties"];
    if (properties.empty()) {
        out << "\nIt has no properties.\n";
    } else {
        out << "\n| property | type | default text | range | runs after `Configure` "
               "|\n|---|---|---|---|---|\n";
        for (const json& property : properties) {
            out << fmt::format("| \"{}\" | {} | {} | {} | {} |\n", property["name"].get<std::string>(),
                               property["type"].get<std::string>(), property["default"].get<std::string>(),
                               property["range"].get<std::string>(), property["running"].get<std::string>());
        }
    }
    out << "\nKeeps: " << text.at("keeps").get<std::string>() << "\n\n[All effects](../README.md)\n";
}

void Make(const std::string& program, const std::string& textsPath, const fs::path& demo,
          const std::string& timesPath, const fs::path& docs) {
    const json texts = json::parse(std::ifstream(textsPath));
    const auto times = ReadTimes(timesPath);
    std::map<std::string, std::vector<json>> classes;
    for (const json& effect : json::parse(Output(program + " list --all --json"))) {
        const auto name = effect["name"].get<std::string>();
        classes[effect["displayName"].get<std::string>()].push_back(
            json::parse(Output(fmt::format("{} info {} --json", program, name))));
    }
    fs::create_directories(docs / "effects");
    fs::create_directories(docs / "images");

    std::ofstream index(docs / "README.md");
    index << "# The effects\n\n![Every effect on one picture](images/contact-sheet.jpg)\n\n"
             "| effect | what it does |\n|---|---|\n";
    for (auto& [displayName, variants] : classes) {
        std::sort(variants.begin(), variants.end(),
                  [](const json& a, const json& b) { return a["variant"] < b["variant"]; });
        const json& text = texts.at(displayName);
        WritePage(docs, displayName, text, variants, times);
        const std::string about = text.at("about").get<std::string>();
        index << fmt::format(
            "| [{}](effects/{}.md) | {} |\n", displayName, PageName(displayName),
            about.substr(0, about.find(". ") == std::string::npos ? about.size() : about.find(". ") + 1));
        Run(fmt::format("convert {} -resize 480x -quality 82 -strip {}",
                        (demo / "pictures" / (variants.front()["name"].get<std::string>() + ".png")).string(),
                        (docs / "images" / (PageName(displayName) + ".jpg")).string()));
    }
    index << "\nThe tables of [performance.md](performance.md) say how fast each is. These pages are made by "
             "`make docs`.\n";
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 6) {
        std::cerr << "usage: make_docs PROGRAM TEXTS.json DEMO TIMES.csv DOCS\n";
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
