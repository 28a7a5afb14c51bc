// A current directory in which effects may leave their files.
#ifndef SPECIALEFFECTS_HOST_SCRATCHDIRECTORY_H
#define SPECIALEFFECTS_HOST_SCRATCHDIRECTORY_H

#include <filesystem>

namespace host {

/// Some effects read and write data files in the current directory. As long as this object lives that is an
/// empty directory of its own, in which the data files of the user's directory are found as well.
class ScratchDirectory {
  public:
    ScratchDirectory();
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;
    ~ScratchDirectory();

    /// Clouds computes its noise file when there is none, for seconds. An empty one will do for all who do
    /// not look at the picture.
    void LeaveEmptyNoiseFile() const;

  private:
    std::filesystem::path before_;
    std::filesystem::path path_;
};

}  // namespace host

#endif
