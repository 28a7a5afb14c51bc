// Conversion between a host's wide texts, which are UTF-16, and narrow ones: UTF-8, or on Windows text in the
// system's code page.
#ifndef SPECIALEFFECTS_FRAMEWORK_TEXTBRIDGE_H
#define SPECIALEFFECTS_FRAMEWORK_TEXTBRIDGE_H

#include <cstddef>

#include "framework/SpecialEffectFilter.h"

/// Bytes, and characters, in the buffers that properties and settings pass through.
inline constexpr size_t kTextCapacity = 256;

/// Converts a terminated text into a buffer of `size` characters. What does not fit is cut at a whole
/// character; the result is always terminated. An invalid character (a lone surrogate, a broken byte
/// sequence) becomes U+FFFD, and on Windows one that the code page lacks becomes what the system has for it.
/// Never reads more than `size` units of the source. A size of 0 writes nothing.
void NarrowFromWide(const WideChar* wide, char* narrow, size_t size);
void WideFromNarrow(const char* narrow, WideChar* wide, size_t size);

/// The same for a path. On Windows the result is UTF-8 where the code page lacks a character, so that any
/// file can be named.
void NarrowPathFromWide(const WideChar* wide, char* narrow, size_t size);

/// A narrow copy of a wide text, for the length of one call. A null text stays null.
class NarrowText {
  public:
    explicit NarrowText(const WideChar* wide, decltype(NarrowFromWide)* convert = NarrowFromWide)
        : null_(wide == nullptr) {
        if (!null_) convert(wide, text_, kTextCapacity);
    }
    char* get() { return null_ ? nullptr : text_; }

  private:
    char text_[kTextCapacity] = {};
    bool null_;
};

#endif
