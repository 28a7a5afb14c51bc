// What sfx_message() returns: one text for each thread.
#ifndef SPECIALEFFECTS_SFX_MESSAGE_H
#define SPECIALEFFECTS_SFX_MESSAGE_H

#include <algorithm>
#include <string_view>

#include "sfx/sfx.h"

namespace sfx {

/// How many bytes of a text a message quotes, for "%.*s".
inline int QuotedSize(std::string_view text) {
    constexpr size_t kLongest = 80;
    return static_cast<int>(std::min(text.size(), kLongest));
}

/// Writes the message of this thread as printf does, and returns the status. Bytes that are not UTF-8 are
/// replaced:
///
///     return Tell(SFX_ERROR_ARGUMENT, "there is no link %zu", link);
#if defined(__MINGW32__)
__attribute__((format(gnu_printf, 2, 3)))
#elif defined(__GNUC__)
__attribute__((format(printf, 2, 3)))
#endif
sfx_status
Tell(sfx_status status, const char* format, ...);

const char* Message();

}  // namespace sfx

#endif
