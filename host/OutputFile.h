// A file that comes into being whole or not at all.
#ifndef SPECIALEFFECTS_HOST_OUTPUTFILE_H
#define SPECIALEFFECTS_HOST_OUTPUTFILE_H

#include <cstddef>
#include <string>

namespace host {

/// Writes go to a new file beside the wanted one, with ".part" after its name. `Commit` gives it its name; if
/// that does not come to pass, it is removed.
class OutputFile {
  public:
    /// Throws Failure when the file cannot be written.
    explicit OutputFile(const std::string& path);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    const std::string& Path() const { return path_; }
    /// The file that is being written.
    const std::string& PartPath() const { return partPath_; }

    /// Throws Failure, for one when the disk is full.
    void Write(const void* bytes, size_t size);

    /// Brings everything to the disk and gives the file its name. Throws Failure.
    void Commit();

  private:
    std::string path_;
    std::string partPath_;
    int descriptor_ = -1;
};

/// ".mp4" of "Holiday.MP4".
std::string ExtensionOf(const std::string& path);

/// Writes all of it; the result is 0 or an errno value.
int WriteAll(int descriptor, const void* bytes, size_t size);

}  // namespace host

#endif
