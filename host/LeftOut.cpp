#include "LeftOut.h"

#include <algorithm>
#include <cctype>
#include <span>
#include <string>
#include <vector>

#include <fmt/format.h>

namespace host {
namespace {

// Tags that a muxer writes about its own file, and the camera's rotation, which has been applied.
constexpr std::string_view kTagsOfFiles[] = {
    "encoder", "major_brand", "minor_version",    "compatible_brands", "duration",     "creation_time",
    "bps",     "rotate",      "number_of_frames", "number_of_bytes",   "handler_name", "vendor_id",
};

std::string Counted(unsigned count, std::string_view one, std::string_view many) {
    return fmt::format("{} {}", count, count == 1 ? one : many);
}

}  // namespace

LeftOut LeftOut::Everything(const VideoInput& input) {
    LeftOut left;
    const AVFormatContext* container = input.Container();
    if (container == nullptr) return left;
    for (const AVStream* stream : std::span(container->streams, container->nb_streams)) {
        if (stream->index != input.VideoIndex()) left.Add(*stream);
    }
    left.AddChapters(container->nb_chapters);
    if (HasTagsOfWork(container->metadata)) left.AddTags();
    return left;
}

void LeftOut::Add(const AVStream& stream) {
    switch (stream.codecpar->codec_type) {
        case AVMEDIA_TYPE_AUDIO:
            ++sound_;
            break;
        case AVMEDIA_TYPE_SUBTITLE:
            ++subtitles_;
            break;
        default:
            ++others_;
            break;
    }
}

void LeftOut::Tell(const Notes& notes, std::string_view output) const {
    std::vector<std::string> parts;
    if (sound_ > 0) parts.push_back(Counted(sound_, "track of sound", "tracks of sound"));
    if (subtitles_ > 0) parts.push_back(Counted(subtitles_, "track of subtitles", "tracks of subtitles"));
    if (others_ > 0) parts.push_back(Counted(others_, "other stream", "other streams"));
    if (chapters_ > 0) parts.push_back(Counted(chapters_, "chapter", "chapters"));
    if (tags_) parts.emplace_back("tags");
    if (!parts.empty()) notes.Add("left out, {} does not take it: {}", output, fmt::join(parts, ", "));
}

bool IsTagOfWork(std::string_view key) {
    std::string lower(key);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return !lower.starts_with('_') && lower.find("-eng") == std::string::npos &&
           std::find(std::begin(kTagsOfFiles), std::end(kTagsOfFiles), lower) == std::end(kTagsOfFiles);
}

bool HasTagsOfWork(const AVDictionary* tags) {
    const AVDictionaryEntry* entry = nullptr;
    while ((entry = av_dict_get(tags, "", entry, AV_DICT_IGNORE_SUFFIX)) != nullptr) {
        if (IsTagOfWork(entry->key)) return true;
    }
    return false;
}

}  // namespace host
