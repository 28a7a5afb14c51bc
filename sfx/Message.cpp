#include "sfx/Message.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace sfx {
namespace {

// A plain array: usable when memory has run out, and nothing to destroy when a thread ends.
thread_local constinit char message[1024] = "";

bool IsContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

}  // namespace

sfx_status Tell(sfx_status status, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(message, sizeof message, format, arguments);
    va_end(arguments);
    if (length >= static_cast<int>(sizeof message)) {
        // The last character may have been cut: it goes, unless it is whole.
        size_t end = std::strlen(message);
        while (end > 0 && IsContinuation(message[end - 1])) {
            --end;
        }
        if (end > 0 && static_cast<unsigned char>(message[end - 1]) >= 0xC0U) {
            --end;
        }
        message[end] = '\0';
    }
    return status;
}

const char* Message() {
    return message;
}

}  // namespace sfx
