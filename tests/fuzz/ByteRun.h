// A host that does what a string of bytes says.
#ifndef SPECIALEFFECTS_TESTS_FUZZ_BYTERUN_H
#define SPECIALEFFECTS_TESTS_FUZZ_BYTERUN_H

#include <cstdint>
#include <filesystem>
#include <span>

/// Plays the bytes as calls of the contract (ContractRun.cpp) or of libsfx (SfxRun.cpp): effects are created,
/// configured, fed with frames and texts, shut down and destroyed in any order, with good arguments and bad
/// ones. Planes are blocks of exactly the bytes that the host answers for, so that an address sanitizer sees
/// every byte beyond. Ends the program when an answer is not one of the contract's or a refused frame has
/// changed.
///
/// The first byte chooses the processor level. The same bytes make the same calls, whatever ran before. Data
/// files are written to the current directory.
void RunBytes(std::span<const uint8_t> bytes);

/// A directory of its own for the data files that effects read and write; the process works in it. It is
/// removed when the program ends in order.
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
