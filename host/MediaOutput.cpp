#include "MediaOutput.h"

#include <algorithm>
#include <new>
#include <span>

#include "LeftOut.h"

namespace host {
namespace {

void CopyTags(const AVFormatContext& from, AVFormatContext& to) {
    const AVDictionaryEntry* entry = nullptr;
    while ((entry = av_dict_get(from.metadata, "", entry, AV_DICT_IGNORE_SUFFIX)) != nullptr) {
        if (IsTagOfWork(entry->key)) av_dict_set(&to.metadata, entry->key, entry->value, 0);
    }
}

// Chapters from `start` to `end`, in units of AV_TIME_BASE.
void CopyChapters(const AVFormatContext& from, int64_t start, int64_t end, AVFormatContext& to) {
    std::span chapters(from.chapters, from.nb_chapters);
    to.chapters = static_cast<AVChapter**>(av_calloc(chapters.size(), sizeof(AVChapter*)));
    if (to.chapters == nullptr) throw std::bad_alloc();
    for (const AVChapter* chapter : chapters) {
        const AVRational unit = av_get_time_base_q();
        const int64_t first = av_rescale_q(chapter->start, chapter->time_base, unit) - start;
        const int64_t last = av_rescale_q(chapter->end, chapter->time_base, unit) - start;
        if (last <= 0 || first >= end) continue;
        auto* copy = static_cast<AVChapter*>(av_mallocz(sizeof(AVChapter)));
        if (copy == nullptr) throw std::bad_alloc();
        copy->id = chapter->id;
        copy->time_base = unit;
        copy->start = std::max<int64_t>(first, 0);
        copy->end = std::min(last, end);
        av_dict_copy(&copy->metadata, chapter->metadata, 0);
        to.chapters[to.nb_chapters++] = copy;
    }
}

}  // namespace

MediaOutput::MediaOutput(const std::string& path, const StreamInfo& stream, const VideoInput& input,
                         const OutputOptions& options, const Notes& notes)
    : muxer_(path, *FindContainer(path), options.overwrite), video_(muxer_, stream, options) {
    const Container& container = muxer_.Kind();
    if (const AVFormatContext* source = input.Container()) {
        LeftOut left;
        for (const AVStream* each : std::span(source->streams, source->nb_streams)) {
            const bool unwanted =
                options.sound == Sound::None && each->codecpar->codec_type == AVMEDIA_TYPE_AUDIO;
            if (each->index == input.VideoIndex() || unwanted) continue;
            if (auto track = MakeTrack(*each, muxer_, options.sound)) {
                tracks_[each->index] = std::move(track);
            } else {
                left.Add(*each);
            }
        }
        if (container.tags) {
            CopyTags(*source, muxer_.Context());
        } else if (HasTagsOfWork(source->metadata)) {
            left.AddTags();
        }
        if (!container.chapters) {
            left.AddChapters(source->nb_chapters);
        } else if (source->nb_chapters > 0) {
            CopyChapters(*source, input.Origin(), options.end, muxer_.Context());
        }
        left.Tell(notes, container.extension);
    }
    muxer_.Start();
}

void MediaOutput::Write(Frame frame) {
    video_.Write(std::move(frame));
    ++count_;
}

void MediaOutput::WritePacket(PacketPtr packet) {
    const auto found = tracks_.find(packet->stream_index);
    if (found != tracks_.end()) found->second->Write(std::move(packet));
}

void MediaOutput::Finish(int64_t) {
    video_.Finish();
    for (const auto& [index, track] : tracks_) track->Finish();
    muxer_.Finish();
}

}  // namespace host
