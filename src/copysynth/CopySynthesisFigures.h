#pragma once
// CopySynthesisFigures: how closely a synthesis follows the recording it copies, in the figures
// a speech scientist judges a copy synthesis by. The synthesis is first brought to the
// recording's rate (linear interpolation) and both are cut to the shorter length; then
//  - the mel-cepstral distance (MelCepstralDistance, frames within 40 dB of the loudest),
//  - the median absolute level difference of 20 ms frames (RMS, dB) over the recording's
//    frames within 30 dB of its loudest,
//  - the median relative f0 error and the share of gross errors (more than 20 %) over the
//    frames that the pitch track (PitchTrackComputation) finds voiced in both,
//  - the median relative F1 and F2 errors of the formant tracks (SpectrogramComputation, one
//    column per pitch frame) over those co-voiced frames where both have the formant,
//  - the samples of the synthesis as given (not resampled) at or beyond full scale.
// Figures without a frame to measure are not a number. Relative errors are in per cent.
//
// Plain result object: measure on any thread; the analyses keep their work arrays per thread.
#include "display/PitchTrackComputation.h"
#include "display/SpectrogramComputation.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class Channels;

class CopySynthesisFigures
{
public:
    // Floors relative to the loudest frame, dB.
    static constexpr double kCepstralFloorDB = 40.0;
    static constexpr double kLevelFloorDB = 30.0;
    // Level frames, ms; a relative f0 error above this fraction is gross.
    static constexpr double kLevelFrameMS = 20.0;
    static constexpr double kGrossError = 0.20;

    double m_dMelCepstralDistanceDB = 0.0;
    int m_nCepstralFrames = 0;
    double m_dLevelDifferenceDB = 0.0;
    int m_nLevelFrames = 0;
    double m_dF0ErrorPercent = 0.0;
    double m_dF0GrossPercent = 0.0;
    int m_nCoVoicedFrames = 0;
    double m_dF1ErrorPercent = 0.0;
    double m_dF2ErrorPercent = 0.0;
    std::int64_t m_nClippedSamples = 0;

    // All figures of `synthesis` against `original`, the analyses run with the given settings
    // (those of the recording's rate). Throws std::bad_alloc when the copies do not fit.
    static CopySynthesisFigures measure(const Channels& original, const Channels& synthesis,
                                        const PitchSettings& pitch, const SpectrogramSettings& spectrogram);

    // One line, no newline: "mcd_db=4.21 level_db=1.90 f0_err_pct=0.80 f0_gross_pct=1.2
    // f1_err_pct=3.10 f2_err_pct=4.00 clipped=0 covoiced=120"; "nan" for a figure not measured.
    std::string summaryLine() const;

    // x (n samples at rate `from`) at rate `to` by linear interpolation: int(n x to / from)
    // samples, sample i read at time i / to, the last sample held beyond the end.
    static std::vector<float> resampleLinear(const float* x, std::size_t n, double from, double to);
    // Median absolute difference of the 20 ms frame levels of a and b (n samples each) over the
    // frames of a within kLevelFloorDB of its loudest; `frames` gets how many.
    static double levelDifference(const float* a, const float* b, std::size_t n, double sampleRate,
                                  int& frames);
    // Samples at or beyond full scale (32767/32768 and -1 included): the synthesizer limits its
    // output to the 16-bit range, so in its files a clipped sample sits exactly there.
    static std::int64_t clippedSamples(const float* x, std::size_t n);

private:
    void measurePitchAndFormants(const Channels& original, const Channels& synthesis,
                                 const PitchSettings& pitch, const SpectrogramSettings& spectrogram);
};
