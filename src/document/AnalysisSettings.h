#pragma once
// The settings each analysis reads, one struct per analysis. MyDocument holds them as its own
// fields (it derives from these structs), so a computation takes a copy of the document's
// settings in one assignment and a worker never reads the document. Plain values, any thread.
#include <cstdint>

class MyDocument;

// Cepstral pitch track.
struct PitchSettings {
    double m_dPitchWindowLength = 35.0;      // ms
    double m_dPitchStepSize = 10.0;          // ms
    double m_dFreqDeviation = 100.0;         // Hz: a jump of at least this much is removed
    double m_dPitchTrackingThreshHold = 1.0; // per cent of the loudest frame's energy
    double m_dCalculationLow = 50.0;         // Hz
    double m_dCalculationHigh = 500.0;       // Hz

    static PitchSettings fromDocument(const MyDocument& document);
};

// Spectrogram and its formant tracks.
struct SpectrogramSettings {
    std::int32_t m_nSpecWindowLength = 128;    // FFT frame length in samples
    std::int32_t m_nSpecDynamicRange = 50;     // dB shown
    std::int32_t m_nSpecfrequencyRange = 5000; // Hz at the top row
    double m_dPreEmphasis = 0.98;              // forward-difference coefficient, <= 0 off
    std::uint8_t m_bSpecDrawFormantTracking = 1;
    std::int32_t m_nSpecLPCNumberofCoefficients = 14;

    static SpectrogramSettings fromDocument(const MyDocument& document);
};

// FFT/LPC slice (the span its windows cover is channel 0's update interval, not one of these).
struct FFTLPCSettings {
    std::int32_t m_nFFTWindowLength = 256;       // transform points, a power of two 32 .. 8192
    std::int32_t m_nFFTAppliedWindowLength = 23; // ms of samples windowed (at most the transform)
    std::int32_t m_nFFTfrequencyRange = 5000;    // Hz: bins above it are not kept
    std::int32_t m_nFFTAverageStepSize = 10;     // windows averaged over one update interval
    std::int32_t m_nLPCNumberofCoefficients = 14;
};
