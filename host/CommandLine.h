// Reads the command line.
#ifndef SPECIALEFFECTS_HOST_COMMANDLINE_H
#define SPECIALEFFECTS_HOST_COMMANDLINE_H

#include <string_view>

#include "Commands.h"

namespace host {

/// Throws UsageError.
Command ParseCommandLine(int argc, const char* const* argv);

/// "640x480". Throws UsageError.
Size ParseSize(std::string_view text);
/// Frames a second: "30", "29.97", "30000/1001". Throws UsageError.
AVRational ParseRate(std::string_view text);
/// Seconds: "90", "1:30", "0:01:30.5". Throws UsageError.
double ParseSeconds(std::string_view text);
/// "copy", "aac", "opus", "none". Throws UsageError.
Sound ParseSound(std::string_view text);

}  // namespace host

#endif
