#include "Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace host {

bool OnTerminal(int descriptor) {
    return isatty(descriptor) != 0;
}

bool HasEscapes() {
    const char* name = std::getenv("TERM");
    return name != nullptr && *name != '\0' && std::string_view(name) != "dumb";
}

bool HasStyles(int descriptor) {
    const char* refusal = std::getenv("NO_COLOR");
    const bool refused = refusal != nullptr && *refusal != '\0';
    return !refused && OnTerminal(descriptor) && HasEscapes();
}

size_t TerminalColumns() {
    constexpr size_t kUsual = 80;
    winsize size{};
    const bool known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : kUsual;
}

const char* LineStart() {
    return OnTerminal(STDERR_FILENO) && HasEscapes() ? "\r\033[K" : "";
}

}  // namespace host
