// A file that comes into being whole or not at all.
#ifndef SPECIALEFFECTS_HOST_OUTPUTFILE_H
#define SPECIALEFFECTS_HOST_OUTPUTFILE_H

#include <cstddef>
#include <optional>
#include <string>

#include "Interrupt.h"

namespace host {

/// Writes go to a new file beside the wanted one, with ".part" after its name. `Commit` gives it its name; if
/// that does not happen, it is removed. A symbolic link stays one: the file it names is written.
class OutputFile {
  public:
    /// `overwrite` says what happens with a file of this name. Throws Failure when the file cannot be
    /// written, and UsageError when it exists and may not be overwritten.
    OutputFile(const std::string& path, bool overwrite);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    const std::string& Path() const { return path_; }
    /// The file that is being written.
    const std::string& PartPath() const { return partPath_; }

    /// Throws Failure, for example when the disk is full.
    void Write(const void* bytes, size_t size);

    /// Brings everything to the disk. Throws Failure.
    void Close();

    /// Closes, and gives the file its name. Throws Failure.
    void Commit();

  private:
    std::string path_;
    std::string target_;  // `path_` with symbolic links resolved
    std::string partPath_;
    bool overwrite_;
    int descriptor_ = -1;
    std::optional<DoomedFile> doomed_;
};

/// Refuses to write a file that is also read, and one that exists unless `overwrite` is set. Throws
/// UsageError.
void CheckOverwriting(const std::string& output, bool overwrite);
void CheckNotInput(const std::string& output, const std::string& input);

/// ".mp4" of "Holiday.MP4".
std::string ExtensionOf(const std::string& path);

/// Writes all of it; the result is 0 or an errno value.
int WriteAll(int descriptor, const void* bytes, size_t size);

}  // namespace host

#endif
