#include "imaging/Files.h"

namespace files {

bool Read(const File& file, void* bytes, size_t size) {
    return file != nullptr && std::fread(bytes, 1, size, file.get()) == size;
}

void Write(const File& file, const void* bytes, size_t size) {
    static_cast<void>(std::fwrite(bytes, 1, size, file.get()) == size);
}

bool CloseWritten(File file) {
    const bool written = std::ferror(file.get()) == 0;
    return std::fclose(file.release()) == 0 && written;
}

}  // namespace files
