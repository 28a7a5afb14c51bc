#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <windows.h>

#include <algorithm>

#include "imaging/WidePath.h"

namespace {

constexpr int kCapacity = static_cast<int>(WidePath::kCapacity);

bool Names(const wchar_t* path) {
    return GetFileAttributesW(path) != INVALID_FILE_ATTRIBUTES;
}

bool IsAscii(const char* text) {
    while (*text > 0) ++text;
    return *text == 0;
}

}  // namespace

WidePath::WidePath(const char* path) : text_{} {
    if (path == nullptr) return;
    const bool utf8 = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, path, -1, text_, kCapacity) != 0;
    if (utf8 && (IsAscii(path) || Names(text_))) return;
    wchar_t local[kCapacity] = {};
    if (MultiByteToWideChar(CP_ACP, 0, path, -1, local, kCapacity) == 0) local[0] = 0;
    if (utf8 && !Names(local)) return;
    std::copy_n(local, kCapacity, text_);
}
