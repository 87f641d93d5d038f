// The synthesizer's per-sample loops. A frame is produced in blocks of samples, each in two
// passes: the voicing pass runs the noise and the quarter-rate glottal source with its
// decimation low-pass and writes the source signals of the block; the filter pass runs the
// cascade and parallel branches and the output low-pass over them. The passes are templates
// on the glottal source and on the cascade length, picked once per frame, so that the loops
// hold no configuration branches; the only per-sample branches left follow the signal (period
// boundaries, open phase).
#include "synthesis/KlattInternals.h"

#include <algorithm>
#include <utility>

// Source signals of one block, written by the voicing pass and read by the filter pass.
struct BlockSynthesizer::SourceBlock {
    int raw[kBlockSamples];      // raw noise numbers
    double voice[kBlockSamples]; // voicing after tilt and breathiness
    double glot[kBlockSamples];  // cascade source: voicing x its gain, plus aspiration
    double aspiration[kBlockSamples];
    double frication[kBlockSamples];
};

namespace
{

using SourceBlock = BlockSynthesizer::SourceBlock;

// The decimation low-pass advanced over the four quarter-rate inputs of one output sample in a
// single update: its last two outputs are written directly as weighted sums of the four inputs
// and of the state before the sample. The same filter summed in another order; its recurrence
// is then one multiply-add per output sample instead of four in a row.
class FoldedLowpass
{
public:
    explicit FoldedLowpass(const resonator_t& r)
    {
        // Weights over (x0, x1, x2, x3, p1, p2) of p2, p1, then y0..y3, by running the
        // recurrence y[k] = a x[k] + b y[k-1] + c y[k-2] on the weights.
        double w[6][6] = {};
        w[0][5] = 1.0;
        w[1][4] = 1.0;
        for (int k = 0; k < 4; ++k)
            for (int i = 0; i < 6; ++i)
                w[k + 2][i] = (i == k ? r.a : 0.0) + r.b * w[k + 1][i] + r.c * w[k][i];
        std::copy(w[4], w[4] + 6, m_y2);
        std::copy(w[5], w[5] + 6, m_y3);
    }

    // Returns the last output (the voice value of the sample); p1, p2 become the last two.
    double advance(const double x[4], double& p1, double& p2) const
    {
        const double y2 = (m_y2[0] * x[0] + m_y2[1] * x[1] + m_y2[2] * x[2]) + (m_y2[4] * p1 + m_y2[5] * p2);
        const double y3 = ((m_y3[0] * x[0] + m_y3[1] * x[1]) + (m_y3[2] * x[2] + m_y3[3] * x[3])) +
                          (m_y3[4] * p1 + m_y3[5] * p2);
        p2 = y2;
        p1 = y3;
        return y3;
    }

private:
    double m_y2[6], m_y3[6];
};

// Local copy of the voicing fields of klatt_global_t, kept in registers by the voicing loop and
// synchronised with the record around each pitch-synchronous reset.
struct Voicing {
    std::int32_t pos, len, open, mod;
    double pulse_a, pulse_b, gain_voice, gain_breath, keep, decay;
    resonator_t glottal;
    double sampleStep; // sampled source: waveform points per quarter-rate sample

    void load(const klatt_global_t& g)
    {
        pos = g.period_pos;
        len = g.period_len;
        open = g.open_len;
        mod = g.mod_point;
        pulse_a = g.pulse_a;
        pulse_b = g.pulse_b;
        gain_voice = g.gain_voice;
        gain_breath = g.gain_breath;
        keep = g.tilt_keep;
        decay = g.tilt_decay;
        glottal = g.resonators[R_GLOTTAL];
        sampleStep = len != 0 ? static_cast<double>(g.source_sample_count) / len : 0.0;
    }
    void store(klatt_global_t& g) const
    {
        g.period_pos = pos;
        g.pulse_a = pulse_a;
        g.resonators[R_GLOTTAL] = glottal;
    }
};

// The sampled source: linear interpolation in one period of a recorded waveform.
inline double sampledSource(const klatt_global_t& g, const Voicing& v)
{
    const int n = g.source_sample_count;
    if (v.len == 0 || n <= 0 || !g.source_samples)
        return 0.0;
    const double t = v.pos * v.sampleStep;
    // The waveform is one period: points past its end (reached at the period's last positions)
    // wrap to its start, so that every read stays inside it.
    std::int64_t i = static_cast<std::int64_t>(t);
    const double frac = t - static_cast<double>(i);
    i %= n;
    if (i < 0)
        i += n;
    const double s0 = g.source_samples[i];
    const double s1 = g.source_samples[i + 1 < n ? i + 1 : 0];
    return (s0 + (s1 - s0) * frac) * g.source_sample_scale;
}

// One quarter-rate sample of the glottal source at the current period position.
template <int Source> inline double glottalSource(const klatt_global_t& g, Voicing& v, double& vwave)
{
    if constexpr (Source == 1) {
        const double x = v.pos >= 0 && v.pos < 3 ? CKlattEngine::doublet[v.pos] : 0.0;
        klatt_state::impulsive_vwave = x;
        return resonate(v.glottal, x);
    } else if constexpr (Source == 2) {
        if (v.pos < v.open) {
            v.pulse_a -= v.pulse_b;
            vwave += v.pulse_a;
            return vwave * 0.028;
        }
        vwave = 0.0;
        return 0.0;
    } else if constexpr (Source == 3) {
        return sampledSource(g, v);
    } else {
        return 0.0; // unknown source kind: no voicing
    }
}

// Four quarter-rate source values, one by one, with the pitch-synchronous reset wherever a
// period ends.
template <int Source>
void quarterSteps(klatt_global_t& g, klatt_frame_t& f, Voicing& v, double& vwave, int sampleIndex,
                  double x[4])
{
    for (int q = 0; q < 4; ++q) {
        x[q] = glottalSource<Source>(g, v, vwave);
        if (v.pos >= v.len) {
            v.pos = 0;
            v.store(g);
            g.sample_index = sampleIndex;
            pitchSynchronousReset(g, f);
            v.load(g);
        }
        ++v.pos;
    }
}

// The natural source over four steps that stay inside one period and one phase, with the pulse
// sums taken side by side instead of one after the other. Answers false when the four steps
// cross a period end or the end of the open phase.
inline bool naturalSteps(Voicing& v, double& vwave, double x[4])
{
    if (v.pos + 3 >= v.len)
        return false;
    if (v.pos >= v.open) {
        x[0] = x[1] = x[2] = x[3] = vwave = 0.0;
    } else if (v.pos + 3 < v.open) {
        const double a = v.pulse_a, b = v.pulse_b;
        const double s1 = a - b;
        const double s2 = s1 + (a - 2.0 * b);
        const double s3 = s2 + (a - 3.0 * b);
        const double s4 = s3 + (a - 4.0 * b);
        x[0] = (vwave + s1) * 0.028;
        x[1] = (vwave + s2) * 0.028;
        x[2] = (vwave + s3) * 0.028;
        x[3] = (vwave + s4) * 0.028;
        vwave += s4;
        v.pulse_a = a - 4.0 * b;
    } else {
        return false;
    }
    v.pos += 4;
    return true;
}

// Noise, the glottal source through the decimation low-pass, tilt, breathiness and the source
// gains, for `count` samples starting at sample `first` of the frame.
template <int Source>
void voicingPass(klatt_global_t& g, klatt_frame_t& f, int first, int count, FrameMemory& mem,
                 SourceBlock& out)
{
    Voicing v;
    v.load(g);
    resonator_t& decimation = g.resonators[R_DECIMATION];
    const FoldedLowpass lowpass(decimation);
    double p1 = decimation.p1, p2 = decimation.p2;
    double vwave = klatt_state::natural_vwave;
    double last = mem.tilt_last;
    double noiseMemory = klatt_state::nlast;
    const double gainAsp = g.gain_aspiration;
    const double gainFric = g.gain_frication;
    for (int j = 0; j < count; ++j) {
        const int raw = out.raw[j];
        double noise = raw + 0.75 * noiseMemory;
        noiseMemory = noise;
        if (v.pos > v.mod)
            noise *= 0.5;

        double x[4];
        if (Source != 2 || !naturalSteps(v, vwave, x))
            quarterSteps<Source>(g, f, v, vwave, first + j, x);
        double voice = lowpass.advance(x, p1, p2);
        voice = voice * v.keep + last * v.decay;
        last = voice;
        if (v.pos < v.open)
            voice += raw * v.gain_breath;

        const double aspiration = gainAsp * noise;
        out.voice[j] = voice;
        out.glot[j] = v.gain_voice * voice + aspiration;
        out.aspiration[j] = aspiration;
        out.frication[j] = gainFric * noise;
    }
    v.store(g);
    decimation.p1 = p1;
    decimation.p2 = p2;
    klatt_state::natural_vwave = vwave;
    klatt_state::nlast = noiseMemory;
    mem.tilt_last = last;
    g.noise_sample = out.raw[count - 1];
}

// Limits to the 16-bit range and truncates toward zero. NaN (a filter driven unstable by
// absurd bandwidths) gives 0 rather than an undefined conversion.
inline int toSample(double v)
{
    v = v < -32768.0 ? -32768.0 : v;
    v = v > 32767.0 ? 32767.0 : v;
    return v == v ? static_cast<int>(v) : 0;
}

// The signal an output_select of 1..7 sends to the output low-pass.
inline double tap(int select, const SourceBlock& in, int j, double parGlot, double bypass, double source)
{
    switch (select) {
    case 1:
        return in.voice[j];
    case 2:
        return in.aspiration[j];
    case 3:
        return in.frication[j];
    case 4:
        return in.glot[j];
    case 5:
        return parGlot;
    case 6:
        return bypass;
    default:
        return source;
    }
}

// The cascade branch: nasal zero, nasal pole, then formants Cascade down to 1.
template <int Cascade> inline double cascadeBranch(resonator_t* r, double x)
{
    x = antiresonate(r[R_NASAL_ZERO], x);
    x = resonate(r[R_CASC_NASAL_POLE], x);
#pragma GCC unroll 8
    for (int k = Cascade; k >= 1; --k)
        x = resonate(r[R_CASC_F1 + k - 1], x);
    return x;
}

// Cascade (Cascade formants; -1 = the all-parallel model, no cascade), parallel branch, output
// low-pass and overall gain for `count` samples.
template <int Cascade, bool Tap>
void filterPass(klatt_global_t& g, const SourceBlock& in, int count, FrameMemory& mem, int* output)
{
    resonator_t r[kResonatorCount];
    std::copy(g.resonators, g.resonators + kResonatorCount, r);
    const double gainParVoice = g.gain_par_voice;
    const double gainBypass = g.gain_bypass;
    const double gainOverall = g.gain_overall;
    const int select = g.output_select;
    double prev = mem.prev_par_glot;
    for (int j = 0; j < count; ++j) {
        double out = 0.0;
        if constexpr (Cascade >= 0)
            out = cascadeBranch<Cascade>(r, in.glot[j]);
        const double parGlot = gainParVoice * in.voice[j] + in.aspiration[j];
        const double source = in.frication[j] + parGlot - prev;
        prev = parGlot;
        // The higher parallel formants (driven by frication plus the first difference of the
        // parallel voicing) alternate in sign: starting from cascade + F1 + nasal pole, out
        // becomes F6 - out, F5 - out, ... F2 - out, then bypass - out. Expanded, that is
        // bypass - F2 + F3 - F4 + F5 - F6 + (cascade + F1 + nasal pole); summed in this grouping,
        // the cascade, the longest chain of the sample, joins last.
        const double bypass = gainBypass * source;
        const double higher =
            ((bypass - resonate(r[R_PAR_F1 + 1], source)) + resonate(r[R_PAR_F1 + 2], source)) +
            ((resonate(r[R_PAR_F1 + 4], source) - resonate(r[R_PAR_F1 + 3], source)) -
             resonate(r[R_PAR_F1 + 5], source));
        const double lower = resonate(r[R_PAR_F1], parGlot) + resonate(r[R_PAR_NASAL_POLE], parGlot);
        out = (out + lower) + higher;
        if constexpr (Tap)
            out = tap(select, in, j, parGlot, bypass, source);
        output[j] = toSample(resonate(r[R_OUTPUT_LOWPASS], out) * gainOverall);
    }
    std::copy(r, r + kResonatorCount, g.resonators);
    mem.prev_par_glot = prev;
}

BlockSynthesizer::VoicingPass pickVoicingPass(int source)
{
    switch (source) {
    case 1:
        return &voicingPass<1>;
    case 2:
        return &voicingPass<2>;
    case 3:
        return &voicingPass<3>;
    default:
        return &voicingPass<0>;
    }
}

template <int... Cascade>
BlockSynthesizer::FilterPass pickFilterPass(int cascade, bool tapped, std::integer_sequence<int, Cascade...>)
{
    static constexpr BlockSynthesizer::FilterPass normal[] = {&filterPass<Cascade - 1, false>...};
    static constexpr BlockSynthesizer::FilterPass tappedPass[] = {&filterPass<Cascade - 1, true>...};
    return tapped ? tappedPass[cascade + 1] : normal[cascade + 1];
}

BlockSynthesizer::FilterPass pickFilterPass(const klatt_global_t& g)
{
    // -1 = no cascade (all-parallel model), then 0..8 cascade formants.
    const int cascade = g.model == 2 ? -1 : std::clamp(g.cascade_formants, 0, 8);
    const bool tapped = g.output_select >= 1 && g.output_select <= 7;
    return pickFilterPass(cascade, tapped, std::make_integer_sequence<int, 10>{});
}

} // namespace

BlockSynthesizer::BlockSynthesizer(const klatt_global_t& g)
    : m_voicing(pickVoicingPass(g.glottal_source)), m_filter(pickFilterPass(g))
{
}

void BlockSynthesizer::run(klatt_global_t& g, klatt_frame_t& f, int first, int count, FrameMemory& memory,
                           int* output) const
{
    SourceBlock block;
    for (int j = 0; j < count; ++j)
        block.raw[j] = klatt_state::nextRandom() % 16383 - 8191;
    m_voicing(g, f, first, count, memory, block);
    m_filter(g, block, count, memory, output + first);
}
