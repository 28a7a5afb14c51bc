#include "Containers.h"

#include <algorithm>
#include <array>

#include "OutputFile.h"

namespace host {
namespace {

constexpr const char* kCommonVideo[] = {"libx264", "mpeg4"};
constexpr const char* kWebmVideo[] = {"libvpx-vp9", "libvpx"};
constexpr const char* kAviVideo[] = {"mpeg4"};
constexpr const char* kTransportVideo[] = {"libx264", "mpeg2video"};
constexpr const char* kGifVideo[] = {"gif"};
constexpr const char* kApngVideo[] = {"apng"};
constexpr const char* kWebpVideo[] = {"libwebp_anim"};

constexpr const char* kCommonSound[] = {"aac"};
constexpr const char* kWebmSound[] = {"libopus", "libvorbis"};
constexpr const char* kAviSound[] = {"libmp3lame", "ac3"};

constexpr int kHighestGifRate = 50;  // viewers show shorter delays than 1/50 s as much longer ones

constexpr Container kContainers[] = {
    {".mp4", "mp4", kCommonVideo, kCommonSound, AV_CODEC_ID_MOV_TEXT, true, true},
    {".m4v", "mp4", kCommonVideo, kCommonSound, AV_CODEC_ID_MOV_TEXT, true, true},
    {".mov", "mov", kCommonVideo, kCommonSound, AV_CODEC_ID_MOV_TEXT, true, true},
    {".mkv", "matroska", kCommonVideo, kCommonSound, AV_CODEC_ID_SUBRIP, true, true},
    {".webm", "webm", kWebmVideo, kWebmSound, AV_CODEC_ID_WEBVTT, true, true},
    {".avi", "avi", kAviVideo, kAviSound, AV_CODEC_ID_NONE, false, true, true},
    {".ts", "mpegts", kTransportVideo, kCommonSound},
    {".gif", "gif", kGifVideo, {}, AV_CODEC_ID_NONE, false, false, false, kHighestGifRate, true},
    {".apng", "apng", kApngVideo, {}, AV_CODEC_ID_NONE, false, false, false, 0, true},
    {".webp", "webp", kWebpVideo, {}, AV_CODEC_ID_NONE, false, false, false, 0, true},
};

// The transport stream's muxer does not say what it takes.
constexpr std::array kTransportCodecs = {
    AV_CODEC_ID_H264, AV_CODEC_ID_HEVC, AV_CODEC_ID_MPEG2VIDEO,   AV_CODEC_ID_MPEG1VIDEO, AV_CODEC_ID_MPEG4,
    AV_CODEC_ID_AAC,  AV_CODEC_ID_MP2,  AV_CODEC_ID_MP3,          AV_CODEC_ID_AC3,        AV_CODEC_ID_EAC3,
    AV_CODEC_ID_OPUS, AV_CODEC_ID_DTS,  AV_CODEC_ID_DVB_SUBTITLE,
};

}  // namespace

const Container* FindContainer(const std::string& path) {
    const std::string extension = ExtensionOf(path);
    const auto* found = std::find_if(std::begin(kContainers), std::end(kContainers),
                                     [&extension](const Container& c) { return extension == c.extension; });
    return found == std::end(kContainers) ? nullptr : found;
}

bool TakesCodec(const Container& container, AVCodecID codec) {
    if (std::string_view(container.muxer) == "mpegts") {
        return std::find(kTransportCodecs.begin(), kTransportCodecs.end(), codec) != kTransportCodecs.end();
    }
    const AVOutputFormat* muxer = av_guess_format(container.muxer, nullptr, nullptr);
    return muxer != nullptr && avformat_query_codec(muxer, codec, FF_COMPLIANCE_NORMAL) == 1;
}

}  // namespace host
