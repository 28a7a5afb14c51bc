#include "host/small/Y4mStream.h"

#include <cstdlib>
#include <sstream>
#include <stdexcept>

namespace {

OpenFile Open(const std::string& path, const char* mode) {
    OpenFile file(std::fopen(path.c_str(), mode));
    if (file == nullptr) throw std::runtime_error(path + ": cannot be opened");
    return file;
}

/// A line without its end; false at the end of the file, and for a line that is far too long.
bool ReadLine(std::FILE* file, std::string& line) {
    constexpr size_t kLongest = 4096;
    line.clear();
    for (int c = std::fgetc(file); c != '\n'; c = std::fgetc(file)) {
        if (c == EOF || line.size() == kLongest) return false;
        line.push_back(static_cast<char>(c));
    }
    return true;
}

}  // namespace

Y4mReader::Y4mReader(const std::string& path) : path_(path), file_(Open(path, "rb")) {
    constexpr int kLargestSide = 16384;
    if (!ReadLine(file_.get(), header_) || !header_.starts_with("YUV4MPEG2 ")) {
        throw std::runtime_error(path + ": not a .y4m stream");
    }
    std::istringstream words(header_);
    std::string word;
    for (words >> word; words >> word;) {
        const char* const value = word.c_str() + 1;
        if (word[0] == 'W') width_ = static_cast<int>(std::strtol(value, nullptr, 10));
        if (word[0] == 'H') height_ = static_cast<int>(std::strtol(value, nullptr, 10));
        if (word[0] == 'F') {
            char* rest = nullptr;
            rate_ = std::strtol(value, &rest, 10);
            base_ = *rest == ':' ? std::strtol(rest + 1, nullptr, 10) : 1;
        }
        if (word[0] == 'C' && word != "C420" && word != "C420jpeg" && word != "C420mpeg2" &&
            word != "C420paldv") {
            throw std::runtime_error(path + ": only 8-bit 4:2:0 is read, not " + value);
        }
    }
    if (width_ < 1 || width_ > kLargestSide || height_ < 1 || height_ > kLargestSide) {
        throw std::runtime_error(path + ": the size is refused");
    }
    if (rate_ < 1 || base_ < 1) rate_ = 30, base_ = 1;
}

int64_t Y4mReader::Nanoseconds(int64_t frame) const {
    return static_cast<int64_t>(static_cast<double>(frame) * 1e9 * static_cast<double>(base_) /
                                static_cast<double>(rate_));
}

bool Y4mReader::Read(std::vector<uint8_t>& pixels) {
    std::string line;
    if (!ReadLine(file_.get(), line)) return false;
    if (!line.starts_with("FRAME") ||
        std::fread(pixels.data(), 1, pixels.size(), file_.get()) != pixels.size()) {
        throw std::runtime_error(path_ + ": a frame is broken");
    }
    return true;
}

Y4mWriter::Y4mWriter(const std::string& path, const std::string& header)
    : path_(path), file_(Open(path, "wb")) {
    std::fprintf(file_.get(), "%s\n", header.c_str());
}

void Y4mWriter::Write(const std::vector<uint8_t>& pixels) {
    std::fputs("FRAME\n", file_.get());
    std::fwrite(pixels.data(), 1, pixels.size(), file_.get());
}

void Y4mWriter::Close() {
    const bool written = std::ferror(file_.get()) == 0;
    if (std::fclose(file_.release()) != 0 || !written)
        throw std::runtime_error(path_ + ": cannot be written");
}
