// What sfx_message() returns: one text for each thread.
#ifndef SPECIALEFFECTS_SFX_MESSAGE_H
#define SPECIALEFFECTS_SFX_MESSAGE_H

#include "sfx/sfx.h"

namespace sfx {

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
