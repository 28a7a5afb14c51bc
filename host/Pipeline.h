// Frames from an input through a chain of effects to an output, each at work on a thread of its own.
#ifndef SPECIALEFFECTS_HOST_PIPELINE_H
#define SPECIALEFFECTS_HOST_PIPELINE_H

#include <functional>
#include <limits>

#include "EffectChain.h"
#include "VideoInput.h"
#include "VideoOutput.h"

namespace host {

struct PipelineLimits {
    int64_t frames = std::numeric_limits<int64_t>::max();
    /// Frames from this time on are not wanted, in the input's ticks.
    int64_t end = std::numeric_limits<int64_t>::max();
    bool lastFrameOnly = false;  ///< all frames go through the effects, the last one to the output
};

struct PipelineOutcome {
    int64_t frames = 0;       ///< that went through the effects
    int64_t end = 0;          ///< of the last one, in the input's ticks
    bool inputEnded = false;  ///< rather than a limit having been reached, or an interruption
};

/// Runs until the input ends, a limit is reached or the program is interrupted. Calls `progress` with the
/// number of frames after each one. Does not finish the output. Throws what the input, the effects or the
/// output throw.
PipelineOutcome RunPipeline(VideoInput& input, EffectChain& chain, VideoOutput& output,
                            const PipelineLimits& limits, const std::function<void(int64_t)>& progress);

}  // namespace host

#endif
