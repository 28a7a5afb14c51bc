#include "sfx/Message.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <string_view>

#include "sfx/Words.h"

namespace sfx {
namespace {

// A plain array: usable when memory has run out, and nothing to destroy when a thread ends.
thread_local constinit char message[1024] = "";

/// Puts "?" for control characters and for each byte that belongs to no whole character: messages quote what
/// callers pass, and quote only the beginning of what is long.
void Clean(char* text) {
    constexpr char kDelete = 0x7F;
    std::string_view rest(text);
    while (!rest.empty()) {
        const size_t length = CharacterLength(rest);
        if (length == 0 || (length == 1 && (*text < ' ' || *text == kDelete))) {
            *text = '?';
        }
        const size_t step = std::max<size_t>(length, 1);
        text += step;
        rest.remove_prefix(step);
    }
}

}  // namespace

sfx_status Tell(sfx_status status, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(message, sizeof message, format, arguments);
    va_end(arguments);
    Clean(message);
    return status;
}

const char* Message() {
    return message;
}

}  // namespace sfx
