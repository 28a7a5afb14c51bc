// Opens what FFmpeg's libraries read: files, URLs, sequences of pictures, standard input.
#ifndef SPECIALEFFECTS_HOST_MEDIASOURCE_H
#define SPECIALEFFECTS_HOST_MEDIASOURCE_H

#include <functional>
#include <string>

#include "Libav.h"
#include "VideoInput.h"

namespace host {

/// An open container, and what feeds it.
class MediaSource {
  public:
    /// `name` is a file, a URL, a sequence, a camera or "-". `cancelled` is asked, on the thread that reads,
    /// whether a wait should end. Throws Failure, and UsageError when standard input is a terminal.
    MediaSource(const std::string& name, const InputOptions& options, std::function<bool()> cancelled);
    MediaSource(const MediaSource&) = delete;
    MediaSource& operator=(const MediaSource&) = delete;

    AVFormatContext& Context() const { return *context_; }

    /// What to call it in messages.
    const std::string& Name() const { return name_; }
    InputKind Kind() const { return kind_; }
    bool IsFile() const { return isFile_; }

  private:
    struct FreeIo {
        void operator()(AVIOContext* io) const {
            av_freep(&io->buffer);
            avio_context_free(&io);
        }
    };

    void Open(const std::string& url, const AVInputFormat* format, Dictionary& settings);
    AVFormatContext* NewContext();
    static int ShouldStop(void* self);
    static int ReadStandardInput(void* self, uint8_t* buffer, int size);

    std::string name_;
    InputKind kind_ = InputKind::Recording;
    bool isFile_ = false;
    std::function<bool()> cancelled_;
    std::unique_ptr<AVIOContext, FreeIo> standardInput_;
    InputContextPtr context_;
};

}  // namespace host

#endif
