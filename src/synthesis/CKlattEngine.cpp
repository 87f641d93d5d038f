// The synthesizer's frame set-up (gains and coefficients, once per frame), its
// pitch-synchronous reset (voicing parameters, once per period) and its entry points. The
// per-sample loops are in KlattVoicingPass.cpp and KlattFilterPass.cpp.
#include "synthesis/CKlattEngine.h"

#include "document/Log.h"
#include "synthesis/KlattInternals.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace klatt_state
{
thread_local double nlast = 0.0;
thread_local double natural_vwave = 0.0;
thread_local double impulsive_vwave = 0.0;
thread_local std::int32_t skew = 0;
thread_local std::int64_t time_count = 0;
thread_local std::uint64_t noise_state = 1;

// Every piece of the state back to its value at program start.
void reset()
{
    nlast = natural_vwave = impulsive_vwave = 0.0;
    skew = 0;
    time_count = 0;
    noise_state = 1;
}

// Four numbers per step: four interleaved states each jump four places ahead, so that they do
// not wait for each other. The sequence is the one a single state stepping one place gives.
void noiseSamples(int* out, int count)
{
    constexpr std::uint64_t a1 = kRandomMultiplier, c1 = kRandomIncrement;
    constexpr std::uint64_t a2 = a1 * a1, c2 = a1 * c1 + c1;
    constexpr std::uint64_t a3 = a2 * a1, c3 = a1 * c2 + c1;
    constexpr std::uint64_t a4 = a3 * a1, c4 = a1 * c3 + c1;
    // The numbers are below 2^31: an unsigned remainder is the same and cheaper.
    auto noise = [](std::uint64_t state) {
        return static_cast<int>(static_cast<std::uint32_t>(state >> 33) % 16383u) - 8191;
    };
    int j = 0;
    if (count >= 4) {
        const std::uint64_t s = noise_state;
        std::uint64_t s1 = a1 * s + c1, s2 = a2 * s + c2, s3 = a3 * s + c3, s4 = a4 * s + c4;
        for (;; j += 4) {
            out[j] = noise(s1);
            out[j + 1] = noise(s2);
            out[j + 2] = noise(s3);
            out[j + 3] = noise(s4);
            noise_state = s4;
            if (j + 8 > count)
                break;
            s1 = a4 * s1 + c4;
            s2 = a4 * s2 + c4;
            s3 = a4 * s3 + c4;
            s4 = a4 * s4 + c4;
        }
        j += 4;
    }
    for (; j < count; ++j)
        out[j] = noise(noise_state = noise_state * a1 + c1);
}
} // namespace klatt_state

namespace
{

constexpr double kPi = 3.1415927;

std::int32_t clamp32(std::int64_t v)
{
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(v, std::numeric_limits<std::int32_t>::min(),
                                                              std::numeric_limits<std::int32_t>::max()));
}

// The nasal zero: a zero frequency of 0 or below becomes a 1 Hz zero.
void setAntiresonator(const klatt_global_t& g, resonator_t& r, double freq, double bw)
{
    freq = -freq;
    if (freq >= 0.0)
        freq = -1.0;
    setResonator(g, r, freq, bw);
    r.a = 1.0 / r.a;
    r.b = -r.b * r.a;
    r.c = -r.c * r.a;
}

// Voicing parameters of a new period (f0 > 0): period, gains, open phase, pulse shape, skew.
// Answers whether the tilt may be updated.
bool startVoicedPeriod(klatt_global_t& g, klatt_frame_t& f)
{
    g.period_len = clamp32(40LL * g.sample_rate / f.f0);
    g.gain_voice = CKlattEngine::DBtoLIN(f.av);
    g.mod_point = f.av >= 1 ? g.period_len >> 1 : g.period_len;
    g.gain_breath = CKlattEngine::DBtoLIN(f.atu) * 0.1;

    std::int64_t open = 4LL * f.oq;
    if (g.glottal_source == 1 && open > 263)
        open = 263;
    if (open >= std::int64_t{g.period_len} - 1) {
        open = std::int64_t{g.period_len} - 2;
        if (!g.quiet)
            Log::write("Warning: glottal open period cannot exceed T0, truncated\n");
    }
    if (open < 40) {
        open = 40;
        if (!g.quiet) {
            Log::write("Warning: minimum glottal open period is 10 samples.\n");
            Log::printf("truncated, nopen = %i\n", 40);
        }
    }
    g.open_len = clamp32(open);
    // The shape table ends at an open phase of 263; a longer natural pulse (only reachable with
    // an oq beyond its range) takes the last shape rather than reading past the table.
    g.pulse_b = CKlattEngine::B0[std::min<std::int64_t>(open - 40, 223)];
    g.pulse_a = g.pulse_b * g.open_len * 0.333;
    resonator_t& glottal = g.resonators[R_GLOTTAL];
    setResonator(g, glottal, 0.0, g.sample_rate / g.open_len);
    glottal.a *= (g.open_len * 0.00833) * (g.open_len * 0.00833);

    const std::int64_t closed = std::int64_t{g.period_len} - g.open_len;
    if (f.skew > closed) {
        if (!g.quiet)
            Log::printf("Kskew duration=%d > glottal closed period=%d, truncate\n", f.skew, clamp32(closed));
        f.skew = clamp32(closed);
    }
    // Alternate periods are lengthened and shortened: the stored sign says which comes next.
    std::int32_t& skew = klatt_state::skew;
    skew = skew >= 0 ? f.skew : clamp32(-std::int64_t{f.skew});
    g.period_len = clamp32(std::int64_t{g.period_len} + skew);
    skew = clamp32(-std::int64_t{skew});
    return !(g.period_len == 4 && g.sample_index != 0);
}

// Gains and the cascade, parallel and output low-pass coefficients of a frame.
void setUpFrame(klatt_global_t& g, klatt_frame_t& f)
{
    g.base_f0 = f.f0 / 10;
    f.av = clamp32(std::max<std::int64_t>(std::int64_t{f.av} - 7, 0));
    g.gain_aspiration = CKlattEngine::DBtoLIN(f.ah) * 0.05;
    g.gain_frication = CKlattEngine::DBtoLIN(f.af) * 0.25;
    g.gain_par_voice = CKlattEngine::DBtoLIN(f.apv);
    g.gain_bypass = CKlattEngine::DBtoLIN(f.ab) * 0.05;
    // A gain of 3 dB or less is replaced by 57 dB (loud, not silent): intended.
    const std::int64_t gain = std::int64_t{f.gain} - 3;
    f.gain = gain <= 0 ? 57 : clamp32(gain);
    g.gain_overall = CKlattEngine::DBtoLIN(f.gain);

    resonator_t* r = g.resonators;
    const int n = g.cascade_formants;
    if (n >= 8)
        setResonator(g, r[R_CASC_F1 + 7], f.f8, f.b8);
    if (n >= 7)
        setResonator(g, r[R_CASC_F1 + 6], f.f7, f.b7);
    if (n >= 6)
        setResonator(g, r[R_CASC_F1 + 5], f.f6, f.b6);
    if (n >= 5)
        setResonator(g, r[R_CASC_F1 + 4], f.f5, f.b5);
    setResonator(g, r[R_CASC_F1 + 3], f.f4, f.b4);
    setResonator(g, r[R_CASC_F1 + 2], f.f3, f.b3);
    setResonator(g, r[R_CASC_F1 + 1], f.f2, f.b2);
    setResonator(g, r[R_CASC_F1], f.f1, f.b1);
    setResonator(g, r[R_CASC_NASAL_POLE], f.fnp, f.bnp);
    setAntiresonator(g, r[R_NASAL_ZERO], f.fnz, f.bnz);

    struct Parallel {
        int index, freq, bw, dB;
        double factor;
    };
    const Parallel parallel[] = {
        {R_PAR_F1, f.f1, f.b1f, f.a1f, 0.4},      {R_PAR_NASAL_POLE, f.fnp, f.bnp, f.anv, 0.6},
        {R_PAR_F1 + 1, f.f2, f.b2f, f.a2f, 0.15}, {R_PAR_F1 + 2, f.f3, f.b3f, f.a3f, 0.06},
        {R_PAR_F1 + 3, f.f4, f.b4f, f.a4f, 0.04}, {R_PAR_F1 + 4, f.f5, f.b5f, f.a5f, 0.022},
        {R_PAR_F1 + 5, f.f6, f.b6f, f.a6f, 0.03},
    };
    for (const Parallel& p : parallel) {
        setResonator(g, r[p.index], p.freq, p.bw);
        r[p.index].a *= CKlattEngine::DBtoLIN(p.dB) * p.factor;
    }
    setResonator(g, r[R_OUTPUT_LOWPASS], 0.0, g.sample_rate / 2);
}

// f0 flutter: three slow sines of the frame counter (not of time in seconds).
void applyFlutter(const klatt_global_t& g, klatt_frame_t& f)
{
    if (g.flutter_percent == 0) { // the change would be 0: spare the sines
        ++klatt_state::time_count;
        return;
    }
    const double n = static_cast<double>(klatt_state::time_count);
    const double delta = (g.flutter_percent / 50.0) * (g.base_f0 / 100.0) *
                         (std::sin(79.79645458 * n) + std::sin(44.61061634 * n) + std::sin(29.53097138 * n)) *
                         10.0;
    f.f0 = clamp32(std::int64_t{f.f0} + static_cast<std::int64_t>(delta));
    ++klatt_state::time_count;
}

} // namespace

// Start of a new pitch period (also every 4 quarter-rate samples while unvoiced).
void pitchSynchronousReset(klatt_global_t& g, klatt_frame_t& f)
{
    bool updateTilt;
    if (f.f0 > 0) {
        updateTilt = startVoicedPeriod(g, f);
    } else {
        g.period_len = 4;
        g.gain_voice = 0.0;
        g.mod_point = 4;
        g.gain_breath = 0.0;
        g.pulse_a = g.pulse_b = 0.0;
        updateTilt = g.sample_index == 0;
    }
    if (updateTilt) {
        g.tilt_decay = 0.033 * f.tl;
        g.tilt_keep = g.tilt_decay > 0.0 ? 1.0 - g.tilt_decay : 1.0;
    }
}

CKlattEngine::CKlattEngine() = default;

void CKlattEngine::resetCarriedState()
{
    klatt_state::reset();
}
CKlattEngine::~CKlattEngine() = default;

double CKlattEngine::DBtoLIN(int dB)
{
    if (dB < 0 || dB > 87)
        return 0.0;
    return amptable[dB] * 0.001;
}

void CKlattEngine::parwave_init(klatt_global_t* g)
{
    g->lowpass_freq = clamp32(950LL * g->sample_rate / 10000);
    g->lowpass_bw = clamp32(630LL * g->sample_rate / 10000);
    // A rate of 0 is never passed; it gives flat coefficients rather than a division by zero.
    g->neg_pi_t = g->sample_rate != 0 ? -kPi / g->sample_rate : 0.0;
    g->two_pi_t = -2.0 * g->neg_pi_t;
    setResonator(*g, g->resonators[R_DECIMATION], g->lowpass_freq, g->lowpass_bw);
    g->period_pos = g->period_len = g->open_len = g->mod_point = 0;
    for (resonator_t& r : g->resonators)
        r.p1 = r.p2 = 0.0;
}

void CKlattEngine::parwave(klatt_global_t* g, klatt_frame_t* f, int* output)
{
    setUpFrame(*g, *f);
    applyFlutter(*g, *f);
    g->sample_index = 0;
    const int total = g->samples_per_frame;
    if (total < 1)
        return;

    const VoicingPass voicing = pickVoicingPass(g->glottal_source);
    const FilterPass filter = pickFilterPass(*g);
    FrameMemory memory;
    SourceBlock block;
    for (std::int64_t first = 0; first < total; first += kBlockSamples) {
        const int start = static_cast<int>(first);
        const int count = std::min(kBlockSamples, total - start);
        klatt_state::noiseSamples(block.raw, count);
        voicing(*g, *f, start, count, memory, block);
        filter(*g, block, count, memory, output + start);
    }
    g->sample_index = total;
}
