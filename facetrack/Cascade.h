// A Haar cascade: read from its text file and made ready for the classifier primitives.
#ifndef SPECIALEFFECTS_FACETRACK_CASCADE_H
#define SPECIALEFFECTS_FACETRACK_CASCADE_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "imaging/Prim.h"

/// The file is plain text, numbers separated by white space:
///
///     window width, window height, stages, classifiers, rectangles    (the last two over the whole file)
///     for each stage:      classifiers, stage threshold
///       for each classifier: rectangles
///         for each rectangle:  x, y, width, height, weight
///         classifier threshold, value below it, value at or above it
///
/// Numbers are what scanf reads with "%d" and "%g", "inf" and hexadecimal forms included, always with a
/// decimal point.
///
/// y is counted from the window's bottom: `PrepareCascade` turns every rectangle over. A file whose y is
/// counted from the top therefore suits a detector that is shown pictures upside down.
class Cascade {
  public:
    static constexpr int32_t kLoaded = 0;
    static constexpr int32_t kBadFile = -5;
    /// The most stages, classifiers or rectangles of a cascade: some hundred times what trained ones have.
    static constexpr int32_t kMostEntries = 1 << 20;

    /// Reads a file. kBadFile, with the cascade empty, when it cannot be read, ends early, holds something
    /// that is not a number, has a window below 3 by 3, more than kMostEntries of anything, or counts that do
    /// not agree. Memory grows with what the file really holds, not with what its header says.
    [[nodiscard]] int32_t LoadCascade(const std::string& path);

    /// Scales the weights to the window less `border` on each side, lowers the stage thresholds by `bias`,
    /// turns the rectangles over and builds the stages. 0, or the status of the primitive that failed;
    /// kPrimSizeError without any stage. Turned over, a rectangle must not begin at a negative coordinate,
    /// but it may reach past the window's far edges.
    [[nodiscard]] PrimStatus PrepareCascade(int32_t border, double bias);

    void Clear();

    struct Free {
        void operator()(PrimHaarState* state) const { PrimHaarClassifierFree(state); }
    };
    struct Stage {
        size_t firstClassifier, classifierCount, firstRect, rectCount;
        float threshold;
        std::unique_ptr<PrimHaarState, Free> state;
    };

    int32_t windowWidth = 0, windowHeight = 0;
    std::vector<Stage> stages;
    std::vector<int32_t> classifierRectCount;
    std::vector<float> classifierThreshold, valueBelow, valueAbove;
    std::vector<PrimRect> rects;
    std::vector<float> weights;
    /// The largest extents of the features, at least the window less 2.
    int32_t featureWidth = 0, featureHeight = 0;

  private:
    bool Read(const std::string& path);
};

#endif
