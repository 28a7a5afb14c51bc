// Effects, one after the other, on every frame.
#ifndef SPECIALEFFECTS_HOST_EFFECTCHAIN_H
#define SPECIALEFFECTS_HOST_EFFECTCHAIN_H

#include <optional>
#include <string>
#include <vector>

#include "EffectNames.h"
#include "EffectRequest.h"
#include "Errors.h"
#include "Frame.h"
#include "Module.h"

namespace host {

/// The effect under this name; throws Failure when the loaded module has none.
EffectHandle CreateEffect(const Module& module, const EffectName& name);

/// Describes the stream to the effect, and points Picture Me at the cascade that came with the module when
/// there is none in the current directory. Throws Failure.
void Configure(CSpecialEffectFilter& effect, const EffectName& name, const Module& module, int width,
               int height, int32_t format);

/// The cascade that Picture Me uses: the one in the current directory, else the one that came with the
/// module. Absolute; empty when there is none.
std::string CascadeFile(const Module& module);

class EffectChain {
  public:
    /// Creates the effects that the texts of `-e` ask for. Throws UsageError and Failure.
    EffectChain(const Module& module, const std::vector<std::string>& texts, const Notes& notes);

    /// Makes everything ready for frames of one size and format. Properties are set before and after the
    /// stream is described: some effects read them while they build their tables, others reset them then.
    void Configure(int width, int height, int32_t format, const std::optional<std::string>& settingsFile);

    /// Changes the frame in place. Throws UsageError for an effect that does not process the format.
    void Process(Frame& frame);

  private:
    struct Link {
        const EffectName* name;
        EffectHandle effect;
        std::vector<Assignment> assignments;
    };

    void LoadSettings(const std::string& file);
    void TellOfClampedValues(const Link& link) const;

    const Module& module_;
    const Notes& notes_;
    std::vector<Link> links_;
};

}  // namespace host

#endif
