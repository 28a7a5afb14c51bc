#include "MediaSource.h"

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <new>
#include <string_view>

#include "Camera.h"
#include "Interrupt.h"

namespace host {
namespace {

bool Exists(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0;
}

// "https://..." and its like, in a form that the libraries know a protocol for.
bool IsUrl(const std::string& name) {
    const size_t colon = name.find(':');
    if (colon == std::string::npos || colon == 0) return false;
    for (size_t i = 0; i < colon; ++i) {
        const auto c = static_cast<unsigned char>(name[i]);
        if (std::isalnum(c) == 0 && c != '+' && c != '-' && c != '.') return false;
    }
    // What has no such protocol is taken for a file's name.
    const char* protocol = avio_find_protocol_name(name.c_str());
    const std::string_view scheme(name.data(), colon);
    return name.compare(colon, 3, "://") == 0 ||
           (protocol != nullptr && (std::string_view(protocol) != "file" || scheme == "file"));
}

void CheckFile(const std::string& name) {
    struct stat status {};
    if (stat(name.c_str(), &status) != 0) throw Failure("cannot open {}: {}", name, SystemText(errno));
    if (S_ISDIR(status.st_mode)) throw Failure("{} is a directory, not a video or picture", name);
    if (S_ISREG(status.st_mode) && status.st_size == 0) throw Failure("{} is empty", name);
}

}  // namespace

MediaSource::MediaSource(const std::string& name, const InputOptions& options,
                         std::function<bool()> cancelled)
    : name_(name == "-" ? "standard input" : name), cancelled_(std::move(cancelled)) {
    Dictionary settings;
    if (name == "-") {
        if (isatty(STDIN_FILENO) != 0) {
            throw UsageError("standard input is a terminal; pipe a video into it, or name a file");
        }
        constexpr int kBufferBytes = 1 << 16;
        auto* buffer = static_cast<unsigned char*>(av_malloc(kBufferBytes));
        standardInput_.reset(
            avio_alloc_context(buffer, kBufferBytes, 0, this, ReadStandardInput, nullptr, nullptr));
        if (!standardInput_) throw std::bad_alloc();
        settings.Set("protocol_whitelist", "file,pipe");
        Open("", nullptr, settings);
    } else if (IsDevice(name)) {
        kind_ = InputKind::Live;
        AVFormatContext* context = NewContext();
        OpenCamera(&context, name, options);
        context_.reset(context);
    } else if (IsSequenceInput(name)) {
        isFile_ = true;
        settings.Set("pattern_type", "sequence");
        settings.Set("start_number_range", "1000");
        if (options.rate)
            settings.Set("framerate", fmt::format("{}/{}", options.rate->num, options.rate->den));
        Open(FileUrl(name), av_find_input_format("image2"), settings);
    } else if (!Exists(name) && IsUrl(name)) {
        Open(name, nullptr, settings);
    } else {
        CheckFile(name);
        isFile_ = true;
        settings.Set("protocol_whitelist", "file,pipe");  // a playlist reaches no network
        settings.Set("pattern_type", "none");             // a name with % or * is one file
        Open(FileUrl(name), nullptr, settings);
    }
}

int MediaSource::ShouldStop(void* self) {
    return Interrupted() || static_cast<const MediaSource*>(self)->cancelled_() ? 1 : 0;
}

AVFormatContext* MediaSource::NewContext() {
    AVFormatContext* context = avformat_alloc_context();
    if (context == nullptr) throw std::bad_alloc();
    context->interrupt_callback = {ShouldStop, this};
    return context;
}

void MediaSource::Open(const std::string& url, const AVInputFormat* format, Dictionary& settings) {
    AVFormatContext* context = NewContext();
    if (standardInput_) context->pb = standardInput_.get();
    // Frees the context when it fails.
    const int result = avformat_open_input(&context, url.c_str(), format, settings.Address());
    if (result < 0) {
        if (Interrupted()) throw Failure("interrupted while {} was opened", name_);
        if (result == AVERROR_INVALIDDATA || result == AVERROR_EOF || result == AVERROR(EINVAL)) {
            throw Failure("{} is not a video or picture that can be read, or is cut short", name_);
        }
        throw Failure("cannot open {}: {}", name_, LibavText(result));
    }
    context_.reset(context);
}

// A read that can be called off: the descriptor is looked at before it is read.
int MediaSource::ReadStandardInput(void* self, uint8_t* buffer, int size) {
    constexpr int kPatienceMilliseconds = 100;
    pollfd waiting{STDIN_FILENO, POLLIN, 0};
    for (;;) {
        if (ShouldStop(self) != 0) return AVERROR_EXIT;
        const int ready = poll(&waiting, 1, kPatienceMilliseconds);
        if (ready < 0 && errno != EINTR) return AVERROR(errno);
        if (ready <= 0) continue;
        const ssize_t count = read(STDIN_FILENO, buffer, static_cast<size_t>(size));
        if (count > 0) return static_cast<int>(count);
        if (count == 0) return AVERROR_EOF;
        if (errno != EINTR && errno != EAGAIN) return AVERROR(errno);
    }
}

}  // namespace host
