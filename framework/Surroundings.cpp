#include "framework/Surroundings.h"

#include <cstdlib>

#include "framework/ProcessClock.h"

namespace {

/// Null means the process's own surroundings.
thread_local constinit Surroundings* scoped = nullptr;

/// Never destroyed: a host may run effects until the process exits.
Surroundings& OfProcess() {
    static ProcessSurroundings& surroundings = *std::make_unique<ProcessSurroundings>().release();
    return surroundings;
}

}  // namespace

int64_t ProcessSurroundings::Milliseconds() {
    return ProcessMilliseconds();
}
int32_t ProcessSurroundings::Rand() {
    return std::rand();
}
void ProcessSurroundings::Srand(uint32_t seed) {
    std::srand(seed);
}

Surroundings& CurrentSurroundings() {
    return scoped != nullptr ? *scoped : OfProcess();
}

int32_t Rand() {
    return scoped != nullptr ? scoped->Rand() : std::rand();
}

void FillRandom(std::span<int32_t> numbers) {
    if (Surroundings* const current = scoped; current != nullptr) {
        for (int32_t& number : numbers) number = current->Rand();
    } else {
        for (int32_t& number : numbers) number = std::rand();
    }
}

SurroundingsScope::SurroundingsScope(Surroundings& surroundings) : before_(scoped) {
    scoped = &surroundings;
}
SurroundingsScope::~SurroundingsScope() {
    scoped = before_;
}
