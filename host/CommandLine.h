// The command line, read.
#ifndef SPECIALEFFECTS_HOST_COMMANDLINE_H
#define SPECIALEFFECTS_HOST_COMMANDLINE_H

#include <optional>
#include <string_view>

#include "Commands.h"

namespace host {

/// Nothing when the command line asked for help or the version, which has been printed then. Throws
/// UsageError.
std::optional<Command> ParseCommandLine(int argc, const char* const* argv);

/// "640x480". Throws UsageError.
Size ParseSize(std::string_view text);

}  // namespace host

#endif
