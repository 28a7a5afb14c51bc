// Paths for Windows, whose file names are UTF-16. Used by the files that are compiled for Windows only.
#ifndef SPECIALEFFECTS_IMAGING_WIDEPATH_H
#define SPECIALEFFECTS_IMAGING_WIDEPATH_H

#include <cstdint>

/// A path as the system wants it, made from UTF-8. It is read as text in the system's code page, which hosts
/// of the contract may pass, if it is not UTF-8 or names a file only so. Empty if it is too long.
class WidePath {
  public:
    static constexpr uint32_t kCapacity = 4096;

    explicit WidePath(const char* path);
    const wchar_t* get() const { return text_; }

  private:
    wchar_t text_[kCapacity];
};

#endif
