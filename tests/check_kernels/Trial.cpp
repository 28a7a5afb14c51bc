#include "tests/check_kernels/Trial.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <sstream>

namespace check {

void Random::Fill(std::byte* bytes, size_t count) {
    for (; count >= sizeof(uint64_t); count -= sizeof(uint64_t), bytes += sizeof(uint64_t)) {
        const uint64_t bits = Bits();
        std::memcpy(bytes, &bits, sizeof(bits));
    }
    const uint64_t bits = Bits();
    std::memcpy(bytes, &bits, count);
}

// ---- storage ------------------------------------------------------------------------------------

namespace {

constexpr size_t kGuard = 64;

/// A whole number up to `most`, often 0.
size_t SomeOrNone(Random& random, int32_t most) {
    return random.Whole(0, 2) == 0 ? 0 : static_cast<size_t>(random.Whole(0, most));
}

}  // namespace

void Storage::Place(const Layout& layout, Random& random, bool timing, size_t number) {
    layout_ = layout;
    const size_t used = layout.left + layout.rowBytes + layout.right;
    const size_t padding = layout.packed || timing ? 0 : SomeOrNone(random, 40) * layout.elementSize;
    const size_t step = used + padding;
    step_ = static_cast<int32_t>(step);
    const size_t extent = (layout.top + layout.rows + layout.bottom - 1) * step + used;
    for (Copy& copy : copies_) {
        // When timing, aligned, and apart by an uneven part of a page, so that a load does not wait for a
        // store to the same place in another page.
        const size_t shift =
            timing ? number % 4 * 1088 : static_cast<size_t>(random.Whole(0, 63)) * layout.elementSize;
        copy.arena.Reserve(extent + shift + 2 * kGuard);
        const std::span<std::byte> room = copy.arena.bytes();
        size_t offset = kGuard + shift;
        const int32_t place = timing ? 0 : random.Whole(0, 3);
        if (place == 1) {
            offset = 0;  // hard against the page before
        } else if (place == 2) {
            offset = room.size() - extent;  // hard against the page behind
        }
        const size_t begin = offset - std::min(offset, kGuard);
        const size_t end = std::min(offset + extent + kGuard, room.size());
        copy.all = room.subspan(begin, end - begin);
        copy.region = room.data() + offset + layout.top * step + layout.left;
        random.Fill(copy.all.data(), copy.all.size());
    }
}

std::span<std::byte> Storage::Row(size_t copy, ptrdiff_t row) const {
    std::byte* begin = copies_[copy].region + row * ptrdiff_t{step_} - layout_.left;
    return {begin, layout_.left + layout_.rowBytes + layout_.right};
}

void Storage::Settle(bool timing) {
    const auto end = static_cast<ptrdiff_t>(layout_.rows + layout_.bottom);
    for (ptrdiff_t y = -static_cast<ptrdiff_t>(layout_.top); y < end; ++y) {
        std::ranges::copy(Row(0, y), Row(1, y).begin());
    }
    if (!timing) {
        for (Copy& copy : copies_) {
            copy.pristine.assign(copy.all.begin(), copy.all.end());
        }
    }
}

void Storage::Restore() {
    std::ranges::copy(copies_[0].pristine, copies_[0].all.begin());
}

std::string Storage::OutsideVerdict(const Copy& copy) const {
    const std::byte* now = copy.all.data();
    const std::byte* before = copy.pristine.data();
    const auto changed = [&](ptrdiff_t from, ptrdiff_t to) {
        return std::memcmp(now + from, before + from, static_cast<size_t>(to - from)) != 0;
    };
    const ptrdiff_t first = copy.region - now;
    const ptrdiff_t step = step_;
    const auto rowBytes = static_cast<ptrdiff_t>(layout_.rowBytes);
    const auto rows = layout_.writable ? static_cast<ptrdiff_t>(layout_.rows) : 0;
    ptrdiff_t from = 0;
    for (ptrdiff_t y = 0; y < rows; ++y) {
        if (changed(from, first + y * step)) {
            return "writes before row " + std::to_string(y);
        }
        from = first + y * step + rowBytes;
    }
    if (changed(from, static_cast<ptrdiff_t>(copy.all.size()))) {
        return layout_.writable ? "writes past the last row" : "changes its source";
    }
    return {};
}

std::string Storage::Verdict() const {
    for (const Copy& copy : copies_) {
        const std::string verdict = OutsideVerdict(copy);
        if (!verdict.empty()) {
            return (&copy == &copies_[0] ? "the primitive " : "the model ") + verdict;
        }
    }
    if (!layout_.writable) {
        return {};
    }
    for (size_t y = 0; y < layout_.rows; ++y) {
        const std::byte* fast = copies_[0].region + y * static_cast<size_t>(step_);
        const std::byte* model = copies_[1].region + y * static_cast<size_t>(step_);
        if (std::memcmp(fast, model, layout_.rowBytes) == 0) {
            continue;
        }
        const auto differs =
            static_cast<size_t>(std::mismatch(fast, fast + layout_.rowBytes, model).first - fast);
        const size_t element = differs / layout_.elementSize;
        std::ostringstream text;
        text << "element " << element << " of row " << y << " is";
        for (const std::byte* p : {fast, model}) {
            const std::byte* value = p + element * layout_.elementSize;
            text << (p == fast ? " " : " and should be ");
            if (layout_.elementSize == 1) {
                text << std::to_integer<int>(*value);
            } else {
                for (size_t i = layout_.elementSize; i-- > 0;) {
                    text << "0123456789abcdef"[std::to_integer<size_t>(value[i]) >> 4]
                         << "0123456789abcdef"[std::to_integer<size_t>(value[i]) & 15];
                }
            }
        }
        return text.str();
    }
    return {};
}

// ---- trial --------------------------------------------------------------------------------------

Trial::Trial(uint64_t seed, bool timing) : timing_(timing), random_(seed) {}
Trial::~Trial() = default;

void Trial::Begin(int32_t width, int32_t height, double copyBytesPerPixel) {
    width_ = width;
    height_ = height;
    copyBytesPerPixel_ = copyBytesPerPixel;
    ran_ = false;
    failures_.clear();
    parameters_.clear();
    nextPlace_ = 0;
    nextStorage_ = 0;
}

bool Trial::Advance() {
    for (size_t i = places_.size(); i-- > 0;) {
        if (++places_[i].digit < places_[i].radix) {
            return false;
        }
        places_[i].digit = 0;
    }
    return true;
}

Storage& Trial::NextStorage() {
    if (nextStorage_ == storages_.size()) {
        storages_.push_back(std::make_unique<Storage>());
    }
    return *storages_[nextStorage_++];
}

void Trial::FillBytes(const Storage& storage) {
    // Random bytes are there already; the other kinds bring out saturation, ties and flat areas.
    const int32_t kind = timing_ ? 0 : random_.Whole(0, 7);
    if (kind < 4) {
        return;
    }
    const auto base = static_cast<uint32_t>(random_.Whole(0, 255));
    const auto end = static_cast<ptrdiff_t>(storage.layout().rows + storage.layout().bottom);
    for (ptrdiff_t y = -static_cast<ptrdiff_t>(storage.layout().top); y < end; ++y) {
        for (std::byte& b : storage.Row(0, y)) {
            const auto bits = std::to_integer<uint32_t>(b);
            const uint32_t value = kind == 4   ? (bits & 1) * 255           // black and white
                                   : kind == 5 ? base                       // flat
                                   : kind == 6 ? base + (bits & 7)          // a little noise
                                               : (bits < 8 ? bits : base);  // dots
            b = static_cast<std::byte>(value);
        }
    }
}

size_t Trial::Digit(size_t radix) {
    if (nextPlace_ == places_.size()) {
        places_.push_back({0, radix});
    }
    Place& place = places_[nextPlace_++];
    place.radix = radix;
    place.digit = std::min(place.digit, radix - 1);
    return place.digit;
}

void Trial::Note(std::string_view name, double value) {
    std::ostringstream text;
    text << ' ' << name << '=' << value;
    parameters_ += text.str();
}

void Trial::BeginLevel(cpu::Level level) {
    level_ = level;
    cpu::Limit(level);
    for (size_t i = 0; i < nextStorage_; ++i) {
        storages_[i]->Restore();
    }
}

void Trial::Compare(cpu::Level level, bool sameResult) {
    ran_ = true;
    std::string failure = sameResult ? "" : "the results differ";
    for (size_t i = 0; i < nextStorage_ && failure.empty(); ++i) {
        failure = storages_[i]->Verdict();
    }
    if (!failure.empty()) {
        failures_[level] = failure;
    }
}

std::string Trial::failure(cpu::Level level) const {
    const auto found = failures_.find(level);
    return found == failures_.end() ? "" : found->second;
}

void Trial::Time(const std::function<void()>& fast, const std::function<void()>& model) {
    using Clock = std::chrono::steady_clock;
    const auto seconds = [](const auto& action) {
        const auto start = Clock::now();
        action();
        return std::chrono::duration<double>(Clock::now() - start).count();
    };
    const auto bytes = static_cast<size_t>(copyBytesPerPixel_ * width_ * height_);
    const std::vector<std::byte> from(bytes, std::byte{1});
    std::vector<std::byte> to(bytes);
    const auto copy = [&] {
        std::memcpy(to.data(), from.data(), bytes);
        asm volatile("" : : "r"(to.data()) : "memory");  // keep the copy
    };

    // In turns, several calls at a time: each finds the caches as its own last call left them.
    const auto best = [&](const auto& action, int calls, double& result) {
        action();
        for (int i = 0; i < calls; ++i) {
            result = std::min(result, seconds(action));
        }
    };
    constexpr double kNever = std::numeric_limits<double>::infinity();
    times_ = {kNever, kNever, kNever};
    const auto start = Clock::now();
    const auto elapsed = [&] { return std::chrono::duration<double>(Clock::now() - start).count(); };
    for (int round = 0; round < 2 || (round < 60 && elapsed() < 0.4); ++round) {
        best(copy, 6, times_.memcpy);
        best(fast, 6, times_.fast);
    }
    best(model, 2, times_.model);
    ran_ = true;
}

// ---- table --------------------------------------------------------------------------------------

namespace {

std::vector<Entry>& Table() {
    static std::vector<Entry> table;
    return table;
}

}  // namespace

Register::Register(std::string_view group, std::initializer_list<Kernel> kernels) {
    for (const Kernel& kernel : kernels) {
        Table().push_back({group, kernel});
    }
}

const std::vector<Entry>& AllKernels() {
    return Table();
}

}  // namespace check
