// What an effect takes from outside: the clock, chance and data files.
//
// By default these are the process's own: a steady clock, the C library's `rand` and `srand`, files in the
// current directory. Code around the module can put others in their place on one thread, for the length of a
// scope:
//
//     {
//         const SurroundingsScope scope(surroundings);
//         effect->ProcessFrame(&frame);
//     }
//
// Effects take them from `CurrentSurroundings()` during each call of the contract and keep no reference.
#ifndef SPECIALEFFECTS_FRAMEWORK_SURROUNDINGS_H
#define SPECIALEFFECTS_FRAMEWORK_SURROUNDINGS_H

#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>

#include "framework/Mutex.h"

class Surroundings {
  public:
    Surroundings() = default;
    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;
    virtual ~Surroundings() = default;

    /// The time in whole milliseconds. Never goes back.
    virtual int64_t Milliseconds() = 0;

    /// The next random number, from 0 to 2^31 - 1 (to `RAND_MAX` from the C library).
    virtual int32_t Rand() = 0;
    virtual void Srand(uint32_t seed) = 0;

    /// The path from which the data file `name` is read. There may be no such file.
    virtual std::string DataFile(const std::string& name) = 0;
    /// The path at which the data file `name` may be made after none was found at `DataFile(name)`, which
    /// gives the same path once the file exists. Empty: nowhere.
    virtual std::string NewDataFile(const std::string& name) = 0;

    /// The one object of type `T` that all effects in these surroundings share: made from `arguments` by the
    /// first call on any thread, and kept as long as the surroundings. What is process-wide by default
    /// belongs here, so that effects in surroundings of their own are independent of all others.
    template <class T, class... Arguments>
    T& Shared(Arguments... arguments) {
        // Not constant, so that equal keys of two types are never merged.
        static char key;
        const std::lock_guard lock(sharedMutex_);
        std::shared_ptr<void>& shared = shared_[&key];
        if (shared == nullptr) shared = std::make_shared<T>(arguments...);
        return *static_cast<T*>(shared.get());
    }

  private:
    Mutex sharedMutex_;
    std::map<const void*, std::shared_ptr<void>> shared_;
};

/// The process's own. Derive from it to replace a part.
class ProcessSurroundings : public Surroundings {
  public:
    int64_t Milliseconds() override;
    int32_t Rand() override;
    void Srand(uint32_t seed) override;
    std::string DataFile(const std::string& name) override { return name; }
    std::string NewDataFile(const std::string& name) override { return name; }
};

/// Those of the innermost scope of this thread; without a scope, those of the process.
Surroundings& CurrentSurroundings();

/// The next random number of the current surroundings.
int32_t Rand();
/// The same for many numbers, at less cost for each.
void FillRandom(std::span<int32_t> numbers);

/// Makes `surroundings` the current ones of this thread, and restores the former at its end. They have to
/// outlive the scope. Several threads may share surroundings if all their operations allow it.
class SurroundingsScope {
  public:
    explicit SurroundingsScope(Surroundings& surroundings);
    ~SurroundingsScope();
    SurroundingsScope(const SurroundingsScope&) = delete;
    SurroundingsScope& operator=(const SurroundingsScope&) = delete;

  private:
    Surroundings* before_;
};

#endif
