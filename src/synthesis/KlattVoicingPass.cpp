// The voicing pass: noise, the quarter-rate glottal source and its decimation low-pass, tilt,
// breathiness and the source gains. Per-sample branches left follow the signal only (period
// boundaries, open phase).
#include "synthesis/KlattInternals.h"

#include <algorithm>

namespace
{

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
    // The last output p1 is added last, so the feedback costs one multiply and one add.
    double advance(const double x[4], double& p1, double& p2) const
    {
        const double y2 =
            ((m_y2[0] * x[0] + m_y2[1] * x[1]) + (m_y2[2] * x[2] + m_y2[5] * p2)) + m_y2[4] * p1;
        const double y3 =
            (((m_y3[0] * x[0] + m_y3[1] * x[1]) + (m_y3[2] * x[2] + m_y3[3] * x[3])) + m_y3[5] * p2) +
            m_y3[4] * p1;
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
    // The position as a fraction of the period, then in waveform points, rounded in that order.
    const double t = static_cast<double>(v.pos) / v.len * n;
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
    if (std::int64_t{v.pos} + 3 >= v.len)
        return false;
    if (v.pos >= v.open) {
        x[0] = x[1] = x[2] = x[3] = vwave = 0.0;
    } else if (std::int64_t{v.pos} + 3 < v.open) {
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

} // namespace

VoicingPass pickVoicingPass(int source)
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
