// One comparison of a primitive with its model.
//
// A case is a function that takes a Trial, asks it for parameters and pictures, and runs the primitive and
// its model on them. The two have one signature; the body says once how to call it:
//
//     void Gamma(Trial& t) {
//         const int32_t scale = t.Pick("scale", {0, 1, 9, -1});
//         const auto src = t.Source<uint8_t>({.margin = Margin::All(1)});
//         const auto dst = t.Target<uint8_t>();
//         t.Run(PrimGamma8uC1, model::PrimGamma8uC1, [&](auto gamma, Side side) {
//             return gamma(src.at(side), src.step(), dst.at(side), dst.step(), t.width(), t.height(), scale);
//         });
//     }
//     const Register kernels("tone", {{"PrimGamma8uC1", Gamma}});
//
// The case is run for every size and for every combination of the values that it picks; the first value of
// each list is the one that is timed. What the body returns (a status, or a pair of a status and a number) is
// compared too.
//
// Each picture exists twice, with the same pixels at different places: random row steps, unaligned, in the
// middle of other bytes or hard against a page that cannot be read. The bytes around the two differ, so that
// a primitive that reads them is detected; and no byte outside a target's region may change.
#ifndef SPECIALEFFECTS_TESTS_CHECK_KERNELS_TRIAL_H
#define SPECIALEFFECTS_TESTS_CHECK_KERNELS_TRIAL_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "imaging/Cpu.h"
#include "tests/check_kernels/Arena.h"

namespace check {

enum class Side { kFast, kModel };

/// A small generator of random numbers, the same on every machine.
class Random {
  public:
    explicit Random(uint64_t seed) : state_(seed * 0x9e3779b97f4a7c15u + 0x2545f4914f6cdd1du) {}

    uint64_t Bits() {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 7;
        state_ ^= state_ << 17;
        return state_ * 0x2545f4914f6cdd1du;
    }

    /// A whole number from lo to hi, both included.
    int32_t Whole(int32_t lo, int32_t hi) {
        const auto count = static_cast<uint64_t>(int64_t{hi} - lo + 1);
        return static_cast<int32_t>(lo + static_cast<int64_t>((Bits() >> 32) % count));
    }

    double Real(double lo, double hi) { return lo + (hi - lo) * static_cast<double>(Bits() >> 11) * 0x1p-53; }

    void Fill(std::byte* bytes, size_t count);

  private:
    uint64_t state_;
};

/// Pixels around a region that may be read.
struct Margin {
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;

    static Margin All(int32_t pixels) { return {pixels, pixels, pixels, pixels}; }
};

/// Properties of a picture. A width or height of 0 means that of the trial.
template <typename T>
struct Shape {
    int32_t width = 0;
    int32_t height = 0;
    int32_t channels = 1;
    Margin margin = {};
    /// Row step exactly as wide as the rows.
    bool packed = false;
    /// Makes one element; without it bytes get one of several kinds of random content and all else random
    /// bits.
    std::function<T(Random&)> element = {};
};

/// Two copies of a picture, for the primitive and for its model.
template <typename T>
class Picture {
  public:
    Picture(T* fast, T* model, int32_t step) : fast_(fast), model_(model), step_(step) {}

    /// The region's first pixel.
    T* at(Side side) const { return side == Side::kFast ? fast_ : model_; }

    /// Bytes from a row of either copy to the next.
    int32_t step() const { return step_; }

  private:
    T* fast_;
    T* model_;
    int32_t step_;
};

/// The memory of two such copies.
class Storage {
  public:
    struct Layout {
        size_t elementSize;
        size_t rowBytes;  // of the region
        size_t rows;
        size_t left;  // margins, in bytes and rows
        size_t top;
        size_t right;
        size_t bottom;
        bool packed;
        bool writable;
    };

    /// Chooses step and places and fills both copies and what lies around them with unlike random bytes. The
    /// storages of a run are numbered from 0.
    void Place(const Layout& layout, Random& random, bool timing, size_t number);
    /// Gives the second copy the pixels of the first, margins included, and notes what is there before the
    /// run.
    void Settle(bool timing);
    /// Makes the first copy what it was when it was noted.
    void Restore();
    /// Empty, or what is wrong after the run.
    std::string Verdict() const;

    /// The pixels of a row of a copy. Rows of the margin have numbers below 0 or past the last.
    std::span<std::byte> Row(size_t copy, ptrdiff_t row) const;

    const Layout& layout() const { return layout_; }
    int32_t step() const { return step_; }
    std::byte* region(size_t copy) const { return copies_[copy].region; }

  private:
    struct Copy {
        Arena arena;
        std::byte* region = nullptr;      // first pixel
        std::span<std::byte> all;         // margins, padding and guard bytes included
        std::vector<std::byte> pristine;  // `all` before the run
    };

    std::string OutsideVerdict(const Copy& copy) const;

    Layout layout_{};
    int32_t step_ = 0;
    std::array<Copy, 2> copies_;
};

class Trial {
  public:
    Trial(uint64_t seed, bool timing);
    ~Trial();
    Trial(const Trial&) = delete;
    Trial& operator=(const Trial&) = delete;

    int32_t width() const { return width_; }
    int32_t height() const { return height_; }
    Random& random() { return random_; }

    /// One of the values; over the runs of a size all combinations come up.
    template <typename T>
    T Pick(std::string_view name, std::initializer_list<T> values) {
        const T value = values.begin()[Digit(values.size())];
        Note(name, static_cast<double>(value));
        return value;
    }

    /// A random whole number from lo to hi; `timed` when timing.
    int32_t Any(std::string_view name, int32_t lo, int32_t hi, int32_t timed) {
        const int32_t value = timing_ ? timed : random_.Whole(lo, hi);
        Note(name, value);
        return value;
    }

    /// A picture that is only read.
    template <typename T>
    Picture<T> Source(const Shape<T>& shape = {}) {
        return Make(shape, false);
    }

    /// A picture whose region is written, random before.
    template <typename T>
    Picture<T> Target(const Shape<T>& shape = {}) {
        return Make(shape, true);
    }

    /// Calls body(fast, Side::kFast), at each processor level, and body(model, Side::kModel), and compares
    /// results and pictures; or times them.
    template <typename Function, typename Body>
    void Run(Function fast, Function model, Body body) {
        if (timing_) {
            Time([&] { (void)body(fast, Side::kFast); }, [&] { (void)body(model, Side::kModel); });
            return;
        }
        const auto modelResult = body(model, Side::kModel);
        for (const cpu::Level level : cpu::Levels()) {
            BeginLevel(level);
            const auto fastResult = body(fast, Side::kFast);
            Compare(level, fastResult == modelResult);
        }
    }

    // ---- for the program ----------------------------------------------------------------------------

    struct Times {
        double fast;    // seconds, best of many
        double model;   // seconds
        double memcpy;  // seconds, for `copyBytesPerPixel` bytes a pixel
    };

    /// The next run's size. A new run takes the next combination of parameters.
    void Begin(int32_t width, int32_t height, double copyBytesPerPixel);
    /// Whether the run that just ended was the last combination.
    bool Advance();

    /// What is wrong at a processor level, or empty.
    std::string failure(cpu::Level level) const;
    /// The level that the run is at.
    cpu::Level level() const { return level_; }
    const std::string& parameters() const { return parameters_; }
    /// Whether the case called Run.
    bool ran() const { return ran_; }
    const Times& times() const { return times_; }

  private:
    struct Place {
        size_t digit;
        size_t radix;
    };

    template <typename T>
    Picture<T> Make(const Shape<T>& shape, bool writable);
    Storage& NextStorage();
    /// Fills the first copy of a picture of bytes with one of several kinds of content.
    void FillBytes(const Storage& storage);
    size_t Digit(size_t radix);
    void Note(std::string_view name, double value);
    /// Limits the processor to a level and makes the primitive's pictures what they were before the run.
    void BeginLevel(cpu::Level level);
    void Compare(cpu::Level level, bool sameResult);
    void Time(const std::function<void()>& fast, const std::function<void()>& model);

    bool timing_;
    Random random_;
    int32_t width_ = 0;
    int32_t height_ = 0;
    double copyBytesPerPixel_ = 1;
    bool ran_ = false;
    cpu::Level level_ = cpu::Level::kBaseline;
    std::map<cpu::Level, std::string> failures_;
    std::string parameters_;
    Times times_{};
    std::vector<Place> places_;
    size_t nextPlace_ = 0;
    std::vector<std::unique_ptr<Storage>> storages_;  // reused from run to run
    size_t nextStorage_ = 0;
};

template <typename T>
Picture<T> Trial::Make(const Shape<T>& shape, bool writable) {
    const auto bytes = [&](int32_t pixels) {
        return static_cast<size_t>(pixels) * static_cast<size_t>(shape.channels) * sizeof(T);
    };
    Storage& storage = NextStorage();
    storage.Place({.elementSize = sizeof(T),
                   .rowBytes = bytes(shape.width > 0 ? shape.width : width_),
                   .rows = static_cast<size_t>(shape.height > 0 ? shape.height : height_),
                   .left = bytes(shape.margin.left),
                   .top = static_cast<size_t>(shape.margin.top),
                   .right = bytes(shape.margin.right),
                   .bottom = static_cast<size_t>(shape.margin.bottom),
                   .packed = shape.packed,
                   .writable = writable},
                  random_, timing_, nextStorage_);
    if (shape.element) {
        const auto top = static_cast<ptrdiff_t>(storage.layout().top);
        const auto end = static_cast<ptrdiff_t>(storage.layout().rows + storage.layout().bottom);
        for (ptrdiff_t y = -top; y < end; ++y) {
            const std::span<std::byte> row = storage.Row(0, y);
            for (size_t i = 0; i < row.size(); i += sizeof(T)) {
                const T value = shape.element(random_);
                std::memcpy(row.data() + i, &value, sizeof(T));
            }
        }
    } else if constexpr (sizeof(T) == 1) {
        FillBytes(storage);
    }
    storage.Settle(timing_);
    return {reinterpret_cast<T*>(storage.region(0)), reinterpret_cast<T*>(storage.region(1)), storage.step()};
}

/// A primitive in the program's table.
struct Kernel {
    std::string_view name;
    void (*run)(Trial&);
    /// What its time is compared with: a memcpy of so many bytes a pixel.
    double copyBytesPerPixel = 1;
};

/// Puts the kernels of a file into the program's table.
class Register {
  public:
    Register(std::string_view group, std::initializer_list<Kernel> kernels);
};

struct Entry {
    std::string_view group;
    Kernel kernel;
};

const std::vector<Entry>& AllKernels();

}  // namespace check

#endif
