// The effects that a run applies.
#ifndef SPECIALEFFECTS_HOST_EFFECTCHAIN_H
#define SPECIALEFFECTS_HOST_EFFECTCHAIN_H

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Errors.h"
#include "Frame.h"
#include "sfx/sfx.h"

namespace host {

/// The effect of this name; throws UsageError with the nearest names.
const sfx_effect_info& RequireEffect(const std::string& name);

/// Effects, one after the other, on every frame.
class EffectChain {
  public:
    /// Creates the effects that the texts of `-e` ask for. Adds a note for a value that is out of range.
    /// Throws UsageError.
    EffectChain(const std::vector<std::string>& texts, const Notes& notes);

    void SetSeed(uint32_t seed);
    /// Where data files are looked for first.
    void SetDataFolder(const std::string& folder);
    /// Throws UsageError when no effect takes settings, and Failure when the file cannot be read.
    void LoadSettings(const std::string& file);

    /// Makes everything ready for frames of one size. Adds a note for a data file that is missing.
    void Prepare(int width, int height);

    /// Changes the frame in place. Its time is in units of `timeBase`.
    void Process(Frame& frame, AVRational timeBase);

    /// The effects, in their order.
    std::vector<const sfx_effect_info*> Links() const;

  private:
    struct Destroy {
        void operator()(sfx_effect* effect) const { sfx_destroy(effect); }
    };

    void Check(int32_t status, const char* what) const;

    const Notes& notes_;
    std::unique_ptr<sfx_effect, Destroy> effect_;
};

}  // namespace host

#endif
