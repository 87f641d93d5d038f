#pragma once
// PitchTrackComputation: the pitch track of one channel, one value in Hz per analysis step
// (0 = unvoiced or rejected), from the cepstral estimate of each frame cleaned in three passes:
// isolated jumps removed, a forward three-point mean, and an energy gate. Value i belongs to the
// time i x the step (ms) from the channel's start.
//
// Plain result object: compute on any thread into an object that thread owns. Cepstral work
// arrays are per thread, and frames near the end of a recording deliberately reuse what the
// previous frame of the same thread left in them, so a track is computed frame by frame in order.
#include "document/AnalysisSettings.h"
#include "document/Channels.h"

#include <cstdint>
#include <vector>

class PitchTrackComputation
{
public:
    // Transform size of every frame.
    static constexpr int kTransformSize = 1024;
    // Most frames a track may have (over a day of audio at a step of 1 ms).
    static constexpr int kMaxFrames = 100000000;

    // Computes the track of the channel. Returns false (with a diagnostic line and an empty
    // track) when the step is shorter than one sample or not a number, or when the track would
    // have more than kMaxFrames frames.
    bool DoPitchCepstral(const Channels& channel, const PitchSettings& settings);

    std::vector<double> m_hdPitchFile; // m_nFrameCount values in Hz
    std::uint8_t m_bHavePitch = 0;
    std::int32_t m_nFrameCount = 0;
    std::int32_t m_nWindowSamples = 0; // analysis window in samples
    double m_dStepSamples = 0.0;       // analysis step in samples (not rounded)

    // Cleaning steps of DoPitchCepstral, callable alone on a track of m_nFrameCount values.
    // track[i] = raw[i] unless it differs from either neighbour by `deviation` Hz or more (after
    // truncating the differences); the first and the last frame stay 0. raw: m_nFrameCount values.
    void removeJumps(const std::vector<double>& raw, double deviation);
    // Forward, in place: track[j] = mean of track[j .. j+2] when none of them is 0, j <= F - 4.
    void smoothForward();
    // Frames whose mean energy (per sample over one step) does not exceed `threshold` per cent
    // of the loudest frame's become 0. Uses m_dStepSamples.
    void gateByEnergy(const Channels& channel, double threshold);
};
