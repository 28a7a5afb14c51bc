#include "FilterGraph.h"

#include <new>

#include "Errors.h"

extern "C" {
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/channel_layout.h>
#include <libavutil/pixdesc.h>
}

namespace host {
namespace {

struct FreeInOut {
    void operator()(AVFilterInOut* list) const { avfilter_inout_free(&list); }
};
using InOutPtr = std::unique_ptr<AVFilterInOut, FreeInOut>;

void Check(int result, const std::string& filters) {
    if (result == AVERROR(ENOMEM)) throw std::bad_alloc();
    if (result < 0) throw Failure("FFmpeg's filters \"{}\" fail: {}", filters, LibavText(result));
}

InOutPtr EndOfChain(const char* name, AVFilterContext* filter) {
    InOutPtr end(avfilter_inout_alloc());
    if (!end) throw std::bad_alloc();
    end->name = av_strdup(name);
    end->filter_ctx = filter;
    return end;
}

std::string SoundArguments(const AVFrame& first) {
    char layout[128] = {};
    av_channel_layout_describe(&first.ch_layout, layout, sizeof layout);
    return fmt::format("time_base=1/{0}:sample_rate={0}:sample_fmt={1}:channel_layout={2}", first.sample_rate,
                       first.format, layout);
}

std::string PictureArguments(const AVFrame& first, AVRational timeBase) {
    const AVRational aspect =
        first.sample_aspect_ratio.num > 0 ? first.sample_aspect_ratio : AVRational{1, 1};
    return fmt::format("video_size={}x{}:pix_fmt={}:time_base={}/{}:pixel_aspect={}/{}", first.width,
                       first.height, first.format, timeBase.num, timeBase.den, aspect.num, aspect.den);
}

}  // namespace

FilterGraph::FilterGraph(const std::string& filters, const AVFrame& first, AVRational timeBase)
    : graph_(avfilter_graph_alloc()) {
    if (!graph_) throw std::bad_alloc();
    const bool sound = first.nb_samples > 0;
    const std::string arguments = sound ? SoundArguments(first) : PictureArguments(first, timeBase);
    Check(avfilter_graph_create_filter(&source_, avfilter_get_by_name(sound ? "abuffer" : "buffer"), "in",
                                       arguments.c_str(), nullptr, graph_.get()),
          filters);
    Check(avfilter_graph_create_filter(&sink_, avfilter_get_by_name(sound ? "abuffersink" : "buffersink"),
                                       "out", nullptr, nullptr, graph_.get()),
          filters);
    // The ends of the chain as the parser sees them: what feeds it is called "in", what it feeds "out".
    AVFilterInOut* outputs = EndOfChain("in", source_).release();
    AVFilterInOut* inputs = EndOfChain("out", sink_).release();
    const int result = avfilter_graph_parse_ptr(graph_.get(), filters.c_str(), &inputs, &outputs, nullptr);
    const InOutPtr leftInputs(inputs), leftOutputs(outputs);
    Check(result, filters);
    Check(avfilter_graph_config(graph_.get(), nullptr), filters);
}

void FilterGraph::Send(const AVFrame* frame) {
    const int result =
        av_buffersrc_write_frame(source_, frame);  // a copy of the reference; null means the end
    if (result < 0) throw Failure("cannot convert a frame: {}", LibavText(result));
}

AVFramePtr FilterGraph::Receive() {
    AVFramePtr frame = NewAVFrame();
    const int result = av_buffersink_get_frame(sink_, frame.get());
    if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return nullptr;
    if (result < 0) throw Failure("cannot convert a frame: {}", LibavText(result));
    return frame;
}

AVRational FilterGraph::TimeBase() const {
    return av_buffersink_get_time_base(sink_);
}

void FilterGraph::SetFrameSize(int samples) {
    if (samples > 0) av_buffersink_set_frame_size(sink_, static_cast<unsigned>(samples));
}

bool HasFilter(const char* name) {
    return avfilter_get_by_name(name) != nullptr;
}

}  // namespace host
