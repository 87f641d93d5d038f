#pragma once
// SliceComputation: the level spectrum of one frame of a channel (the FFT/LPC slice) and its
// LPC envelope, one value per transform bin from 0 Hz up to the frequency range.
//
// The frame: `m_nFFTAverageStepSize` windows (at least one) spread evenly over one update
// interval from the start sample on; window j starts at start + j x interval / count. Each
// window holds the applied length of samples under a Hamming window of that length, and the
// transform of `m_nFFTWindowLength` points pads it with zeros. The slice is the mean power of
// the windows' spectra, in dB; the LPC envelope (order `m_nLPCNumberofCoefficients`, same
// windows) is the mean power of the windows' all-pole spectra E / |A(f)|^2, E being the
// residual energy, so the envelope lies on the spectrum it models. Samples past the end of the
// channel read as silence. No pre-emphasis: the slice shows the recording as it is.
//
// Levels are dB re full scale: a sine of amplitude 1.0 centred on a bin reads 0 dB. A window of
// digital silence contributes nothing to the envelope; its spectrum sits at the floor (about
// -120 dB). Plain result object: any thread may compute into an object it owns.
#include "document/AnalysisSettings.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class Channels;
class MyDocument;

// The document's FFT/LPC settings and the span the averaged windows cover (copied, so that a
// worker does not read the document).
struct SliceSettings : FFTLPCSettings {
    std::int32_t m_nUpdateIntervalMS = 10;

    static SliceSettings fromDocument(MyDocument& document);
};

class SliceComputation
{
public:
    explicit SliceComputation(const SliceSettings& settings = {}) : m_settings(settings) {}

    // The slice of `samples` (count samples at sampleRate) from sample trunc(startSample) on.
    // Returns false, with empty results, when there are no samples, the rate is not usable or
    // the start lies outside the recording.
    bool compute(const float* samples, std::size_t count, double sampleRate, double startSample);
    bool compute(const Channels& channel, double startSample);

    // The bin of the loudest level, refined by a parabola through it and its neighbours (Hz);
    // 0 without a result.
    double peakFrequency() const;

    SliceSettings m_settings;
    std::vector<double> m_dFrequency; // Hz of each kept bin: k x rate / transform points
    std::vector<double> m_dFFT;       // dB re full scale per bin
    std::vector<double> m_dLPC;       // dB re full scale per bin; empty when every window is silent
    double m_dStartSample = 0.0;
    double m_dSampleRate = 0.0;
    std::int32_t m_nTransformLength = 0; // points
    std::int32_t m_nAppliedSamples = 0;  // samples under the window
    std::int32_t m_nWindows = 0;         // windows averaged
    bool m_bSilent = true;               // every window held only zeros

private:
    // The averaged powers of the bins (`voiced` windows held sound) as levels in dB re full
    // scale: m_dFrequency, m_dFFT, m_bSilent and, with sound, m_dLPC.
    void storeLevels(const std::vector<double>& fftPower, const std::vector<double>& lpcPower, int voiced,
                     double binHz);
    void clear();
};
