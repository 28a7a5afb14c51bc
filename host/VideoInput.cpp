#include "VideoInput.h"

#include <sys/stat.h>

#include <algorithm>
#include <string_view>

#include "HandHeld.h"
#include "MediaInput.h"
#include "PictureInput.h"
#include "TestScene.h"
#include "WebpAnimation.h"

extern "C" {
#include <libavutil/avutil.h>
}

namespace host {
namespace {

constexpr std::string_view kScene = "test:";
constexpr std::string_view kStill = "still:";

}  // namespace

int64_t StreamInfo::TicksPerFrame() const {
    return std::max<int64_t>(av_rescale_q(1, av_inv_q(frameRate), timeBase), 1);
}

Size EvenSize(Size wanted, const Notes& notes) {
    const auto even = [](int side) { return std::max(side & ~1, 2); };
    const Size size{even(wanted.width), even(wanted.height)};
    if (size != wanted) {
        notes.Add("{}x{} becomes {}x{}: sides have to be even", wanted.width, wanted.height, size.width,
                  size.height);
    }
    return size;
}

Size FrameSize(const std::string& name, Size native, const InputOptions& options, const Notes& notes) {
    Size size = options.size.value_or(native);
    if (options.evenSides) size = EvenSize(size, notes);
    if (std::max(size.width, size.height) > kLargestSide) {
        throw Failure("{} is {}x{}; effects take sides up to {}; --size scales it", name, native.width,
                      native.height, kLargestSide);
    }
    return size;
}

bool IsDevice(const std::string& path) {
    struct stat status {};
    return path.starts_with("/dev/video") || (stat(path.c_str(), &status) == 0 && S_ISCHR(status.st_mode));
}

bool IsSequenceName(const std::string& path) {
    char name[1024];
    return av_get_frame_filename(name, sizeof name, path.c_str(), 1) == 0;
}

bool IsSequenceInput(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) != 0 && IsSequenceName(path);
}

std::string SequenceMember(const std::string& path, int64_t number) {
    char name[4096];
    if (av_get_frame_filename(name, sizeof name, path.c_str(), static_cast<int>(number)) != 0) {
        throw Failure("\"{}\" is not the name of a sequence", path);
    }
    return name;
}

std::optional<std::string> FileOfInput(const std::string& name) {
    if (name == kScene || name == "-") return std::nullopt;
    if (name.starts_with(kStill)) return name.substr(kStill.size());
    return name;
}

std::unique_ptr<VideoInput> OpenMedia(const std::string& name, const InputOptions& options,
                                      const Notes& notes) {
    if (IsWebpAnimation(name)) return std::make_unique<WebpAnimation>(name, options, notes);
    return std::make_unique<MediaInput>(name, options, notes);
}

std::unique_ptr<VideoInput> OpenInput(const std::string& name, const InputOptions& options,
                                      const Notes& notes) {
    const auto needsVideo = [&] {
        if (options.start > 0) throw UsageError("--start does not go with {}; it has no beginning", name);
    };
    if (name == kScene) {
        needsVideo();
        return std::make_unique<TestScene>(options, notes);
    }
    if (name.starts_with(kStill)) {
        needsVideo();
        return std::make_unique<HandHeld>(name.substr(kStill.size()), options, notes);
    }
    auto media = OpenMedia(name, options, notes);
    if (media->Stream().kind == InputKind::Picture) return std::make_unique<PictureInput>(*media, options);
    return media;
}

}  // namespace host
