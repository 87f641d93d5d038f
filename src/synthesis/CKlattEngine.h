#pragma once
// CKlattEngine: the Klatt cascade/parallel formant synthesizer. It turns one frame of
// synthesis parameters into the samples of one update interval. A voicing source runs at four
// times the output rate and is decimated through a low-pass; a noise source feeds aspiration,
// frication and breathiness; a cascade branch of up to eight formants with a nasal pole and a
// nasal zero and a parallel branch of six formants, a nasal pole and a bypass make the output,
// which goes through an output low-pass and the overall gain. All arithmetic is in doubles.
//
// The class holds no data: the per-run state is the caller's klatt_global_t. A few variables
// are process-wide and deliberately outlive every run (see CKlattEngine.cpp), so one run at a
// time, on one thread (the main thread). Units: f0 in 0.1 Hz, frequencies and bandwidths in
// Hz, amplitudes in dB, oq in output samples, skew in quarter-rate samples; output samples are
// signed integers limited to -32768..32767.
#include <cstdint>

// One frame: the 48 synthesis parameters in the row order of a grid column. parwave() writes
// back into it (av, gain, f0, skew): refill it before every call.
struct klatt_frame_t {
    std::int32_t f0, av, ah, af, tl;
    std::int32_t f8, f7, f6, f5, f4, f3, f2, f1;
    std::int32_t b8, b7, b6, b5, b4, b3, b2, b1;
    std::int32_t ab;
    std::int32_t a8f, a7f, a6f, a5f, a4f, a3f, a2f, a1f; // a8f, a7f are carried but unused
    std::int32_t b8f, b7f, b6f, b5f, b4f, b3f, b2f, b1f; // b8f, b7f are carried but unused
    std::int32_t fnz, bnz, fnp, bnp;
    std::int32_t oq, anv, apv, atu, skew, gain;

    static constexpr int kFieldCount = 48;
    // Field `row` in grid row order (0 = f0 ... 47 = gain); row must be 0..47.
    std::int32_t& operator[](int row);
    std::int32_t operator[](int row) const;
};

// The frame's fields in grid row order.
// clang-format off
inline constexpr std::int32_t klatt_frame_t::* kKlattFrameFields[klatt_frame_t::kFieldCount] = {
    &klatt_frame_t::f0,  &klatt_frame_t::av,  &klatt_frame_t::ah,   &klatt_frame_t::af,  &klatt_frame_t::tl,
    &klatt_frame_t::f8,  &klatt_frame_t::f7,  &klatt_frame_t::f6,   &klatt_frame_t::f5,  &klatt_frame_t::f4,
    &klatt_frame_t::f3,  &klatt_frame_t::f2,  &klatt_frame_t::f1,   &klatt_frame_t::b8,  &klatt_frame_t::b7,
    &klatt_frame_t::b6,  &klatt_frame_t::b5,  &klatt_frame_t::b4,   &klatt_frame_t::b3,  &klatt_frame_t::b2,
    &klatt_frame_t::b1,  &klatt_frame_t::ab,  &klatt_frame_t::a8f,  &klatt_frame_t::a7f, &klatt_frame_t::a6f,
    &klatt_frame_t::a5f, &klatt_frame_t::a4f, &klatt_frame_t::a3f,  &klatt_frame_t::a2f, &klatt_frame_t::a1f,
    &klatt_frame_t::b8f, &klatt_frame_t::b7f, &klatt_frame_t::b6f,  &klatt_frame_t::b5f, &klatt_frame_t::b4f,
    &klatt_frame_t::b3f, &klatt_frame_t::b2f, &klatt_frame_t::b1f,  &klatt_frame_t::fnz, &klatt_frame_t::bnz,
    &klatt_frame_t::fnp, &klatt_frame_t::bnp, &klatt_frame_t::oq,   &klatt_frame_t::anv, &klatt_frame_t::apv,
    &klatt_frame_t::atu, &klatt_frame_t::skew, &klatt_frame_t::gain,
};
// clang-format on

inline std::int32_t& klatt_frame_t::operator[](int row)
{
    return this->*kKlattFrameFields[row];
}

inline std::int32_t klatt_frame_t::operator[](int row) const
{
    return this->*kKlattFrameFields[row];
}

// A two-pole resonator (or, for the nasal zero, antiresonator): coefficients a, b, c and the
// last two outputs p1, p2 (the last two inputs for the antiresonator).
struct resonator_t {
    double a, b, c, p1, p2;
};

// Index of each resonator in klatt_global_t::resonators.
enum klatt_resonator_index : int {
    R_PAR_NASAL_POLE = 0,
    R_PAR_F1 = 1,  // parallel F1..F6 are 1..6
    R_CASC_F1 = 7, // cascade F1..F8 are 7..14
    R_CASC_NASAL_POLE = 15,
    R_NASAL_ZERO = 16,
    R_GLOTTAL = 17, // shapes the impulsive source
    R_DECIMATION = 18,
    R_OUTPUT_LOWPASS = 19,
    kResonatorCount = 20
};

// The state of one synthesis run. The caller zero-fills it, sets model, output_select,
// sample_rate, cascade_formants, glottal_source, flutter_percent, quiet, samples_per_frame and
// the sampled-source fields, then calls parwave_init() once and parwave() once per frame.
struct klatt_global_t {
    std::uint8_t model;            // 1 cascade/parallel, 2 all parallel (anything but 2 runs the cascade)
    std::uint8_t output_select;    // 0 normal output; 1..7 tap an internal signal
    std::int32_t sample_rate;      // output samples per second
    std::int32_t lowpass_freq;     // decimation low-pass centre, Hz
    std::int32_t lowpass_bw;       // decimation low-pass bandwidth, Hz
    std::int32_t cascade_formants; // 1..8
    std::int32_t glottal_source;   // 1 impulsive, 2 natural, 3 sampled
    std::int32_t flutter_percent;  // 0..100
    std::int32_t quiet;            // non-zero: no warnings in the log
    std::int32_t samples_per_frame;
    std::int32_t period_pos;   // position in the pitch period, quarter-rate samples
    std::int32_t sample_index; // output sample within the frame
    std::int32_t period_len;   // pitch period, quarter-rate samples (4 = unvoiced)
    std::int32_t open_len;     // open phase, quarter-rate samples
    std::int32_t mod_point;    // period position after which noise is halved
    std::int32_t noise_sample; // last raw random number
    double pulse_a, pulse_b;   // natural pulse shape state
    double neg_pi_t, two_pi_t; // -pi / rate and 2 pi / rate
    double tilt_keep, tilt_decay;
    double gain_bypass, gain_voice, gain_par_voice, gain_aspiration, gain_frication, gain_breath,
        gain_overall;
    std::int32_t source_sample_count;        // points of the sampled glottal waveform
    double source_sample_scale;              // factor applied to them
    const std::int32_t* source_samples;      // must hold source_sample_count values
    std::int32_t base_f0;                    // the frame's f0 in whole Hz before flutter
    resonator_t resonators[kResonatorCount]; // in klatt_resonator_index order
    // What the output limiting did over the run so far (parwave() adds to them, nothing resets
    // them): samples beyond the 16-bit range, and the largest magnitude before limiting.
    std::int64_t clipped_samples;
    double peak_magnitude;
};

class CKlattEngine
{
public:
    CKlattEngine();
    virtual ~CKlattEngine();

    // Prepares a run: decimation low-pass, 2 pi / rate, period counters and every filter memory.
    // The process-wide state (noise memory, pulse accumulators, skew sign, flutter counter,
    // noise generator) is not reset.
    void parwave_init(klatt_global_t* globals);

    // Synthesizes one frame: writes exactly globals->samples_per_frame samples to `output`
    // (which must hold that many ints), each limited to -32768..32767, and counts the limited
    // samples and the peak into globals->clipped_samples and peak_magnitude. Rewrites frame fields.
    void parwave(klatt_global_t* globals, klatt_frame_t* frame, int* output);

    // Puts the calling thread's carried-over state (noise memory, pulse accumulators, skew sign,
    // flutter counter, noise generator) back to its values at program start, so that the next
    // run equals a fresh program's first. The workbench never calls it; the Python module does
    // before each synthesis, so that every call gives the samples tessaphon-cli writes.
    static void resetCarriedState();

    // dB to linear gain: amptable[dB] * 0.001, and 0 for any dB outside 0..87.
    static double DBtoLIN(int dB);

    // Constant tables, laid out in KlattTables.cpp.
    static const double amptable[88];               // dB 0..87 -> linear gain x 1000
    static const std::int16_t B0[224];              // natural pulse shape for open phases 40..263
    static const double doublet[3];                 // impulsive excitation of period positions 0..2
    static const std::int32_t natural_samples[100]; // one period of a glottal flow derivative
};
