#pragma once
// MelCepstralDistance: how far apart two recordings of one rate and one timing are in spectral
// envelope, the figure speech engineers quote for a resynthesis. Frames of 25 ms every 5 ms
// (lengths truncated to whole samples), symmetric Hann window, power spectrum on the next power
// of two, 40 triangular mel filters from 60 Hz to min(Nyquist, 5000 Hz), natural log amplitude,
// DCT-II scaled 1/40, coefficients 1 .. 24 (c0, the frame's level, left out).
// Per frame 10/ln10 x sqrt(2 x sum of squared coefficient differences) in dB; the figure is the
// mean over the frames whose level in the first recording is within `floorDB` of its loudest.
//
// Plain functions over sample arrays (full scale +-1): call from any thread.
#include <cstddef>

class MelCepstralDistance
{
public:
    static constexpr int kFilters = 40;
    static constexpr int kCoefficients = 24;

    struct Result {
        double distanceDB = 0.0; // not a number when no frame was kept
        int frames = 0;          // frames averaged
    };

    // a and b: n samples each at `sampleRate`. A rate whose frame needs a transform longer
    // than 8192 points, or a recording shorter than one frame, gives no frame.
    static Result compute(const float* a, const float* b, std::size_t n, double sampleRate,
                          double floorDB = 40.0);
};
