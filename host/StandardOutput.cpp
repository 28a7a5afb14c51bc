#include "StandardOutput.h"

#include <unistd.h>

#include <cerrno>

#include "Errors.h"
#include "OutputFile.h"

namespace host {

void WriteStandardOutput(const void* bytes, size_t size) {
    const int error = WriteAll(STDOUT_FILENO, bytes, size);
    if (error == EPIPE) throw ReaderGone();
    if (error != 0) throw Failure("cannot write to standard output: {}", SystemText(error));
}

}  // namespace host
