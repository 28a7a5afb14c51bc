#include "Errors.h"

#include <unistd.h>

#include <cstdio>
#include <system_error>

namespace host {
namespace {

// Wipes the line in which a progress bar may stand.
const char* LineStart() {
    return isatty(STDERR_FILENO) != 0 ? "\r\033[K" : "";
}

}  // namespace

std::string SystemText(int error) {
    return std::generic_category().message(error);
}

void PrintError(const std::string& text) {
    fmt::print(stderr, "{}specialeffects: {}\n", LineStart(), text);
}

void Notes::Print(const std::string& text) {
    fmt::print(stderr, "{}specialeffects: note: {}\n", LineStart(), text);
}

}  // namespace host
