// Conversion between the host's UTF-16 texts and the module's UTF-8.
#ifndef SPECIALEFFECTS_FRAMEWORK_TEXTBRIDGE_H
#define SPECIALEFFECTS_FRAMEWORK_TEXTBRIDGE_H

#include <cstddef>

#include "framework/SpecialEffectFilter.h"

/// Bytes, and characters, in the buffers that properties and settings pass through.
inline constexpr size_t kTextCapacity = 256;

/// Converts a terminated text into a buffer of `size` characters. What does not fit is cut at a whole
/// character; the result is always terminated. An invalid character (a lone surrogate, a broken byte
/// sequence) becomes U+FFFD. Never reads more than `size` units of the source. A size of 0 writes nothing.
void NarrowFromWide(const WideChar* wide, char* narrow, size_t size);
void WideFromNarrow(const char* narrow, WideChar* wide, size_t size);

/// A narrow copy of a wide text, for the length of one call. A null text stays null.
class NarrowText {
  public:
    explicit NarrowText(const WideChar* wide) : null_(wide == nullptr) {
        if (!null_) NarrowFromWide(wide, text_, kTextCapacity);
    }
    char* get() { return null_ ? nullptr : text_; }

  private:
    char text_[kTextCapacity] = {};
    bool null_;
};

#endif
