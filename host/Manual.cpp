#include "Manual.h"

#include <fmt/format.h>

#include <sstream>
#include <string_view>

namespace host {
namespace {

// Text as man(7) takes it: a dash is a dash, and no line begins a request.
std::string Roff(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c == '\\') {
            result += "\\e";
        } else if (c == '-') {
            result += "\\-";
        } else {
            result += c;
        }
    }
    return result.starts_with('.') || result.starts_with('\'') ? "\\&" + result : result;
}

void AddFooter(std::string& page, const std::string& footer) {
    std::istringstream lines(footer);
    page += ".PP\n.nf\n";
    for (std::string line; std::getline(lines, line);) page += Roff(line) + '\n';
    page += ".fi\n";
}

std::string Joined(const std::vector<std::string>& names, std::string_view separator) {
    return fmt::format("{}", fmt::join(names, separator));
}

}  // namespace

std::string ManualPage(const std::vector<CommandHelp>& commands, const std::string& version) {
    std::string page = fmt::format(
        ".TH SPECIALEFFECTS 1 \"\" \"specialeffects {}\" \"User Commands\"\n"
        ".SH NAME\nspecialeffects \\- special effects for video, pictures and cameras\n"
        ".SH SYNOPSIS\n",
        version);
    for (const CommandHelp& command : commands) {
        page += fmt::format(".B specialeffects {}\n", Roff(command.name));
        for (const OptionHelp& option : command.options) {
            if (option.names.empty()) page += fmt::format(".I {}\n", Roff(option.value));
        }
        page += ".RI [ options ]\n.br\n";
    }
    page +=
        ".SH DESCRIPTION\nRuns video from files and cameras, and pictures, through effects and writes the "
        "result.\n.SH COMMANDS\n";
    for (const CommandHelp& command : commands) {
        page += fmt::format(".SS {}\n{}.\n", Roff(command.name), Roff(command.description));
        for (const OptionHelp& option : command.options) {
            const std::string value = option.value.empty() ? "" : " \\fI" + Roff(option.value) + "\\fR";
            const std::string names =
                option.names.empty() ? "" : "\\fB" + Roff(Joined(option.names, ", ")) + "\\fR";
            page += fmt::format(".TP\n{}{}\n{}.\n", names, names.empty() ? value.substr(1) : value,
                                Roff(option.description));
        }
        if (!command.footer.empty()) AddFooter(page, command.footer);
    }
    page +=
        ".SH EXIT STATUS\n0 when all went well, 1 when the run failed, 2 when the command line is wrong, "
        "130 after Ctrl\\-C on a file.\n"
        ".SH ENVIRONMENT\n.TP\n\\fBNO_COLOR\\fR\nNo colours and weights.\n.TP\n\\fBTERM\\fR\n"
        "With dumb, neither those nor a progress bar.\n";
    return page;
}

std::string BashCompletion(const std::vector<CommandHelp>& commands) {
    std::vector<std::string> names;
    std::string cases;
    for (const CommandHelp& command : commands) {
        names.push_back(command.name);
        std::vector<std::string> options;
        for (const OptionHelp& option : command.options) {
            options.insert(options.end(), option.names.begin(), option.names.end());
        }
        cases += fmt::format("        {}) options='{}' ;;\n", command.name, Joined(options, " "));
    }
    return fmt::format(R"bash(# Completion of specialeffects for bash.
_specialeffects_effects() {{
    specialeffects list 2> /dev/null | sed -n 's/^  \([a-z][^ ]*\) .*/\1/p'
}}

_specialeffects() {{
    local word=${{COMP_WORDS[COMP_CWORD]}} before=${{COMP_WORDS[COMP_CWORD - 1]}} command=${{COMP_WORDS[1]}}
    local options=
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W '{} --help --version' -- "$word")
        return
    fi
    case $command in
{}    esac
    case $before in
        -e | --effect)
            mapfile -t COMPREPLY < <(compgen -W "$(_specialeffects_effects)" -- "$word")
            return
            ;;
        --audio)
            mapfile -t COMPREPLY < <(compgen -W 'copy aac opus none' -- "$word")
            return
            ;;
        --codec)
            mapfile -t COMPREPLY < <(compgen -W 'h264 hevc vp8 vp9 av1 mpeg4' -- "$word")
            return
            ;;
    esac
    case $command:$word in
        *:-*) mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word") ;;
        help:*) mapfile -t COMPREPLY < <(compgen -W '{}' -- "$word") ;;
        info:* | bench:*) mapfile -t COMPREPLY < <(compgen -W "$(_specialeffects_effects)" -- "$word") ;;
        *) mapfile -t COMPREPLY < <(compgen -f -- "$word") ;;
    esac
}}
complete -o filenames -F _specialeffects specialeffects
)bash",
                       Joined(names, " "), cases, Joined(names, " "));
}

}  // namespace host
