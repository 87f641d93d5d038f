#pragma once
// Pieces of the synthesizer shared by its source files (CKlattEngine.cpp: frame set-up,
// pitch-synchronous reset, entry points; KlattVoicingPass.cpp and KlattFilterPass.cpp: the
// per-sample loops). Not part of the engine's interface.
#include "synthesis/CKlattEngine.h"

#include <cmath>
#include <cstdint>

// State carried from run to run. It outlives every run and is never reset, not even by
// parwave_init, so a second synthesis of the same frames need not repeat the first bit for bit.
// Intended. Each thread has its own, so that syntheses on several threads at once (the Python
// module's) never share it; a program that synthesizes on one thread sees one process-wide state.
namespace klatt_state
{
extern thread_local double nlast;           // noise low-pass memory
extern thread_local double natural_vwave;   // natural pulse accumulator
extern thread_local double impulsive_vwave; // the impulsive source's last excitation
extern thread_local std::int32_t skew; // alternate-period skew; its sign says which way the next period goes
extern thread_local std::int64_t time_count;   // flutter counter, one step per frame
extern thread_local std::uint64_t noise_state; // noise generator

// Every piece of the state above back to its value at program start.
void reset();

// The noise generator: a 64-bit linear congruential generator whose high bits give uniform
// integers 0..2^31-1, the range of the C library's rand(). rand() takes a lock on every call,
// which would cost more than all the other work of a sample.
constexpr std::uint64_t kRandomMultiplier = 6364136223846793005ULL;
constexpr std::uint64_t kRandomIncrement = 1442695040888963407ULL;

// The next `count` numbers as noise samples: (number mod 16383) - 8191.
void noiseSamples(int* out, int count);
} // namespace klatt_state

// Coefficients of a resonator for a frequency and bandwidth in Hz.
inline void setResonator(const klatt_global_t& g, resonator_t& r, double freq, double bw)
{
    const double radius = std::exp(g.neg_pi_t * bw);
    r.c = -radius * radius;
    r.b = 2.0 * radius * std::cos(g.two_pi_t * freq);
    r.a = 1.0 - r.b - r.c;
}

// y = a x + b p1 + c p2, with the last output added last: a resonator's feedback then costs one
// multiply and one add per sample.
inline double resonate(resonator_t& r, double x)
{
    const double y = (r.a * x + r.c * r.p2) + r.b * r.p1;
    r.p2 = r.p1;
    r.p1 = y;
    return y;
}

// The antiresonator remembers its inputs, not its outputs.
inline double antiresonate(resonator_t& r, double x)
{
    const double y = r.a * x + (r.b * r.p1 + r.c * r.p2);
    r.p2 = r.p1;
    r.p1 = x;
    return y;
}

// Start of a new pitch period (CKlattEngine.cpp): voicing gains, open phase, pulse shape,
// skew and tilt from the frame, which it may rewrite (skew).
void pitchSynchronousReset(klatt_global_t& g, klatt_frame_t& f);

// A frame is produced in blocks of samples, each in two passes: the voicing pass
// (KlattVoicingPass.cpp) runs the noise and the quarter-rate glottal source with its decimation
// low-pass and writes the source signals of the block; the filter pass (KlattFilterPass.cpp)
// runs the cascade and parallel branches and the output low-pass over them. Both passes are
// templates on the run's configuration, picked once per frame, so that the per-sample loops
// hold no configuration branches.
constexpr int kBlockSamples = 128;

// Source signals of one block, written by the voicing pass and read by the filter pass.
struct SourceBlock {
    int raw[kBlockSamples];      // raw noise numbers
    double voice[kBlockSamples]; // voicing after tilt and breathiness
    double glot[kBlockSamples];  // cascade source: voicing x its gain, plus aspiration
    double aspiration[kBlockSamples];
    double frication[kBlockSamples];
};

// Memories that start at 0 for every frame.
struct FrameMemory {
    double tilt_last = 0.0;
    double prev_par_glot = 0.0;
};

// Samples [first, first + count) of the frame: source signals from block.raw (the noise).
using VoicingPass = void (*)(klatt_global_t& g, klatt_frame_t& f, int first, int count, FrameMemory& memory,
                             SourceBlock& block);
// The `count` output samples of a block from its source signals.
using FilterPass = void (*)(klatt_global_t& g, const SourceBlock& block, int count, FrameMemory& memory,
                            int* output);

VoicingPass pickVoicingPass(int glottalSource);
FilterPass pickFilterPass(const klatt_global_t& g);
