// Ctrl-C, SIGTERM and a terminal that is closed: the first asks for an orderly end, the second ends the
// program at once.
#ifndef SPECIALEFFECTS_HOST_INTERRUPT_H
#define SPECIALEFFECTS_HOST_INTERRUPT_H

#include <csignal>
#include <string>

namespace host {

/// Installs the handlers, and lets a closed pipe and a file size limit come back as errors of the write.
void SetUpSignals();

/// Whether an orderly end has been asked for.
bool Interrupted();

/// The exit code of a program that a signal ended: 130 after Ctrl-C.
int InterruptedExitCode();

/// As long as this lives, a second signal removes the file before it ends the program.
class DoomedFile {
  public:
    explicit DoomedFile(const std::string& path);
    DoomedFile(const DoomedFile&) = delete;
    DoomedFile& operator=(const DoomedFile&) = delete;
    ~DoomedFile();

  private:
    struct Entry;
    Entry* entry_;
    friend void RemoveDoomedFiles();
};

/// Lives from before a file is created until it is doomed, so that a signal between the two does not leave it
/// behind.
class DoomedFileCreation {
  public:
    DoomedFileCreation();
    DoomedFileCreation(const DoomedFileCreation&) = delete;
    DoomedFileCreation& operator=(const DoomedFileCreation&) = delete;
    ~DoomedFileCreation();

  private:
    sigset_t before_;
};

}  // namespace host

#endif
