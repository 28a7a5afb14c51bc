// What an output cannot carry of its input.
#ifndef SPECIALEFFECTS_HOST_LEFTOUT_H
#define SPECIALEFFECTS_HOST_LEFTOUT_H

#include <string_view>

#include "VideoInput.h"

namespace host {

/// Counts what is left out, and lists it in one note.
class LeftOut {
  public:
    /// All that is in the input's container but the video.
    static LeftOut Everything(const VideoInput& input);

    void Add(const AVStream& stream);
    void AddChapters(unsigned count) { chapters_ += count; }
    void AddTags() { tags_ = true; }

    /// "left out, .gif does not take it: 2 tracks of sound, 1 chapter". No note when nothing was counted.
    void Tell(const Notes& notes, std::string_view output) const;

  private:
    unsigned sound_ = 0;
    unsigned subtitles_ = 0;
    unsigned others_ = 0;
    unsigned chapters_ = 0;
    bool tags_ = false;
};

/// Whether a tag describes the work rather than the file that held it.
bool IsTagOfWork(std::string_view key);
bool HasTagsOfWork(const AVDictionary* tags);

}  // namespace host

#endif
