// The C functions about versions and results.
#include "sfx/Message.h"

namespace {

#define SFX_TEXT(x) #x
#define SFX_TEXT_OF(x) SFX_TEXT(x)
constexpr const char* kVersion =
    SFX_TEXT_OF(SFX_VERSION_MAJOR) "." SFX_TEXT_OF(SFX_VERSION_MINOR) "." SFX_TEXT_OF(SFX_VERSION_PATCH);

}  // namespace

int sfx_version() noexcept {
    return SFX_VERSION;
}
const char* sfx_version_text() noexcept {
    return kVersion;
}

const char* sfx_status_text(int32_t status) noexcept {
    switch (status) {
        case SFX_OK:
            return "done";
        case SFX_CLAMPED:
            return "a value was out of range";
        case SFX_DATA_MISSING:
            return "a data file is missing";
        case SFX_ERROR_ARGUMENT:
            return "invalid argument";
        case SFX_ERROR_UNKNOWN:
            return "unknown name";
        case SFX_ERROR_VALUE:
            return "invalid value";
        case SFX_ERROR_PICTURE:
            return "invalid picture";
        case SFX_ERROR_FILE:
            return "unusable file";
        case SFX_ERROR_MEMORY:
            return "out of memory";
        case SFX_ERROR_FAILED:
            return "the effect failed";
        default:
            return "unknown status";
    }
}

const char* sfx_message() noexcept {
    return sfx::Message();
}
