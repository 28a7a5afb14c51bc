// FFmpeg's objects with owners, and its errors as text.
#ifndef SPECIALEFFECTS_HOST_LIBAV_H
#define SPECIALEFFECTS_HOST_LIBAV_H

#include <memory>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavfilter/avfilter.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

namespace host {

/// For the functions that take the address of the pointer and clear it.
template <auto Free>
struct FreeByAddress {
    template <class T>
    void operator()(T* object) const {
        Free(&object);
    }
};

/// For those that take the pointer.
template <auto Free>
struct FreeByValue {
    template <class T>
    void operator()(T* object) const {
        Free(object);
    }
};

using PacketPtr = std::unique_ptr<AVPacket, FreeByAddress<av_packet_free>>;
using AVFramePtr = std::unique_ptr<AVFrame, FreeByAddress<av_frame_free>>;
using CodecContextPtr = std::unique_ptr<AVCodecContext, FreeByAddress<avcodec_free_context>>;
using InputContextPtr = std::unique_ptr<AVFormatContext, FreeByAddress<avformat_close_input>>;
using OutputContextPtr = std::unique_ptr<AVFormatContext, FreeByValue<avformat_free_context>>;
using FilterGraphPtr = std::unique_ptr<AVFilterGraph, FreeByAddress<avfilter_graph_free>>;
using ScalerPtr = std::unique_ptr<SwsContext, FreeByValue<sws_freeContext>>;

PacketPtr NewPacket();
AVFramePtr NewAVFrame();
/// With planes of its own.
AVFramePtr NewAVFrame(int width, int height, AVPixelFormat format);

/// A context for a decoder or an encoder of this kind.
CodecContextPtr NewCodecContext(const AVCodec* codec);

/// Options for the functions that take them by name.
class Dictionary {
  public:
    Dictionary() = default;
    Dictionary(const Dictionary&) = delete;
    Dictionary& operator=(const Dictionary&) = delete;
    ~Dictionary() { av_dict_free(&options_); }

    void Set(const char* key, const std::string& value) { av_dict_set(&options_, key, value.c_str(), 0); }
    AVDictionary** Address() { return &options_; }

  private:
    AVDictionary* options_ = nullptr;
};

/// "No space left on device" and its like, for a negative result of the libraries.
std::string LibavText(int result);

/// Keeps the libraries' own messages off standard error, and makes them know devices.
void SetUpLibav();

/// A path as the libraries take it: a colon in a file's name begins no protocol then.
std::string FileUrl(const std::string& path);

}  // namespace host

#endif
