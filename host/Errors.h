// How the program fails: with one line that names what was wrong and what would be right.
#ifndef SPECIALEFFECTS_HOST_ERRORS_H
#define SPECIALEFFECTS_HOST_ERRORS_H

#include <fmt/core.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace host {

inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;

/// The command line asks for something that does not exist or does not go together.
class UsageError : public std::runtime_error {
  public:
    template <class... Args>
    explicit UsageError(fmt::format_string<Args...> format, Args&&... args)
        : std::runtime_error(fmt::format(format, std::forward<Args>(args)...)) {}
};

/// The command line is right and the work could not be done: a file, a device, the module.
class Failure : public std::runtime_error {
  public:
    template <class... Args>
    explicit Failure(fmt::format_string<Args...> format, Args&&... args)
        : std::runtime_error(fmt::format(format, std::forward<Args>(args)...)) {}
};

/// A signal ended the run before its work was done.
class Interruption : public Failure {
  public:
    using Failure::Failure;
};

/// "Permission denied" and its like, for an errno value.
std::string SystemText(int error);

/// Prints the line that ends a failed run.
void PrintError(const std::string& text);

/// Remarks that a person should see and a script can ignore: one line each on standard error, none when
/// quiet. Clears a progress bar that stands in the line.
class Notes {
  public:
    explicit Notes(bool quiet) : quiet_(quiet) {}

    template <class... Args>
    void Add(fmt::format_string<Args...> format, Args&&... args) const {
        if (!quiet_) Print(fmt::format(format, std::forward<Args>(args)...));
    }

  private:
    static void Print(const std::string& text);

    bool quiet_;
};

}  // namespace host

#endif
