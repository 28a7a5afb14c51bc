#include "Runner.h"

#include <util/platform.h>
#include <util/threading.h>

#include <algorithm>
#include <exception>
#include <utility>

namespace sfxobs {
namespace {

// The number of frames over which times are looked at grows fourfold with each line in the log, up to this.
constexpr int64_t kMostFramesToLookAt = 100000;
// Where frames change their size faster than effects get ready, one of this many is processed anyway.
constexpr int kMostSkippedFrames = 8;

/// Whether a wish is met by other values of the effect that an earlier wish created. A value that is no
/// longer set needs a new effect: it may depend on the size of frames.
bool DiffersInValuesOnly(const Wish& wish, const Wish& earlier) {
    return wish.effect == earlier.effect && wish.seed == earlier.seed &&
           std::ranges::all_of(earlier.values,
                               [&](const auto& value) { return wish.values.contains(value.first); });
}

}  // namespace

Runner::Runner(obs_source_t* filter) : filter_(filter), worker_([this] { Work(); }) {}

Runner::~Runner() {
    {
        const std::lock_guard lock(mutex_);
        stop_ = true;
    }
    changed_.notify_one();
    worker_.join();
}

void Runner::Want(Wish wish) {
    {
        const std::lock_guard lock(mutex_);
        wish_ = std::move(wish);
        hasWish_ = true;
    }
    changed_.notify_one();
}

// ---- the worker ---------------------------------------------------------------------------------------

void Runner::Work() {
    os_set_thread_name("specialeffects");
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] {
            const bool isSizeNew = newest_ != nullptr && size_ != Size() && size_ != newestSize_;
            return stop_ || hasWish_ || retired_ != nullptr || isSizeNew;
        });
        if (stop_) return;
        Effect retired = std::move(retired_);
        const bool hasWish = std::exchange(hasWish_, false);
        Wish wish = std::move(wish_);
        const Size size = size_;
        lock.unlock();
        retired.reset();
        try {
            if (hasWish) Follow(std::move(wish));
            if (newest_ != nullptr && size != Size() && size != newestSize_) Offer(size);
        } catch (const std::exception& problem) {
            // What runs goes on; the next wish creates a new effect.
            blog(LOG_WARNING, "[specialeffects] '%s': %s", obs_source_get_name(filter_), problem.what());
            newest_ = nullptr;
            fresh_.reset();
        }
        lock.lock();
    }
}

void Runner::Follow(Wish wish) {
    if (newest_ != nullptr && DiffersInValuesOnly(wish, followed_)) {
        Change(ValuesFor(wish, newest_));
        followed_ = std::move(wish);
        return;
    }
    if (Build(wish)) followed_ = std::move(wish);
}

/// Makes a fresh effect. False where the wish names none: everything stays as it is.
bool Runner::Build(const Wish& wish) {
    if (wish.effect == refused_) return false;
    Effect effect = CreateEffect(wish.effect);
    if (effect == nullptr) {
        blog(LOG_WARNING, "[specialeffects] '%s': %s", obs_source_get_name(filter_), sfx_message());
        refused_ = wish.effect;
        return false;
    }
    refused_.clear();
    std::vector<Value> values = ValuesFor(wish, effect.get());
    for (const Value& value : values) sfx_set_int(effect.get(), value.property.c_str(), value.number);
    sfx_set_seed(effect.get(), wish.seed);
    fresh_ = std::move(effect);
    newest_ = fresh_.get();
    newestSize_ = {};
    values_ = std::move(values);
    return true;
}

void Runner::Change(std::vector<Value> values) {
    for (const Value& value : values) {
        if (std::ranges::find(values_, value) == values_.end()) {
            sfx_set_int(newest_, value.property.c_str(), value.number);
        }
    }
    values_ = std::move(values);
    std::string text = TextOf(newest_);
    const std::lock_guard lock(mutex_);
    if (fresh_ == nullptr) (offered_ != nullptr ? offeredText_ : runningText_) = std::move(text);
}

/// Gets the fresh effect ready for a size, or another one like the newest.
void Runner::Offer(Size size) {
    const bool isBuilt = fresh_ != nullptr || Build(followed_);
    newestSize_ = size;
    if (!isBuilt) return;
    // Data files are read or made here, and tables built.
    sfx_prepare(fresh_.get(), size.width, size.height);
    std::string text = TextOf(fresh_.get());
    Effect effect = std::move(fresh_);
    const std::lock_guard lock(mutex_);
    std::swap(offered_, effect);
    offeredText_ = std::move(text);
    offeredSize_ = size;
}

// ---- the thread of the frames -------------------------------------------------------------------------

Runner::Readiness Runner::ReadinessFor(int32_t width, int32_t height) {
    const Size size{width, height};
    // Where the worker holds the lock, the next frame will do.
    const std::unique_lock lock(mutex_, std::try_to_lock);
    if (lock) {
        if (size != std::exchange(size_, size)) changed_.notify_one();
        if (offered_ != nullptr && retired_ == nullptr) {
            retired_ = std::exchange(running_, std::move(offered_));
            runningSize_ = offeredSize_;
            runningText_.swap(offeredText_);
            frameCount_ = 0;
            reported_ = SFX_OK;
            frames_ = slowFrames_ = totalTime_ = 0;
            if (retired_ != nullptr) changed_.notify_one();
        }
    }
    if (running_ == nullptr) return Readiness::None;
    if (size != runningSize_ && ++skippedFrames_ < kMostSkippedFrames) return Readiness::Soon;
    runningSize_ = size;
    skippedFrames_ = 0;
    return Readiness::Ready;
}

void Runner::Process(const sfx_picture& picture, int64_t time) {
    const uint64_t start = os_gettime_ns();
    const sfx_status status = sfx_process(running_.get(), &picture, time);
    const auto taken = static_cast<int64_t>(os_gettime_ns() - start);
    effectTime_ = taken;
    ++frameCount_;
    if (status != SFX_OK) Report(status, picture);
    NoteTime(taken, picture);
}

/// Logs a status once, not for every frame.
void Runner::Report(sfx_status status, const sfx_picture& picture) {
    if (std::exchange(reported_, status) == status) return;
    blog(LOG_WARNING, "[specialeffects] '%s' at %dx%d: %s", obs_source_get_name(filter_), picture.width,
         picture.height, sfx_message());
}

/// Logs a line when most of many frames take the effect longer than the frame interval.
void Runner::NoteTime(int64_t time, const sfx_picture& picture) {
    const auto interval = static_cast<int64_t>(obs_get_frame_interval_ns());
    totalTime_ += time;
    slowFrames_ += time > interval ? 1 : 0;
    if (++frames_ < framesToLookAt_) return;
    if (slowFrames_ > frames_ / 2) {
        constexpr double kMillisecond = 1e6;
        const sfx_effect_info* const info = sfx_link_info(running_.get(), 0);
        const bool isRow = sfx_link_count(running_.get()) > 1;
        blog(LOG_WARNING,
             "[specialeffects] '%s': %s%s takes %.1f ms a frame at %dx%d; there are %.1f ms between frames",
             obs_source_get_name(filter_), info->title, isRow ? " and more" : "",
             static_cast<double>(totalTime_) / static_cast<double>(frames_) / kMillisecond, picture.width,
             picture.height, static_cast<double>(interval) / kMillisecond);
        framesToLookAt_ = std::min(framesToLookAt_ * 4, kMostFramesToLookAt);
    }
    frames_ = slowFrames_ = totalTime_ = 0;
}

Status Runner::Present() const {
    const std::lock_guard lock(mutex_);
    return {runningText_, frameCount_, effectTime_};
}

}  // namespace sfxobs
