#pragma once
// Pieces of the synthesizer shared by its two source files (CKlattEngine.cpp: frame set-up,
// pitch-synchronous reset, entry points; KlattBlockPasses.cpp: the per-sample loops). Not part
// of the engine's interface.
#include "synthesis/CKlattEngine.h"

#include <cmath>
#include <cstdint>

// Process-wide state. It outlives every run and is never reset, not even by parwave_init, so
// a second synthesis of the same frames need not repeat the first bit for bit. Intended.
namespace klatt_state
{
extern double nlast;              // noise low-pass memory
extern double natural_vwave;      // natural pulse accumulator
extern double impulsive_vwave;    // the impulsive source's last excitation
extern std::int32_t skew;         // alternate-period skew; its sign says which way the next period goes
extern std::int64_t time_count;   // flutter counter, one step per frame
extern std::uint64_t noise_state; // noise generator

// Uniform integers 0..2^31-1 (the range of the C library's rand()) from a 64-bit linear
// congruential generator, high bits. rand() takes a lock on every call, which would cost more
// than all the other work of a sample.
inline std::int32_t nextRandom()
{
    noise_state = noise_state * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<std::int32_t>(noise_state >> 33);
}
} // namespace klatt_state

// Coefficients of a resonator for a frequency and bandwidth in Hz.
inline void setResonator(const klatt_global_t& g, resonator_t& r, double freq, double bw)
{
    const double radius = std::exp(g.neg_pi_t * bw);
    r.c = -radius * radius;
    r.b = 2.0 * radius * std::cos(g.two_pi_t * freq);
    r.a = 1.0 - r.b - r.c;
}

// y = a x + b p1 + c p2. The input is added last: the memory part is ready before the input
// arrives, so a chain of resonators costs one multiply-add per stage.
inline double resonate(resonator_t& r, double x)
{
    const double y = r.a * x + (r.b * r.p1 + r.c * r.p2);
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

// Block processing (KlattBlockPasses.cpp): produces samples [first, first + count) of the
// current frame into output; count is at most one block.
constexpr int kBlockSamples = 128;

// Memories that start at 0 for every frame.
struct FrameMemory {
    double tilt_last = 0.0;
    double prev_par_glot = 0.0;
};

// The per-sample loops chosen for a run's configuration (glottal source, model, cascade
// length, output selection); picked once per frame.
class BlockSynthesizer
{
public:
    explicit BlockSynthesizer(const klatt_global_t& g);
    void run(klatt_global_t& g, klatt_frame_t& f, int first, int count, FrameMemory& memory,
             int* output) const;

    struct SourceBlock;
    using VoicingPass = void (*)(klatt_global_t&, klatt_frame_t&, int, int, FrameMemory&, SourceBlock&);
    using FilterPass = void (*)(klatt_global_t&, const SourceBlock&, int, FrameMemory&, int*);

private:
    VoicingPass m_voicing;
    FilterPass m_filter;
};
