// What the program prints, for a person or for a program at the other end of a pipe.
#ifndef SPECIALEFFECTS_HOST_STANDARDOUTPUT_H
#define SPECIALEFFECTS_HOST_STANDARDOUTPUT_H

#include <fmt/core.h>

#include <cstddef>
#include <exception>
#include <string>
#include <utility>

namespace host {

/// The reader at the other end of the pipe has closed it. Not a failure: it is how watching ends.
class ReaderGone : public std::exception {};

/// Writes all of it. Throws ReaderGone, or Failure, for example when the disk is full.
void WriteStandardOutput(const void* bytes, size_t size);

/// The same for a line or more of text.
template <class... Args>
void Print(fmt::format_string<Args...> format, Args&&... args) {
    const std::string text = fmt::format(format, std::forward<Args>(args)...);
    WriteStandardOutput(text.data(), text.size());
}

}  // namespace host

#endif
