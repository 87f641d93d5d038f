#pragma once
// KlattReference: the synthesizer's equations written out once more, plainly and slowly, so
// that the optimized CKlattEngine (blocks of samples, vector lanes, a pipelined cascade) can be
// checked against them sample for sample. Every quantity is computed where the equations
// compute it, in the order they give; nothing is precomputed, fused or vectorized. Only for the
// tests.
//
// Noise-free frames only (ah, af and atu at 0): there every noise term is multiplied by zero,
// so the noise is left out. Flutter is not modelled (the driver runs with flutter 0). The skew
// sign that alternates from period to period starts as given (the engine's carries over from
// run to run). Units as in klatt_frame_t; output samples limited to -32768..32767.
#include "synthesis/CKlattEngine.h"

#include <vector>

class KlattReference
{
public:
    // The set-up is read from `run` as parwave reads it (model, output_select, rate, cascade
    // formants, glottal source, frame size, sampled source). skewSign +1: the first period is
    // lengthened by the skew, -1: shortened.
    explicit KlattReference(const klatt_global_t& run, int skewSign = 1);

    // One frame's samples (the frame is taken by value: the equations rewrite some fields).
    std::vector<int> frame(klatt_frame_t f);

    // dB to linear, from the table of amplitudes written out in KlattReference.cpp.
    static double dbToLinear(int dB);

private:
    struct Resonator {
        double a = 0, b = 0, c = 0, p1 = 0, p2 = 0;
    };
    void setResonator(Resonator& r, int frequency, int bandwidth) const;
    void setAntiresonator(Resonator& r, int frequency, int bandwidth) const;
    // One step of a resonator, or with `zero` of an antiresonator (it feeds back its inputs).
    static double resonate(Resonator& r, double x, bool zero = false);

    double glottalSourceValue();
    void pitchPeriodStart(klatt_frame_t& f, int sampleIndex);

    const klatt_global_t m_run;
    double m_dNegPiT = 0, m_dTwoPiT = 0;

    // The resonators, named as the signal flow names them.
    Resonator m_decimation, m_outputLowpass, m_glottal;
    Resonator m_cascade[9]; // formants 1..8 (index 0 unused)
    Resonator m_cascadeNasalPole, m_nasalZero;
    Resonator m_parallel[7]; // formants 1..6 (index 0 unused)
    Resonator m_parallelNasalPole;

    // Period state, carried from frame to frame.
    int m_nPeriodPos = 0, m_nPeriodLen = 0, m_nOpenLen = 0;
    double m_dPulseA = 0, m_dPulseB = 0, m_dVwave = 0;
    double m_dTiltKeep = 0, m_dTiltDecay = 0;
    double m_dGainVoice = 0;
    int m_nSkew = 0;

    // Gains of the current frame.
    double m_dGainParVoice = 0, m_dGainBypass = 0, m_dGainOverall = 0;
};
