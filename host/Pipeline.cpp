#include "Pipeline.h"

#include <algorithm>
#include <exception>
#include <thread>

#include "Interrupt.h"
#include "ItemQueue.h"

namespace host {
namespace {

// Frames that wait between two threads: enough to even out, within reasonable memory.
size_t FramesBetween(const StreamInfo& stream) {
    constexpr size_t kMost = 4;
    constexpr size_t kBytes = size_t{128} << 20;
    const size_t pixels = static_cast<size_t>(stream.size.width) * static_cast<size_t>(stream.size.height);
    return std::clamp<size_t>(kBytes / (pixels * 3 / 2 + 1), 1, kMost);
}

// Runs a task on a thread. Its exception comes out of Join.
class Task {
  public:
    template <class Work>
    explicit Task(Work work)
        : thread_([this, work] {
              try {
                  work();
              } catch (...) {
                  error_ = std::current_exception();
              }
          }) {}
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;
    ~Task() {
        if (thread_.joinable()) thread_.join();
    }

    std::exception_ptr Join() {
        if (thread_.joinable()) thread_.join();
        return error_;
    }

  private:
    std::exception_ptr error_;
    std::thread thread_;
};

// Reads until a limit, then what belongs to the frames so far. True when the input ended before a limit.
bool ReadAll(VideoInput& input, const PipelineLimits& limits, ItemQueue& queue) {
    int64_t frames = 0;
    while (!Interrupted()) {
        std::optional<InputItem> item = input.Next();
        if (!item) return frames < limits.frames;
        int64_t end = 0;
        if (item->frame) {
            if (item->frame.Time() >= limits.end) break;
            end = item->frame.Time() + input.Stream().TicksPerFrame();
            ++frames;
        }
        if (!queue.Push(std::move(*item))) return false;
        if (frames == limits.frames && end > 0) {
            input.EndAt(end);
        }
    }
    if (!Interrupted()) {
        input.EndAt(limits.end);
        while (std::optional<InputItem> item = input.Next()) {
            if (!item->frame && !queue.Push(std::move(*item))) return false;
        }
    }
    return false;
}

}  // namespace

PipelineOutcome RunPipeline(VideoInput& input, EffectChain& chain, VideoOutput& output,
                            const PipelineLimits& limits, const std::function<void(int64_t)>& progress) {
    PipelineOutcome outcome;
    ItemQueue decoded(FramesBetween(input.Stream())), changed(FramesBetween(input.Stream()));
    bool inputEnded = false;
    Task reader([&] {
        struct CloseAtEnd {
            ItemQueue& queue;
            ~CloseAtEnd() { queue.Close(); }
        } const close{decoded};
        inputEnded = ReadAll(input, limits, decoded);
    });
    Task writer([&] {
        struct GiveUpAtEnd {
            ItemQueue& queue;
            ~GiveUpAtEnd() { queue.GiveUp(); }
        } const giveUp{changed};
        while (std::optional<InputItem> item = changed.Pop()) {
            if (item->frame) {
                output.Write(std::move(item->frame));
            } else {
                output.WritePacket(std::move(item->packet));
            }
        }
    });

    std::exception_ptr error;
    try {
        while (std::optional<InputItem> item = decoded.Pop()) {
            if (item->frame) {
                chain.Process(item->frame, input.Stream().timeBase);
                ++outcome.frames;
                outcome.end = item->frame.Time() + input.Stream().TicksPerFrame();
                progress(outcome.frames);
                if (limits.lastFrameOnly && outcome.frames < limits.frames) continue;
            }
            if (!changed.Push(std::move(*item))) break;
        }
    } catch (...) {
        error = std::current_exception();
    }
    input.Cancel();
    decoded.GiveUp();
    changed.Close();
    const std::exception_ptr writeError = writer.Join(), readError = reader.Join();
    for (const std::exception_ptr& each : {error, writeError, readError}) {
        if (each) std::rethrow_exception(each);
    }
    outcome.inputEnded = inputEnded;
    return outcome;
}

}  // namespace host
