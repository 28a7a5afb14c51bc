#include "Errors.h"

#include <cstdio>
#include <system_error>

#include "Terminal.h"

namespace host {
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
