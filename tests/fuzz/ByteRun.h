// A host driven by a string of bytes.
#ifndef SPECIALEFFECTS_TESTS_FUZZ_BYTERUN_H
#define SPECIALEFFECTS_TESTS_FUZZ_BYTERUN_H

#include <cstdint>
#include <filesystem>
#include <span>

/// Plays the bytes as calls of the contract (ContractRun.cpp) or of libsfx (SfxRun.cpp): effects are created,
/// configured, fed with frames and texts, shut down and destroyed in any order, with good arguments and bad
/// ones. Planes are blocks of exactly the bytes that the host promises, so that an address sanitizer catches
/// every access beyond. Ends the program when a result is not one of the contract's or a refused frame has
/// changed. The first byte chooses the processor level.
///
/// Or the bytes are the content of a file: of those that the library reads (FilesRun.cpp), or of a video or
/// picture that the program reads (MediaRun.cpp).
///
/// The same bytes always make the same calls. Files are written to the current directory.
void RunBytes(std::span<const uint8_t> bytes);

/// A directory of its own for the data files that effects read and write; the process works in it. It is
/// removed when the program ends normally.
class ScratchDirectory {
  public:
    ScratchDirectory();
    ~ScratchDirectory();
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

  private:
    std::filesystem::path path_, before_;
};

#endif
