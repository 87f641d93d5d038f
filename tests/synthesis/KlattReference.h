#pragma once
// KlattReference: the synthesizer's equations written out once more, plainly and slowly, so
// that the optimized CKlattEngine can be checked against them sample for sample. Every
// quantity is computed where the equations compute it, in the order they give, with its own
// named variable; nothing is precomputed, fused or vectorized. Only for the tests.
//
// It keeps its own state (nothing process-wide) and its own noise generator, so it is
// compared with the engine on noise-free frames only (ah, af and atu at 0), where the noise
// is multiplied by zero. Flutter is not modelled (the driver runs with flutter 0). The skew
// sign that alternates from period to period starts as given (the engine's carries over
// from run to run). Units as in klatt_frame_t; output samples limited to -32768..32767.
#include "synthesis/CKlattEngine.h"

#include <cstdint>
#include <vector>

class KlattReference
{
public:
    struct Setup {
        int model = 1;           // 1 cascade/parallel, 2 all parallel
        int outputSelect = 0;    // 0 normal, 1..7 an internal signal
        int sampleRate = 11025;  // output samples per second
        int cascadeFormants = 5; // 1..8
        int glottalSource = 2;   // 1 impulsive, 2 natural, 3 sampled
        int samplesPerFrame = 110;
        const std::int32_t* sourceSamples = nullptr; // the sampled waveform (source 3)
        int sourceSampleCount = 100;
        double sourceSampleScale = 0.00001;
        int skewSign = 1; // +1: the first period is lengthened by the skew, -1: shortened
    };

    explicit KlattReference(const Setup& setup);

    // One frame's samples (the frame is taken by value: the equations rewrite some fields).
    std::vector<int> frame(klatt_frame_t f);

    // dB to linear, from the table of amplitudes written out in KlattReference.cpp.
    static double dbToLinear(int dB);
    // The natural pulse shape constant for an open phase of 40 .. 263 quarter-rate samples.
    static int pulseShape(int openLen);

private:
    struct Resonator {
        double a = 0, b = 0, c = 0, p1 = 0, p2 = 0;
    };
    void setResonator(Resonator& r, int frequency, int bandwidth) const;
    void setAntiresonator(Resonator& r, int frequency, int bandwidth) const;
    static double resonate(Resonator& r, double x);
    static double antiresonate(Resonator& r, double x);

    double glottalSourceValue();
    void pitchPeriodStart(klatt_frame_t& f, int sampleIndex);
    double nextNoise();

    Setup m_setup;
    double m_dNegPiT = 0, m_dTwoPiT = 0;

    // The resonators, named as the signal flow names them.
    Resonator m_decimation, m_outputLowpass, m_glottal;
    Resonator m_cascade[9]; // formants 1..8 (index 0 unused)
    Resonator m_cascadeNasalPole, m_nasalZero;
    Resonator m_parallel[7]; // formants 1..6 (index 0 unused)
    Resonator m_parallelNasalPole;

    // Period state, carried from frame to frame.
    int m_nPeriodPos = 0, m_nPeriodLen = 0, m_nOpenLen = 0, m_nModPoint = 0;
    double m_dPulseA = 0, m_dPulseB = 0, m_dVwave = 0;
    double m_dTiltKeep = 0, m_dTiltDecay = 0;
    double m_dGainVoice = 0, m_dGainBreath = 0;
    int m_nSkew = 0;
    int m_nNoiseSample = 0;
    double m_dNoiseLast = 0;
    std::uint32_t m_nNoiseState = 12345;

    // Gains of the current frame.
    double m_dGainAspiration = 0, m_dGainFrication = 0, m_dGainParVoice = 0, m_dGainBypass = 0;
    double m_dGainOverall = 0;
};
