// What the terminal can do.
#ifndef SPECIALEFFECTS_HOST_TERMINAL_H
#define SPECIALEFFECTS_HOST_TERMINAL_H

#include <cstddef>

namespace host {

/// Whether the descriptor is a terminal.
bool OnTerminal(int descriptor);

/// Whether it understands escape sequences: TERM is neither empty nor "dumb".
bool HasEscapes();

/// Whether text for the descriptor may have colours and weights: a terminal with escape sequences, and no
/// NO_COLOR in the environment.
bool HasStyles(int descriptor);

/// Columns of standard error.
size_t TerminalColumns();

/// What wipes the line of standard error in which a progress bar may stand.
const char* LineStart();

}  // namespace host

#endif
