// The man page and the completion of the shell, both made from what the command line takes.
#ifndef SPECIALEFFECTS_HOST_MANUAL_H
#define SPECIALEFFECTS_HOST_MANUAL_H

#include <string>
#include <vector>

namespace host {

struct OptionHelp {
    std::vector<std::string> names;  ///< "-e", "--effect"; empty for a word that stands alone
    std::string value;               ///< what follows it, or the word's name; empty for a flag
    std::string description;
};

struct CommandHelp {
    std::string name;
    std::string description;
    std::vector<OptionHelp> options;
    std::string footer;
};

/// In the language of man(7).
std::string ManualPage(const std::vector<CommandHelp>& commands, const std::string& version);

/// A script for bash. It asks the program for the names of effects.
std::string BashCompletion(const std::vector<CommandHelp>& commands);

}  // namespace host

#endif
