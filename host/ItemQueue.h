// What one thread hands to the next.
#ifndef SPECIALEFFECTS_HOST_ITEMQUEUE_H
#define SPECIALEFFECTS_HOST_ITEMQUEUE_H

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>

#include "VideoInput.h"

namespace host {

/// Frames and packets in their order. Holds a limited number of frames; packets are small and come along.
class ItemQueue {
  public:
    explicit ItemQueue(size_t mostFrames) : mostFrames_(mostFrames) {}

    /// Waits for room. False when the other side has given up.
    bool Push(InputItem item);
    /// Waits for an item. Nothing after the last one.
    std::optional<InputItem> Pop();

    /// No more will be pushed.
    void Close();
    /// No more will be popped.
    void GiveUp();

  private:
    size_t mostFrames_;
    size_t frames_ = 0;
    bool closed_ = false;
    bool givenUp_ = false;
    std::deque<InputItem> items_;
    std::mutex mutex_;
    std::condition_variable changed_;
};

}  // namespace host

#endif
