#pragma once
// CMathFunc: the analysis toolbox of every analysis view. Spectra (FFT, window, pre-emphasis,
// levels in dB, spline resampling onto a display grid), LPC (coefficients, envelope, formants
// from the roots of the predictor polynomial) and cepstral pitch.
//
// The object has no fields; callers create one on the spot. The routines keep their work arrays
// per thread (and the pitch routine deliberately reads what its previous call on the same thread
// left in them, see DoPitchCepstrumNewFloat), so any thread may analyse while another does.
// Levels are 10*log10(re^2 + im^2) dB, 0 for zero power. Frequencies are in Hz, sample rates
// in samples per second. Nothing here throws; sizes beyond the work arrays are refused (with a
// diagnostic line) or clamped as each routine says.
//
// Arrays passed in are the caller's: each routine states how many elements it reads and writes.
#include "analysis/AnalysisRecords.h"

class CMathFunc
{
public:
    // Room of the per-thread transform arrays; transforms of DoFFT_Real may use 8192 points.
    static constexpr int kWorkArrayLength = 8202;
    static constexpr int kMaxTransformLength = 8192;
    // Largest transform of the pitch routine (2^12).
    static constexpr int kMaxPitchTransform = 4096;
    // Room of the spline arrays (1-based): at most 11999 points can be smoothed.
    static constexpr int kSplineArrayLength = 12000;

    CMathFunc() = default;
    virtual ~CMathFunc() = default;

    // ----- spectrum -----

    // In-place forward complex FFT of 2^m points, X[k] = sum x[j] e^(-2 pi i jk/N), no scaling.
    // re, im: 2^m elements each. m < 1 leaves the arrays as they are; m > 24 is refused.
    void FFT_CODE_REAL(double* re, double* im, int m);

    // Short-time level spectrum of one frame; returns 0. The result replaces the start of data.
    // n: frame length, 1..8192 (others are refused and data is left untouched). window 1 is the
    // periodic Hamming window, anything else rectangular. preEmphasis p > 0 takes the forward
    // difference x[i+1] - p x[i], so data must then hold n + 1 samples (else n).
    // smooth = 0: data[0 .. n/2-1] receive the levels of bins 0 .. n/2-1.
    // smooth != 0: data[0 .. nOut-1] receive the level spectrum resampled by a natural cubic
    // spline so that point k stands for k * frequencyRange / nOut Hz; data must then hold
    // max(n/2, nOut) elements besides the input.
    int DoFFT_Real(double* data, int n, double preEmphasis, int window, unsigned char smooth, int nOut,
                   int frequencyRange, double sampleRate);

    // Second derivatives of the cubic spline through (x[i], y[i]), i = 1..n (element 0 unused).
    // x, y, y2: n + 1 elements. yp1, ypn: end slopes; values above 9.9e29 mean a natural end.
    // With n < 2 every y2[1..n] is set to 0.
    void spline(const double* x, const double* y, int n, double yp1, double ypn, double* y2);

    // Evaluates the spline of spline() at x into *y; returns 0, or 1 (with *y untouched) when
    // the two abscissae around x are equal or n < 2. xa, ya, y2a: n + 1 elements, 1-based.
    // Abscissae beyond the ends extrapolate with the end polynomial.
    int splint(const double* xa, const double* ya, const double* y2a, int n, double x, double* y);

    // The smoothing stage of DoFFT_Real alone: spline through data[0 .. n/2-1] (at most 11999
    // points), then data[0 .. nOut-1] = the spline at k * frequencyRange / nOut Hz.
    // data: max(n/2, nOut) elements.
    void Smooth(double* data, int n, int nOut, int frequencyRange, double sampleRate);

    // Placeholder for an integer transform; does nothing.
    void FFT_CODE_INTEGER(long*, long*, long) {}

    // ----- LPC -----

    // LPC of x[0 .. n-1] by the autocorrelation method (Schur recursion) into the calling
    // thread's lpcout record, which is returned. An order above 400 is reported with the line
    // "Requested LPC order too large" and computed as 400; an order below 0 is taken as 0.
    // A frame of silence gives non-finite coefficients (no exception).
    lpcout* autolpc(const double* x, int n, int order);

    // Window and pre-emphasis as DoFFT_Real (data holds n + 1 samples when preEmphasis > 0),
    // LPC of the given order (at most 400), then one of three modes:
    //  - formants != 0: factors the predictor polynomial, keeps pole pairs of at most 600 Hz
    //    bandwidth as formants, sets lp_Roots to the record and returns it (nullptr when the
    //    polynomial could not be factored); data is left untouched.
    //  - formants == 0 and coefficientsOnly == 0: the level of the inverse filter A on a
    //    256-point transform replaces data[0 .. 127] (first 256 coefficients enter the
    //    transform); with smooth, data[0 .. nOut-1] are resampled as in DoFFT_Real.
    //    data must hold max(n + 1, 128, nOut) elements. Returns nullptr.
    //  - otherwise nothing more: the coefficients are in the thread's lpcout. Returns nullptr.
    const RootRecord* DoLPC(double* data, int order, int n, double preEmphasis, int window,
                            unsigned char smooth, int nOut, int frequencyRange, double sampleRate,
                            unsigned char formants, unsigned char coefficientsOnly);

    // The calling thread's lpcout: the result of its last autolpc or DoLPC (the residual
    // energy with it).
    const lpcout* lastLpc() const;

    // Factors poly[0 .. degree] (highest power first, poly[0] = 1) into quadratic factors and
    // returns the calling thread's root record, or nullptr when factoring fails. Pole pairs of
    // at most maxBandwidth Hz become formants. degree < 2 gives an empty record; a degree above
    // 400 is refused (nullptr). poly is not modified.
    const RootRecord* rootsub(int degree, double maxBandwidth, const double* poly, double sampleRate);

    // Removes one factor from a[0 .. n] (n >= 3): returns 1 for a real root (*p = the root,
    // quotient[0 .. n-1]), 2 for a quadratic x^2 - *p x - *q (quotient[0 .. n-2]), 0 on
    // failure. quotient must hold n + 1 elements (it is used as work space).
    int factor(int n, const double* a, double* quotient, double* p, double* q);

    // Real root in [-1.2, 1.2] of a[0 .. n], else one of the reversed polynomial (returned as
    // its reciprocal). Returns 1 with *root set and quotient[0 .. n-1] = a / (x - root), leading
    // coefficient 1 when a[0] = 1; 0 when no sign change is found. quotient: n elements.
    int rfactr(int n, const double* a, double* quotient, double* root, double tolerance);

    // Bairstow iteration for a factor x^2 - r x - s of a[0 .. n] (n >= 3), from r = 2, s = -1,
    // at most `budget` passes. Returns 1 with *r, *s and quotient[0 .. n-2] on convergence.
    // quotient: n + 1 elements.
    int barstw(int n, const double* a, double* quotient, double tolerance, int budget, double* r, double* s);

    // Fallback quadratic search with the origin shifted by 0, 0.5, 1, 1.5 and 2 in turn, for
    // x^2 - r x - s of a[0 .. n] (n >= 3). Returns 1 with *r, *s and quotient[0 .. n-2], else 0.
    // quotient: n + 1 elements (it holds the shifted polynomial while searching).
    int frwbkw(int n, const double* a, double* quotient, double* r, double* s, int budget, double tolerance);

    // Frequency and bandwidth of the pole pair of z^2 + p z + q at sampleRate.
    PolePair cmpfb2(double p, double q, double sampleRate);

    // a[0] x^n + a[1] x^(n-1) + ... + a[n] by Horner's rule; a: n + 1 elements.
    double rvalue(int n, const double* a, double x);

    // pi/2 - atan(x / sqrt(1 - x^2)), exactly 0 for x = 1.
    double arccos(double x);

    // ----- pitch -----

    // Cepstral pitch of the window of windowLength samples starting at sample trunc(start) of
    // samples[0 .. length-1] (a negative or non-finite start counts as 0). Returns the pitch in
    // Hz when the cepstral peak lies in lowHz .. highHz, 0 when it does not, -1 when fftSize is
    // not 128, 256, ..., 4096. Near the end of the recording fewer samples are refreshed and the
    // rest of the window holds what the previous call on this thread left there (intended: the
    // pitch track depends on it).
    double DoPitchCepstrumNewFloat(const float* samples, double start, double length, double sampleRate,
                                   double lowHz, double highHz, int fftSize, int windowLength);
};
