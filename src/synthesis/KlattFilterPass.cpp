// The filter pass: cascade branch, parallel branch, output low-pass and overall gain, over the
// source signals of one block.
//
// Resonators that do not depend on each other within a sample run side by side in the two
// lanes of a vector (GCC/Clang vector extension; without SIMD hardware it falls back to scalar
// code). Each lane computes exactly what a single resonator computes. The cascade is
// software-pipelined so that its stages also become independent of each other.
#include "synthesis/KlattInternals.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace
{

using v2d = double __attribute__((vector_size(16)));

// Two resonators, one per lane.
struct ResonatorPair {
    v2d a, b, c, p1, p2;
};

inline v2d resonate(ResonatorPair& r, v2d x)
{
    const v2d y = (r.a * x + r.c * r.p2) + r.b * r.p1;
    r.p2 = r.p1;
    r.p1 = y;
    return y;
}

// Packs two resonators. A sign of -1 runs a resonator negated (its coefficient a and its
// memories change sign, so its output does): exact, and it turns a difference into a sum.
ResonatorPair pack(const resonator_t& lo, double signLo, const resonator_t& hi, double signHi)
{
    return {v2d{lo.a * signLo, hi.a * signHi}, v2d{lo.b, hi.b}, v2d{lo.c, hi.c},
            v2d{lo.p1 * signLo, hi.p1 * signHi}, v2d{lo.p2 * signLo, hi.p2 * signHi}};
}

void unpack(const ResonatorPair& pair, resonator_t& lo, double signLo, resonator_t& hi, double signHi)
{
    lo.p1 = pair.p1[0] * signLo;
    lo.p2 = pair.p2[0] * signLo;
    hi.p1 = pair.p1[1] * signHi;
    hi.p2 = pair.p2[1] * signHi;
}

// The nasal zero over a block. It feeds back nothing (it remembers inputs), so its samples do
// not wait for each other.
void nasalZero(resonator_t& r, const double* in, int count, double* out)
{
    resonator_t local = r; // not through the reference: `out` could alias it
    for (int j = 0; j < count; ++j)
        out[j] = antiresonate(local, in[j]);
    r = local;
}

// The cascade after the nasal zero: N resonators in a row (the nasal pole, then formants down
// to F1), software-pipelined over a block. Iteration j runs stage s on sample j - s, so the
// stages of one iteration are independent: stage s reads what stage s - 1 gave in the previous
// iteration. Each stage still sees its samples in order, so the result is that of running each
// sample through all stages in turn. In the full iterations, stage k runs in lane 0 of vector k
// and stage H + k in lane 1 (lane 1 of the last vector idles when N is odd); the pipeline fills
// and drains with single stages at the ends of the block.
template <int N> class CascadeChain
{
public:
    // stages[s]: the resonator of stage s, in order; its memories are read and written back.
    void run(resonator_t* const* stages, const double* in, int count, double* out)
    {
        resonator_t st[N];
        for (int s = 0; s < N; ++s)
            st[s] = *stages[s];
        const int iterations = count + N - 1;
        int j = 0;
        for (; j < std::min(N - 1, iterations); ++j)
            partial(st, in, count, j, out);
        if (j < count) {
            // Lane 1 of the last vector idles when N is odd: a resonator of zeros, not stored.
            resonator_t idle{};
            auto lane1 = [&](int k) -> resonator_t& { return k + kH < N ? st[k + kH] : idle; };
            ResonatorPair v[kH];
            for (int k = 0; k < kH; ++k)
                v[k] = pack(st[k], 1.0, lane1(k), 1.0);
            for (; j < count; ++j)
                full(v, in[j], out[j - (N - 1)]);
            for (int k = 0; k < kH; ++k)
                unpack(v[k], st[k], 1.0, lane1(k), 1.0);
        }
        for (; j < iterations; ++j)
            partial(st, in, count, j, out);
        for (int s = 0; s < N; ++s)
            *stages[s] = st[s];
    }

private:
    static constexpr int kH = (N + 1) / 2;

    // The stages of iteration j that have a sample, last first so that each reads its
    // predecessor's output of the previous iteration (a resonator's p1 is its last output).
    static void partial(resonator_t* st, const double* in, int count, int j, double* out)
    {
        const int lo = std::max(0, j - count + 1), hi = std::min(N - 1, j);
        for (int s = hi; s >= lo; --s)
            resonate(st[s], s == 0 ? in[j] : st[s - 1].p1);
        if (hi == N - 1)
            out[j - hi] = st[hi].p1;
    }

    static void full(ResonatorPair* v, double x, double& out)
    {
        const double lastOfLane0 = v[kH - 1].p1[0]; // stage H - 1 feeds stage H
#pragma GCC unroll 8
        for (int k = kH - 1; k >= 1; --k)
            resonate(v[k], v[k - 1].p1);
        resonate(v[0], v2d{x, lastOfLane0});
        out = N - 1 < kH ? v[N - 1].p1[0] : v[N - 1 - kH].p1[1];
    }
};

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

// The cascade branch of a block (Cascade formants) into `out`.
template <int Cascade> void cascadeBranch(resonator_t* r, const double* in, int count, double* out)
{
    nasalZero(r[R_NASAL_ZERO], in, count, out);
    resonator_t* stages[Cascade + 1];
    stages[0] = &r[R_CASC_NASAL_POLE];
    for (int k = 1; k <= Cascade; ++k)
        stages[k] = &r[R_CASC_F1 + Cascade - k];
    CascadeChain<Cascade + 1>().run(stages, out, count, out);
}

// Cascade (Cascade formants; -1 = the all-parallel model, no cascade), parallel branch, output
// low-pass and overall gain for `count` samples.
template <int Cascade, bool Tap>
void filterPass(klatt_global_t& g, const SourceBlock& in, int count, FrameMemory& mem, int* output)
{
    resonator_t* r = g.resonators;
    double cascade[kBlockSamples];
    if constexpr (Cascade >= 0)
        cascadeBranch<Cascade>(r, in.glot, count, cascade);

    // The parallel branch alternates signs: starting from cascade + F1 + nasal pole, out
    // becomes F6 - out, F5 - out, ... F2 - out, then bypass - out; expanded, that is
    // cascade + F1 + nasal pole + F3 + F5 - F2 - F4 - F6 + bypass. F2, F4 and F6 run negated so
    // that every term is added. F2..F6 are driven by frication plus the first difference of the
    // parallel voicing, F1 and the nasal pole by the parallel voicing.
    ResonatorPair f32 = pack(r[R_PAR_F1 + 2], 1.0, r[R_PAR_F1 + 1], -1.0);
    ResonatorPair f54 = pack(r[R_PAR_F1 + 4], 1.0, r[R_PAR_F1 + 3], -1.0);
    ResonatorPair f61 = pack(r[R_PAR_F1 + 5], -1.0, r[R_PAR_F1], 1.0);
    resonator_t nasal = r[R_PAR_NASAL_POLE];
    resonator_t lowpass = r[R_OUTPUT_LOWPASS];
    const double gainParVoice = g.gain_par_voice;
    const double gainBypass = g.gain_bypass;
    const double gainOverall = g.gain_overall;
    const int select = g.output_select;
    double prev = mem.prev_par_glot;
    double peak = g.peak_magnitude;
    std::int64_t clipped = 0;
    for (int j = 0; j < count; ++j) {
        const double parGlot = gainParVoice * in.voice[j] + in.aspiration[j];
        const double source = in.frication[j] + parGlot - prev;
        prev = parGlot;
        const v2d sources{source, source};
        const v2d sum =
            (resonate(f32, sources) + resonate(f54, sources)) + resonate(f61, v2d{source, parGlot});
        const double bypass = gainBypass * source;
        double out = ((sum[0] + sum[1]) + (resonate(nasal, parGlot) + bypass));
        if constexpr (Cascade >= 0)
            out += cascade[j];
        if constexpr (Tap)
            out = tap(select, in, j, parGlot, bypass, source);
        const double sample = resonate(lowpass, out) * gainOverall;
        const double magnitude = std::fabs(sample);
        peak = magnitude > peak ? magnitude : peak; // NaN leaves the peak alone
        clipped += sample > 32767.0 || sample < -32768.0;
        output[j] = toSample(sample);
    }
    g.peak_magnitude = peak;
    g.clipped_samples += clipped;
    unpack(f32, r[R_PAR_F1 + 2], 1.0, r[R_PAR_F1 + 1], -1.0);
    unpack(f54, r[R_PAR_F1 + 4], 1.0, r[R_PAR_F1 + 3], -1.0);
    unpack(f61, r[R_PAR_F1 + 5], -1.0, r[R_PAR_F1], 1.0);
    r[R_PAR_NASAL_POLE] = nasal;
    r[R_OUTPUT_LOWPASS] = lowpass;
    mem.prev_par_glot = prev;
}

template <int... Cascade>
FilterPass pickFilterPass(int cascade, bool tapped, std::integer_sequence<int, Cascade...>)
{
    static constexpr FilterPass normal[] = {&filterPass<Cascade - 1, false>...};
    static constexpr FilterPass tappedPass[] = {&filterPass<Cascade - 1, true>...};
    return tapped ? tappedPass[cascade + 1] : normal[cascade + 1];
}

} // namespace

FilterPass pickFilterPass(const klatt_global_t& g)
{
    // -1 = no cascade (all-parallel model), then 0..8 cascade formants.
    const int cascade = g.model == 2 ? -1 : std::clamp(g.cascade_formants, 0, 8);
    const bool tapped = g.output_select >= 1 && g.output_select <= 7;
    return pickFilterPass(cascade, tapped, std::make_integer_sequence<int, 10>{});
}
