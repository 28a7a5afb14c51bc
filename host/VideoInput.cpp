#include "VideoInput.h"

#include <sys/stat.h>

#include <algorithm>
#include <string_view>

#include "HandHeld.h"
#include "MediaInput.h"
#include "PictureIo.h"
#include "TestScene.h"

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

bool IsDevice(const std::string& path) {
    struct stat status {};
    return path.starts_with("/dev/video") || (stat(path.c_str(), &status) == 0 && S_ISCHR(status.st_mode));
}

std::unique_ptr<VideoInput> OpenInput(const std::string& name, const InputOptions& options,
                                      const Notes& notes) {
    if (name == kScene) return std::make_unique<TestScene>(options, notes);
    if (name.starts_with(kStill)) {
        return std::make_unique<HandHeld>(name.substr(kStill.size()), options, notes);
    }
    auto media = std::make_unique<MediaInput>(name, options, notes);
    if (media->Stream().kind == InputKind::Picture) {
        return std::make_unique<PictureInput>(*media, options.format);
    }
    return media;
}

}  // namespace host
