#pragma once
// Result records of the LPC and root-finding routines of CMathFunc.
//
// Each thread has its own instance of every record (the routines hand out pointers to the
// calling thread's instance), so a spectrogram computed on a worker thread and a slice computed
// on the main thread never overwrite each other's results. A pointer handed out stays valid for
// the life of the thread and is overwritten by the next call of the same routine on that thread.
#include <cstdint>

// Largest LPC order the records have room for.
inline constexpr int kMaxLpcOrder = 400;
// Number of quadratic factors (and so of formant candidates) a root record can hold.
inline constexpr int kMaxRootFactors = 200;

// The LPC result of one frame: reflection coefficients k[1..order] (k[0] unused), predictor
// coefficients a[0..order] with a[0] = 1 (inverse filter A(z) = 1 + sum a[j] z^-j), and the
// residual energy (same units as the squared input samples times the frame length).
struct lpcout {
    std::int32_t order = 0;
    double k[kMaxLpcOrder + 1] = {};
    double a[kMaxLpcOrder + 1] = {};
    double energy = 0.0;
};

// The factors of a predictor polynomial and the formants they give. Factor i is
// z^2 + p[i] z + q[i], one of whose roots is zreal[i] + j zimag[i]. The formant list holds the
// pole pairs whose bandwidth passed the routine's limit, in Hz, sorted by ascending frequency.
struct RootRecord {
    std::int32_t factorCount = 0;
    double p[kMaxRootFactors] = {};
    double q[kMaxRootFactors] = {};
    double zreal[kMaxRootFactors] = {};
    double zimag[kMaxRootFactors] = {};
    std::int32_t formantCount = 0;
    double frequency[kMaxRootFactors] = {};
    double bandwidth[kMaxRootFactors] = {};
};

// One pole pair turned into a root, a frequency and a bandwidth (both in Hz).
struct PolePair {
    double zreal = 0.0;
    double zimag = 0.0;
    double tfreq = 0.0;
    double tbandw = 0.0;
};

// The root record of the calling thread's last formant-mode DoLPC: nullptr before the first
// call and after a frame whose polynomial could not be factored.
extern thread_local const RootRecord* lp_Roots;
