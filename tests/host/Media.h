// Runs of the program on files that ffmpeg makes.
#ifndef SPECIALEFFECTS_TESTS_HOST_MEDIA_H
#define SPECIALEFFECTS_TESTS_HOST_MEDIA_H

#include "Program.h"

class MediaTest : public ProgramTest {
  protected:
    /// A line of shell in which $P is the program.
    Outcome Shell(const std::string& line) const;

    /// Makes a file: `arguments` go to ffmpeg.
    void Make(const std::string& arguments) const;

    /// Runs `specialeffects apply -e gray-scale` with these arguments, which has to succeed. The result is
    /// what stands on standard error.
    std::string Apply(const std::string& arguments) const;

    /// What ffprobe shows of the file's first video stream, or of those that `select` says: values of the
    /// entries, one a line.
    std::string Probe(const std::string& name, const std::string& entries,
                      const std::string& select = "v:0") const;
    /// The same of the container.
    std::string ProbeFormat(const std::string& name, const std::string& entries) const;

    /// Frames that can be decoded.
    int CountFrames(const std::string& name) const;

    /// Compares red, green and blue of the pixel in the middle of the first frame, as ffmpeg shows it.
    void ExpectMiddlePixel(const std::string& name, const std::vector<int>& expected, int tolerance) const;
};

#endif
