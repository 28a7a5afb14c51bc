// Turns the XML of a trained, stump-based Haar cascade into the text file that the face detector reads.
//
//   convert_cascade [--from-bottom] [--notice FILE] CASCADE.xml haar.txt
//
// The detector turns rectangles over, and Picture Me shows it the picture upside down, so that y stays as the
// XML has it, counted from the window's top. --from-bottom counts it from the bottom instead, for a detector
// that is shown pictures upright. --notice writes the comment at the head of the XML, which holds its
// licence, to a file.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <pugixml.hpp>

namespace {

struct Rect {
    int x, y, width, height;
    float weight;
};

struct Stump {
    std::vector<Rect> rects;
    float threshold, below, above;
};

struct Stage {
    std::vector<Stump> stumps;
    float threshold;
};

template <class... Values>
void Read(const pugi::xml_node& node, const char* child, Values&... values) {
    std::istringstream text(node.child_value(child));
    if (!(text >> ... >> values)) {
        throw std::runtime_error(std::string("<") + child + "> does not hold the expected numbers");
    }
    if (text >> std::ws; !text.eof()) {
        throw std::runtime_error(
            std::string("<") + child +
            "> holds more numbers than expected: only cascades of stumps can be converted, not trees");
    }
}

std::vector<Rect> ReadFeature(const pugi::xml_node& feature) {
    if (std::strcmp(feature.child_value("tilted"), "1") == 0) {
        throw std::runtime_error("the cascade has tilted features, which the detector does not know");
    }
    std::vector<Rect> rects;
    for (const pugi::xml_node node : feature.child("rects").children("_")) {
        Rect rect{};
        std::istringstream text(node.child_value());
        if (!(text >> rect.x >> rect.y >> rect.width >> rect.height >> rect.weight)) {
            throw std::runtime_error("a rectangle does not hold five numbers");
        }
        rects.push_back(rect);
    }
    if (rects.empty()) throw std::runtime_error("a feature has no rectangles");
    return rects;
}

void Convert(const std::string& from, const std::string& to, const std::string& notice, bool fromBottom) {
    pugi::xml_document document;
    const auto parsed = document.load_file(from.c_str(), pugi::parse_default | pugi::parse_comments);
    if (!parsed) throw std::runtime_error(std::string("not readable as XML: ") + parsed.description());
    const pugi::xml_node cascade = document.child("opencv_storage").child("cascade");
    if (!cascade) throw std::runtime_error("no <cascade> in it");
    if (std::strcmp(cascade.child_value("featureType"), "HAAR") != 0) {
        throw std::runtime_error("its features are not of the type HAAR");
    }

    std::vector<std::vector<Rect>> features;
    for (const pugi::xml_node feature : cascade.child("features").children("_")) {
        features.push_back(ReadFeature(feature));
    }
    int width = 0, height = 0;
    Read(cascade, "width", width);
    Read(cascade, "height", height);
    std::vector<Stage> stages;
    size_t stumpCount = 0, rectCount = 0;
    for (const pugi::xml_node node : cascade.child("stages").children("_")) {
        Stage stage{};
        Read(node, "stageThreshold", stage.threshold);
        for (const pugi::xml_node weak : node.child("weakClassifiers").children("_")) {
            Stump stump{};
            int left = 0, right = 0;
            size_t feature = 0;
            Read(weak, "internalNodes", left, right, feature, stump.threshold);
            Read(weak, "leafValues", stump.below, stump.above);
            if (feature >= features.size()) {
                throw std::runtime_error("a stump names a feature that is not there");
            }
            stump.rects = features[feature];
            rectCount += stump.rects.size();
            ++stumpCount;
            stage.stumps.push_back(std::move(stump));
        }
        stages.push_back(std::move(stage));
    }
    if (stages.empty()) throw std::runtime_error("it has no stages");

    std::ofstream out(to);
    out << std::setprecision(9) << width << ' ' << height << ' ' << stages.size() << ' ' << stumpCount << ' '
        << rectCount << '\n';
    for (const Stage& stage : stages) {
        out << stage.stumps.size() << ' ' << stage.threshold << '\n';
        for (const Stump& stump : stage.stumps) {
            out << stump.rects.size() << '\n';
            for (const Rect& rect : stump.rects) {
                const int y = fromBottom ? height - rect.height - rect.y : rect.y;
                out << rect.x << ' ' << y << ' ' << rect.width << ' ' << rect.height << ' ' << rect.weight
                    << '\n';
            }
            out << stump.threshold << ' ' << stump.below << ' ' << stump.above << '\n';
        }
    }
    out.close();
    if (!out) throw std::runtime_error("cannot write " + to);

    if (notice.empty()) return;
    std::ofstream text(notice);
    for (const pugi::xml_node node : document.children()) {
        if (node.type() == pugi::node_comment) text << node.value() << '\n';
    }
    text.close();
    if (!text) throw std::runtime_error("cannot write " + notice);
}

}  // namespace

int main(int argc, char** argv) {
    bool fromBottom = false;
    std::string notice;
    std::vector<std::string> files;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--from-bottom") {
            fromBottom = true;
        } else if (argument == "--notice" && i + 1 < argc) {
            notice = argv[++i];
        } else {
            files.push_back(argument);
        }
    }
    if (files.size() != 2) {
        std::cerr << "usage: convert_cascade [--from-bottom] [--notice FILE] CASCADE.xml haar.txt\n";
        return 2;
    }
    try {
        Convert(files[0], files[1], notice, fromBottom);
    } catch (const std::exception& error) {
        std::cerr << files[0] << ": " << error.what() << '\n';
        return 1;
    }
    return 0;
}
