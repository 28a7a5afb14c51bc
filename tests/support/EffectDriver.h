// Drives an effect as a host does.
#ifndef SPECIALEFFECTS_TESTS_SUPPORT_EFFECTDRIVER_H
#define SPECIALEFFECTS_TESTS_SUPPORT_EFFECTDRIVER_H

#include <memory>
#include <string>

#include "framework/SpecialEffectFactory.h"
#include "tests/support/TestFrame.h"

/// Owns one effect and gives its slots short names.
class EffectDriver {
  public:
    /// Creates the effect with this GUID, in registry form, through the factory. An unknown GUID throws
    /// std::invalid_argument, which fails the test.
    explicit EffectDriver(const char* guid);
    /// An effect made by the test itself; taken over.
    explicit EffectDriver(CSpecialEffectFilter* effect) : effect_(effect) {}

    template <class Effect, class... Arguments>
    static EffectDriver Of(Arguments... arguments) {
        return EffectDriver(std::make_unique<Effect>(arguments...).release());
    }

    CSpecialEffectFilter* operator->() const { return effect_.get(); }
    CSpecialEffectFilter& operator*() const { return *effect_; }

    ResultCode Configure(int32_t width, int32_t height, int32_t format = kFormatPlanar);
    ResultCode Process(TestFrame& frame);
    ResultCode Set(const std::string& name, const std::string& value);
    /// The property's present value as text; "?" and the code when it is refused.
    std::string Get(const std::string& name);
    std::string Name() const;

  private:
    struct Destroy {
        void operator()(CSpecialEffectFilter* effect) const {
            if (effect == nullptr) return;
            effect->Shutdown();
            effect->DeletingDestructor(1);
        }
    };
    std::unique_ptr<CSpecialEffectFilter, Destroy> effect_;
};

/// How a few effects differ from the rest.
struct ContractTraits {
    bool needsWorkspace = true;  ///< false: frames are processed before `Configure` and after `Shutdown`
    bool needsLuma = true;       ///< false: a null luma plane is accepted
    bool planarOnly = true;      ///< false: packed frames are processed
    /// false: `Configure` answers 0 to everything, and frames of a stream that is not served find no
    /// workspace
    bool refusesStreams = true;
    bool keepsRefusedFrames = true;  ///< false: a frame that is refused may be changed
};

/// The common behaviour that every effect has to show: entry checks in their order, refusals before
/// `Configure` and after `Shutdown`, formats, sizes that are not served, second `Configure`, packed frames,
/// tiny and odd sizes. Reports through GoogleTest.
void ExpectContract(EffectDriver& effect, const ContractTraits& traits = {});

/// An effect without a table of properties, which accepts every name and stores nothing.
void ExpectNoProperties(const char* guid);

/// The property `name`, boolean, in all spellings; `initial` is what runs at the start.
void ExpectBooleanProperty(EffectDriver& effect, const std::string& name, bool initial);

#endif
