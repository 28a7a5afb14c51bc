#include "tests/support/GoldenRun.h"

#include <memory>
#include <string>

#include "framework/Catalogue.h"
#include "imaging/GradientNoise.h"
#include "tests/support/TestFrame.h"

namespace {

uint64_t Mix(uint64_t hash, uint64_t value) {
    return (hash ^ value) * 0x100000001B3ULL;
}

struct Destroy {
    void operator()(CSpecialEffectFilter* effect) const {
        effect->Shutdown();
        effect->DeletingDestructor(1);
    }
};

std::unique_ptr<CSpecialEffectFilter, Destroy> Create(int row) {
    return std::unique_ptr<CSpecialEffectFilter, Destroy>(
        EffectCatalogue()[static_cast<size_t>(row - 1)].create());
}

}  // namespace

int GoldenRows() {
    return static_cast<int>(EffectCatalogue().size());
}
std::string GoldenRowName(int row) {
    char name[64] = "";
    Create(row)->GetInternalInfo()->GetName(name, sizeof name);
    return name;
}

uint64_t RunGolden(int row, const GoldenSize& size, TestClock& surroundings) {
    const SurroundingsScope scope(surroundings);
    // The noise tables are drawn when they are first needed: draw them from a fixed state.
    surroundings.Srand(1);
    surroundings.Shared<GradientNoise>(Rand);

    surroundings.Srand(20040229);
    surroundings.now = kClockAtLoading;
    const auto effect = Create(row);
    StreamDescription stream{0x1234, size.width, size.height, kFormatPlanar};
    uint64_t hash = 0xCBF29CE484222325ULL;
    hash = Mix(hash, effect->Configure(&stream));
    for (const TestFrame& picture : Scene(size.width, size.height, size.frames)) {
        TestFrame frame = picture;
        surroundings.now += 40;
        hash = Mix(hash, effect->ProcessFrame(frame.record()));
        hash = Mix(hash, frame.Checksum());
        if (!frame.GuardsIntact()) hash = Mix(hash, ~uint64_t{0});
    }
    return Mix(hash, static_cast<uint64_t>(surroundings.Rand()));
}

std::string GoldenKey(int row, const GoldenSize& size) {
    return std::to_string(row) + " " + std::to_string(size.width) + "x" + std::to_string(size.height);
}
