#pragma once
// The spectral distance between two frames, and frame by frame between two recordings: how far
// a synthesis still is from the recording it copies.
//
// The distance of two frames is the RMS difference in dB between their LPC envelopes from 0 Hz
// to the frequency range, each envelope first made zero-mean, so that loudness alone costs
// nothing and only the shape (formants, tilt) counts. Two identical frames are 0 dB apart.
//
// RecordingComparison walks both recordings in steps of 10 ms with the spectrogram settings'
// window (length, pre-emphasis, LPC order, frequency range): each envelope is the LPC level
// at 128 points evenly spread over 0 .. range. Frames where either recording is more than the
// dynamic range below its own loudest frame (or silent) are skipped; recordings of different
// lengths are compared up to the shorter. Plain functions and a result object; any thread.
#include "display/SpectrogramComputation.h"

#include <cstdint>
#include <vector>

// RMS of (a - mean a) - (b - mean b) over the common length of a and b; 0 when both are empty.
double envelopeDistance(const std::vector<double>& a, const std::vector<double>& b);

// The same for envelopes on different frequency grids (Hz, ascending): b is interpolated
// linearly onto a's frequencies from 0 up to `topHz` and the ends of both grids.
double envelopeDistance(const std::vector<double>& frequencyA, const std::vector<double>& a,
                        const std::vector<double>& frequencyB, const std::vector<double>& b, double topHz);

struct FrameDistance {
    double timeMS = 0.0;     // start of the frame in both recordings
    double distanceDB = 0.0; // envelopeDistance of the two frames
};

class RecordingComparison
{
public:
    static constexpr double kStepMS = 10.0;
    static constexpr int kEnvelopePoints = 128;

    explicit RecordingComparison(const SpectrogramSettings& settings = {}) : m_settings(settings) {}

    // Compares two recordings of one rate; false (nothing compared) when the rates differ or
    // either has no samples.
    bool compare(const Channels& a, const Channels& b);

    // Mean of the frames' distances; NaN when no frame was compared.
    double meanDistance() const;

    SpectrogramSettings m_settings;
    std::vector<FrameDistance> m_frames; // the frames compared, in time order
    std::int32_t m_nFramesWalked = 0;    // frames looked at, skipped ones included
};
