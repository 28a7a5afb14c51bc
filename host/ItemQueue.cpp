#include "ItemQueue.h"

namespace host {

bool ItemQueue::Push(InputItem item) {
    std::unique_lock lock(mutex_);
    const bool isFrame = static_cast<bool>(item.frame);
    changed_.wait(lock, [&] { return givenUp_ || !isFrame || frames_ < mostFrames_; });
    if (givenUp_) return false;
    if (isFrame) ++frames_;
    items_.push_back(std::move(item));
    changed_.notify_all();
    return true;
}

std::optional<InputItem> ItemQueue::Pop() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return closed_ || !items_.empty(); });
    if (items_.empty()) return std::nullopt;
    InputItem item = std::move(items_.front());
    items_.pop_front();
    if (item.frame) --frames_;
    changed_.notify_all();
    return item;
}

void ItemQueue::Close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    changed_.notify_all();
}

void ItemQueue::GiveUp() {
    const std::lock_guard lock(mutex_);
    givenUp_ = true;
    items_.clear();
    changed_.notify_all();
}

}  // namespace host
