#include "synthesis/KlattReference.h"

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

// Natural pulse shape for open phases of 40 .. 263 quarter-rate samples, sixteen to a line.
const int kPulseShape[224] = {
    1200, 1142, 1088, 1038, 991, 948, 907, 869, 833, 799, 768, 738, 710, 683, 658, 634, // 40-55
    612,  590,  570,  551,  533, 515, 499, 483, 468, 454, 440, 427, 415, 403, 391, 380, // 56-71
    370,  360,  350,  341,  332, 323, 315, 307, 300, 292, 285, 278, 272, 265, 259, 253, // 72-87
    247,  242,  237,  231,  226, 221, 217, 212, 208, 204, 199, 195, 192, 188, 184, 180, // 88-103
    177,  174,  170,  167,  164, 161, 158, 155, 153, 150, 147, 145, 142, 140, 137, 135, // 104-119
    133,  131,  128,  126,  124, 122, 120, 119, 117, 115, 113, 111, 110, 108, 106, 105, // 120-135
    103,  102,  100,  99,   97,  96,  95,  93,  92,  91,  90,  88,  87,  86,  85,  84,  // 136-151
    83,   82,   80,   79,   78,  77,  76,  75,  75,  74,  73,  72,  71,  70,  69,  68,  // 152-167
    68,   67,   66,   65,   64,  64,  63,  62,  61,  61,  60,  59,  59,  58,  57,  57,  // 168-183
    56,   56,   55,   55,   54,  54,  53,  53,  52,  52,  51,  51,  50,  50,  49,  49,  // 184-199
    48,   48,   47,   47,   46,  46,  45,  45,  44,  44,  43,  43,  42,  42,  41,  41,  // 200-215
    41,   41,   40,   40,   39,  39,  38,  38,  38,  38,  37,  37,  36,  36,  36,  36,  // 216-231
    35,   35,   35,   35,   34,  34,  33,  33,  33,  33,  32,  32,  32,  32,  31,  31,  // 232-247
    31,   31,   30,   30,   30,  30,  29,  29,  29,  29,  28,  28,  28,  28,  27,  27,  // 248-263
};

// The impulsive source's excitation at period positions 0, 1 and 2.
const double kDoublet[3] = {0.0, 13000000.0, -13000000.0};

} // namespace

double KlattReference::dbToLinear(int dB)
{
    if (dB < 0 || dB > 87)
        return 0.0;
    return kAmplitudes[dB] * 0.001;
}

int KlattReference::pulseShape(int openLen)
{
    return kPulseShape[openLen - 40];
}

KlattReference::KlattReference(const Setup& setup) : m_setup(setup)
{
    const int rate = m_setup.sampleRate;
    const int lowpassFreq = 950 * rate / 10000;
    const int lowpassBw = 630 * rate / 10000;
    m_dNegPiT = -3.1415927 / rate;
    m_dTwoPiT = -2.0 * m_dNegPiT;
    setResonator(m_decimation, lowpassFreq, lowpassBw);
    m_nSkew = m_setup.skewSign < 0 ? -1 : 0;
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
    int negated = -frequency;
    if (negated >= 0)
        negated = -1;
    setResonator(r, negated, bandwidth);
    r.a = 1.0 / r.a;
    r.b = -r.b * r.a;
    r.c = -r.c * r.a;
}

double KlattReference::resonate(Resonator& r, double x)
{
    const double y = r.a * x + r.b * r.p1 + r.c * r.p2;
    r.p2 = r.p1;
    r.p1 = y;
    return y;
}

double KlattReference::antiresonate(Resonator& r, double x)
{
    const double y = r.a * x + r.b * r.p1 + r.c * r.p2;
    r.p2 = r.p1;
    r.p1 = x;
    return y;
}

// Its value never reaches the output of a noise-free frame (every noise gain is 0).
double KlattReference::nextNoise()
{
    m_nNoiseState = m_nNoiseState * 1103515245u + 12345u;
    const int random = static_cast<int>((m_nNoiseState >> 1) & 0x7fffffff);
    m_nNoiseSample = random % 16383 - 8191;
    double noise = m_nNoiseSample + 0.75 * m_dNoiseLast;
    m_dNoiseLast = noise;
    if (m_nPeriodPos > m_nModPoint)
        noise *= 0.5;
    return noise;
}

double KlattReference::glottalSourceValue()
{
    switch (m_setup.glottalSource) {
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
        const std::int32_t* s = m_setup.sourceSamples;
        const int count = m_setup.sourceSampleCount;
        const double t = static_cast<double>(m_nPeriodPos) / m_nPeriodLen * count;
        const int i = static_cast<int>(t);
        // The waveform is one period: a reading past its last point continues from its start.
        const double here = s[i % count];
        const double next = s[(i + 1) % count];
        return (here + (next - here) * (t - i)) * m_setup.sourceSampleScale;
    }
    default:
        return 0.0;
    }
}

void KlattReference::pitchPeriodStart(klatt_frame_t& f, int sampleIndex)
{
    bool updateTilt = true;
    if (f.f0 > 0) {
        m_nPeriodLen = 40 * m_setup.sampleRate / f.f0;
        m_dGainVoice = dbToLinear(f.av);
        m_nModPoint = m_nPeriodLen;
        if (f.av >= 1)
            m_nModPoint = m_nModPoint >> 1;
        m_dGainBreath = dbToLinear(f.atu) * 0.1;
        m_nOpenLen = 4 * f.oq;
        if (m_setup.glottalSource == 1 && m_nOpenLen > 263)
            m_nOpenLen = 263;
        if (m_nOpenLen >= m_nPeriodLen - 1)
            m_nOpenLen = m_nPeriodLen - 2;
        if (m_nOpenLen < 40)
            m_nOpenLen = 40;
        m_dPulseB = pulseShape(m_nOpenLen);
        m_dPulseA = m_dPulseB * m_nOpenLen * 0.333;
        setResonator(m_glottal, 0, m_setup.sampleRate / m_nOpenLen);
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
        m_nModPoint = 4;
        m_dGainBreath = 0.0;
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
    // Frame set-up: gains.
    f.av = f.av - 7 < 0 ? 0 : f.av - 7;
    m_dGainAspiration = dbToLinear(f.ah) * 0.05;
    m_dGainFrication = dbToLinear(f.af) * 0.25;
    m_dGainParVoice = dbToLinear(f.apv);
    m_dGainBypass = dbToLinear(f.ab) * 0.05;
    f.gain = f.gain - 3;
    if (f.gain <= 0)
        f.gain = 57;
    m_dGainOverall = dbToLinear(f.gain);

    // Cascade formants, nasal pole and zero.
    const int fc = m_setup.cascadeFormants;
    if (fc >= 8)
        setResonator(m_cascade[8], f.f8, f.b8);
    if (fc >= 7)
        setResonator(m_cascade[7], f.f7, f.b7);
    if (fc >= 6)
        setResonator(m_cascade[6], f.f6, f.b6);
    if (fc >= 5)
        setResonator(m_cascade[5], f.f5, f.b5);
    setResonator(m_cascade[4], f.f4, f.b4);
    setResonator(m_cascade[3], f.f3, f.b3);
    setResonator(m_cascade[2], f.f2, f.b2);
    setResonator(m_cascade[1], f.f1, f.b1);
    setResonator(m_cascadeNasalPole, f.fnp, f.bnp);
    setAntiresonator(m_nasalZero, f.fnz, f.bnz);

    // Parallel formants with their amplitudes.
    setResonator(m_parallel[1], f.f1, f.b1f);
    m_parallel[1].a *= dbToLinear(f.a1f) * 0.4;
    setResonator(m_parallelNasalPole, f.fnp, f.bnp);
    m_parallelNasalPole.a *= dbToLinear(f.anv) * 0.6;
    setResonator(m_parallel[2], f.f2, f.b2f);
    m_parallel[2].a *= dbToLinear(f.a2f) * 0.15;
    setResonator(m_parallel[3], f.f3, f.b3f);
    m_parallel[3].a *= dbToLinear(f.a3f) * 0.06;
    setResonator(m_parallel[4], f.f4, f.b4f);
    m_parallel[4].a *= dbToLinear(f.a4f) * 0.04;
    setResonator(m_parallel[5], f.f5, f.b5f);
    m_parallel[5].a *= dbToLinear(f.a5f) * 0.022;
    setResonator(m_parallel[6], f.f6, f.b6f);
    m_parallel[6].a *= dbToLinear(f.a6f) * 0.03;
    setResonator(m_outputLowpass, 0, m_setup.sampleRate / 2);

    std::vector<int> out;
    double tiltLast = 0.0;
    double previousParGlot = 0.0;
    for (int sampleIndex = 0; sampleIndex < m_setup.samplesPerFrame; ++sampleIndex) {
        const double noise = nextNoise();

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
        if (m_nPeriodPos < m_nOpenLen)
            voice += m_nNoiseSample * m_dGainBreath;

        double glot = m_dGainVoice * voice;
        double parGlot = m_dGainParVoice * voice;
        const double aspiration = m_dGainAspiration * noise;
        glot += aspiration;
        const double frication = m_dGainFrication * noise;

        double cascadeOut = 0.0;
        if (m_setup.model != 2) {
            double x = antiresonate(m_nasalZero, glot);
            x = resonate(m_cascadeNasalPole, x);
            for (int k = 8; k >= 1; --k)
                if (fc >= k)
                    x = resonate(m_cascade[k], x);
            cascadeOut = x;
        }

        parGlot += aspiration;
        double sum = cascadeOut + resonate(m_parallel[1], parGlot) + resonate(m_parallelNasalPole, parGlot);
        const double source = frication + parGlot - previousParGlot;
        previousParGlot = parGlot;
        for (int k = 6; k >= 2; --k)
            sum = resonate(m_parallel[k], source) - sum;
        const double bypass = m_dGainBypass * source;
        sum = bypass - sum;

        double selected = sum;
        switch (m_setup.outputSelect) {
        case 1:
            selected = voice;
            break;
        case 2:
            selected = aspiration;
            break;
        case 3:
            selected = frication;
            break;
        case 4:
            selected = glot;
            break;
        case 5:
            selected = parGlot;
            break;
        case 6:
            selected = bypass;
            break;
        case 7:
            selected = source;
            break;
        default:
            break;
        }
        const double value = resonate(m_outputLowpass, selected) * m_dGainOverall;
        int sample = 0;
        if (value < -32768.0)
            sample = -32768;
        else if (value > 32767.0)
            sample = 32767;
        else
            sample = static_cast<int>(value);
        out.push_back(sample);
    }
    return out;
}
