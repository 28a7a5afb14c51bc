// Ctrl-C, SIGTERM and a terminal that is closed: the first asks for an orderly end, the second ends the
// program at once.
#ifndef SPECIALEFFECTS_HOST_INTERRUPT_H
#define SPECIALEFFECTS_HOST_INTERRUPT_H

namespace host {

/// Installs the handlers, and lets a closed pipe and a file size limit come back as errors of the write.
void SetUpSignals();

/// Whether an orderly end has been asked for.
bool Interrupted();

}  // namespace host

#endif
