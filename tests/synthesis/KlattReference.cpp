#include "KlattReference.h"

#include "document/ParameterDefinition.h"

#include <algorithm>
#include <cmath>

namespace
{

// Linear amplitude x 1000 for 0 .. 87 dB, eleven values to a line.
const double kAmplitudes[88] = {
    0,     0,     0,     0,     0,     0,     0,     0,     0,     0,     0,     // 0-10
    0,     0,     6,     7,     8,     9,     10,    11,    13,    14,    16,    // 11-21
    18,    20,    22,    25,    28,    32,    35,    40,    45,    51,    57,    // 22-32
    64,    71,    80,    90,    101,   114,   128,   142,   159,   179,   202,   // 33-43
    227,   256,   284,   318,   359,   405,   455,   512,   568,   638,   719,   // 44-54
    811,   911,   1024,  1137,  1276,  1438,  1622,  1823,  2048,  2273,  2552,  // 55-65
    2875,  3244,  3645,  4096,  4547,  5104,  5751,  6488,  7291,  8192,  9093,  // 66-76
    10207, 11502, 12976, 14582, 16384, 18350, 20644, 23429, 26214, 29491, 32767, // 77-87
};

// The impulsive source's excitation at period positions 0, 1 and 2.
const double kDoublet[3] = {0.0, 13000000.0, -13000000.0};

// The gain factors of the parallel formants F1..F6 (index 0 unused).
const double kParallelFactor[7] = {0.0, 0.4, 0.15, 0.06, 0.04, 0.022, 0.03};

} // namespace

double KlattReference::dbToLinear(int dB)
{
    if (dB < 0 || dB > 87)
        return 0.0;
    return kAmplitudes[dB] * 0.001;
}

KlattReference::KlattReference(const klatt_global_t& run, int skewSign) : m_run(run)
{
    const int rate = m_run.sample_rate;
    m_dNegPiT = -3.1415927 / rate;
    m_dTwoPiT = -2.0 * m_dNegPiT;
    setResonator(m_decimation, 950 * rate / 10000, 630 * rate / 10000);
    m_nSkew = skewSign < 0 ? -1 : 0;
}

void KlattReference::setResonator(Resonator& r, int frequency, int bandwidth) const
{
    const double radius = std::exp(m_dNegPiT * bandwidth);
    r.c = -(radius * radius);
    r.b = 2.0 * radius * std::cos(m_dTwoPiT * frequency);
    r.a = 1.0 - r.b - r.c;
}

void KlattReference::setAntiresonator(Resonator& r, int frequency, int bandwidth) const
{
    setResonator(r, std::min(-frequency, -1), bandwidth);
    r.a = 1.0 / r.a;
    r.b = -r.b * r.a;
    r.c = -r.c * r.a;
}

double KlattReference::resonate(Resonator& r, double x, bool zero)
{
    const double y = r.a * x + r.b * r.p1 + r.c * r.p2;
    r.p2 = r.p1;
    r.p1 = zero ? x : y;
    return y;
}

double KlattReference::glottalSourceValue()
{
    switch (m_run.glottal_source) {
    case 1: {
        double x = 0.0;
        if (m_nPeriodPos >= 0 && m_nPeriodPos <= 2)
            x = kDoublet[m_nPeriodPos];
        return resonate(m_glottal, x);
    }
    case 2:
        if (m_nPeriodPos < m_nOpenLen) {
            m_dPulseA -= m_dPulseB;
            m_dVwave += m_dPulseA;
            return m_dVwave * 0.028;
        }
        m_dVwave = 0.0;
        return 0.0;
    case 3: {
        if (m_nPeriodLen == 0)
            return 0.0;
        const std::int32_t* s = m_run.source_samples;
        const int count = m_run.source_sample_count;
        const double t = static_cast<double>(m_nPeriodPos) / m_nPeriodLen * count;
        const int i = static_cast<int>(t);
        // The waveform is one period: a reading past its last point continues from its start.
        const double here = s[i % count];
        const double next = s[(i + 1) % count];
        return (here + (next - here) * (t - i)) * m_run.source_sample_scale;
    }
    default:
        return 0.0;
    }
}

void KlattReference::pitchPeriodStart(klatt_frame_t& f, int sampleIndex)
{
    bool updateTilt = true;
    if (f.f0 > 0) {
        m_nPeriodLen = 40 * m_run.sample_rate / f.f0;
        m_dGainVoice = dbToLinear(f.av);
        m_nOpenLen = 4 * f.oq;
        if (m_run.glottal_source == 1 && m_nOpenLen > 263)
            m_nOpenLen = 263;
        if (m_nOpenLen >= m_nPeriodLen - 1)
            m_nOpenLen = m_nPeriodLen - 2;
        if (m_nOpenLen < 40)
            m_nOpenLen = 40;
        // The shape table itself is checked in KlattReferenceTest.cpp.
        m_dPulseB = CKlattEngine::B0[m_nOpenLen - 40];
        m_dPulseA = m_dPulseB * m_nOpenLen * 0.333;
        setResonator(m_glottal, 0, m_run.sample_rate / m_nOpenLen);
        const double scale = m_nOpenLen * 0.00833;
        m_glottal.a = m_glottal.a * (scale * scale);
        const int closed = m_nPeriodLen - m_nOpenLen;
        if (f.skew > closed)
            f.skew = closed;
        m_nSkew = m_nSkew < 0 ? -f.skew : f.skew;
        m_nPeriodLen += m_nSkew;
        m_nSkew = -m_nSkew;
        if (m_nPeriodLen == 4 && sampleIndex != 0)
            updateTilt = false;
    } else {
        m_nPeriodLen = 4;
        m_dGainVoice = 0.0;
        m_dPulseA = 0.0;
        m_dPulseB = 0.0;
        if (sampleIndex != 0)
            updateTilt = false;
    }
    if (updateTilt) {
        m_dTiltDecay = 0.033 * f.tl;
        m_dTiltKeep = m_dTiltDecay > 0 ? 1.0 - m_dTiltDecay : 1.0;
    }
}

std::vector<int> KlattReference::frame(klatt_frame_t f)
{
    // Frame set-up: gains, then the cascade formants (rows f1, f2, ... count down from f1), the
    // nasal pole and zero, and the parallel formants with their amplitudes.
    f.av = f.av - 7 < 0 ? 0 : f.av - 7;
    m_dGainParVoice = dbToLinear(f.apv);
    m_dGainBypass = dbToLinear(f.ab) * 0.05;
    f.gain = f.gain - 3;
    if (f.gain <= 0)
        f.gain = 57;
    m_dGainOverall = dbToLinear(f.gain);
    for (int k = 1; k <= m_run.cascade_formants; ++k)
        setResonator(m_cascade[k], f[Row::f1 + 1 - k], f[Row::b1 + 1 - k]);
    setResonator(m_cascadeNasalPole, f.fnp, f.bnp);
    setAntiresonator(m_nasalZero, f.fnz, f.bnz);
    for (int k = 1; k <= 6; ++k) {
        setResonator(m_parallel[k], f[Row::f1 + 1 - k], f[Row::b1f + 1 - k]);
        m_parallel[k].a *= dbToLinear(f[Row::a1f + 1 - k]) * kParallelFactor[k];
    }
    setResonator(m_parallelNasalPole, f.fnp, f.bnp);
    m_parallelNasalPole.a *= dbToLinear(f.anv) * 0.6;
    setResonator(m_outputLowpass, 0, m_run.sample_rate / 2);

    std::vector<int> out;
    double tiltLast = 0.0;
    double previousParGlot = 0.0;
    for (int sampleIndex = 0; sampleIndex < m_run.samples_per_frame; ++sampleIndex) {
        double voice = 0.0;
        for (int step = 0; step < 4; ++step) {
            const double source = glottalSourceValue();
            if (m_nPeriodPos >= m_nPeriodLen) {
                m_nPeriodPos = 0;
                pitchPeriodStart(f, sampleIndex);
            }
            voice = resonate(m_decimation, source);
            m_nPeriodPos += 1;
        }
        voice = voice * m_dTiltKeep + tiltLast * m_dTiltDecay;
        tiltLast = voice;
        const double glot = m_dGainVoice * voice;
        const double parGlot = m_dGainParVoice * voice;

        double cascadeOut = 0.0;
        if (m_run.model != 2) {
            cascadeOut = resonate(m_cascadeNasalPole, resonate(m_nasalZero, glot, true));
            for (int k = m_run.cascade_formants; k >= 1; --k)
                cascadeOut = resonate(m_cascade[k], cascadeOut);
        }

        // F1 and the nasal pole take the parallel voicing, F2..F6 its first difference, each
        // subtracting what came before.
        double sum = cascadeOut + resonate(m_parallel[1], parGlot) + resonate(m_parallelNasalPole, parGlot);
        const double source = parGlot - previousParGlot;
        previousParGlot = parGlot;
        for (int k = 6; k >= 2; --k)
            sum = resonate(m_parallel[k], source) - sum;
        const double bypass = m_dGainBypass * source;
        sum = bypass - sum;

        // Outputs 1..7 tap a signal on the way (2 and 3, aspiration and frication, are silent).
        const double taps[8] = {sum, voice, 0.0, 0.0, glot, parGlot, bypass, source};
        const int select = m_run.output_select;
        const double value =
            resonate(m_outputLowpass, select >= 1 && select <= 7 ? taps[select] : sum) * m_dGainOverall;
        out.push_back(static_cast<int>(std::clamp(value, -32768.0, 32767.0)));
    }
    return out;
}
