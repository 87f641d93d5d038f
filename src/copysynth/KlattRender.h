#pragma once
// KlattRender: synthesizes a list of frames exactly as the document's synthesis does (natural
// voicing source, cascade/parallel, 16-bit samples as floats; n columns give n - 1 frames of
// sound, the last column is never heard), for the copy
// synthesis's measurements of its own estimate. The synthesizer's process-wide state (noise
// generator, pulse accumulators, skew sign) is set to fixed values for the run and restored
// afterwards, so that the same frames always give the same samples and the state that other
// syntheses see is left as it was. That state is per thread, so runs on several threads at once
// neither disturb each other nor change a sample.
#include "document/ParameterDefinition.h"

#include <array>
#include <cstdint>
#include <vector>

using FrameValues = std::array<std::int32_t, kParameterCount>;

struct Rendering {
    std::vector<float> samples; // (frames - 1) x samples per frame
    std::int64_t clippedSamples = 0;
    double peak = 0.0;              // largest magnitude before limiting, 1.0 = full scale
    std::vector<double> framePeaks; // the same for each frame (frames - 1 of them)
};

// `rate` 11025 (five cascade formants) or 22050 (eight).
Rendering renderFrames(const std::vector<FrameValues>& frames, int rate, int intervalMS);
