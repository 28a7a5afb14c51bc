// Runs a filter's effect on frames. Effects are created, made ready and destroyed on a thread of the runner's
// own, so that the thread of the frames never waits for it: the old effect runs until the new one is ready.
#ifndef SPECIALEFFECTS_BRIDGES_OBS_RUNNER_H
#define SPECIALEFFECTS_BRIDGES_OBS_RUNNER_H

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "Settings.h"

namespace sfxobs {

/// What a filter does at present.
struct Status {
    std::string effect;      // as text that sfx_create takes; "" while frames pass unchanged
    int64_t frames = 0;      // since the effect took over
    int64_t effectTime = 0;  // of the last frame, in nanoseconds
};

class Runner {
  public:
    /// `filter` names the filter in the log.
    explicit Runner(obs_source_t* filter);
    Runner(const Runner&) = delete;
    Runner& operator=(const Runner&) = delete;
    /// No frame may be under way.
    ~Runner();

    /// Any thread. Returns at once; takes effect some frames later.
    void Want(Wish wish);

    enum class Readiness {
        None,   // there is no effect yet: frames pass unchanged
        Soon,   // the effect gets ready for this size: better no frame than an unchanged one
        Ready,  // for Process
    };
    /// Thread of the frames: takes over an effect that has become ready. Never waits.
    Readiness ReadinessFor(int32_t width, int32_t height);
    /// Thread of the frames, where ReadinessFor the picture's size was Ready: the effect on a picture, in
    /// place. `time` is in nanoseconds.
    void Process(const sfx_picture& picture, int64_t time);

    /// Any thread.
    Status Present() const;

  private:
    struct Size {
        int32_t width = 0, height = 0;
        bool operator==(const Size&) const = default;
    };

    void Work();
    void Follow(Wish wish);
    bool Build(const Wish& wish);
    void Change(std::vector<Value> values);
    void Offer(Size size);
    void Report(sfx_status status, const sfx_picture& picture);
    void NoteTime(int64_t time, const sfx_picture& picture);

    obs_source_t* const filter_;

    mutable std::mutex mutex_;  // guards what follows; never held for long
    std::condition_variable changed_;
    bool stop_ = false;
    bool hasWish_ = false;
    Wish wish_;
    Size size_;                             // of the latest frame; none before the first
    Effect offered_{nullptr, sfx_destroy};  // ready to take over, for frames of offeredSize_
    Size offeredSize_;
    Effect retired_{nullptr, sfx_destroy};  // to be destroyed
    std::string offeredText_, runningText_;

    // Of the worker.
    Effect fresh_{nullptr, sfx_destroy};  // waits for the size of the first frame
    sfx_effect* newest_ = nullptr;        // fresh, offered or running
    Wish followed_;                       // what the newest effect comes from
    std::vector<Value> values_;           // of the newest effect
    Size newestSize_;                     // for which it is ready; none for a fresh one
    std::string refused_;                 // the latest text that is not an effect

    // Of the thread of the frames.
    Effect running_{nullptr, sfx_destroy};
    Size runningSize_;  // for which it is ready
    int skippedFrames_ = 0;
    sfx_status reported_ = SFX_OK;
    int64_t frames_ = 0, slowFrames_ = 0, totalTime_ = 0;  // since the last look at times
    int64_t framesToLookAt_ = 100;
    std::atomic<int64_t> frameCount_ = 0, effectTime_ = 0;

    std::thread worker_;
};

}  // namespace sfxobs

#endif
