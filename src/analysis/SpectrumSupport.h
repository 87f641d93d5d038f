#pragma once
// Pieces the spectrum, LPC and pitch routines of CMathFunc share: the level of a bin in dB, the
// windowed and pre-emphasized frame, and the per-thread transform arrays. Internal to the
// analysis library.
#include <cmath>
#include <vector>

namespace spectrum
{

// 2 pi as the analysis routines take it.
inline constexpr double kTwoPi = 6.2831853071796;

// 10 log10(re^2 + im^2), or 0 for zero power (silence reads 0 dB, not minus infinity).
inline double levelDb(double re, double im)
{
    const double power = re * re + im * im;
    return power != 0.0 ? 10.0 * std::log10(power) : 0.0;
}

// The transform arrays of the calling thread: real and imaginary part, each of
// CMathFunc::kWorkArrayLength doubles, zero when the thread first uses them.
struct TransformArrays {
    std::vector<double> dRealpart, dImagpart;
};
TransformArrays& transformArrays();

// The first `count` points (at most n) of the calling thread's window of n points: the periodic
// Hamming window for window 1, else all ones. The last few tables made are kept, so that a
// spectrogram alternating between its FFT and its LPC frame length does not recompute them for
// every column. The pointer stays valid until the thread asks for four other tables.
const double* windowTable(int n, int window, int count);

// re[i] = (x[i+1] - p x[i]) w[i] when p > 0, else x[i] w[i], for i = 0 .. n-1, w as windowTable.
// Reads n + 1 samples of x when p > 0.
void windowFrame(const double* x, int n, double preEmphasis, int window, double* re);

// Bins 0 .. N/2 of the forward transform of the real sequence x[0 .. N-1], N = 2^m, 1 <= m <= 13:
// the values FFT_CODE_REAL gives for (x, 0), computed as one complex transform of half the size.
// re, im: N/2 + 1 elements; x is not modified. The other bins are the conjugates of these.
void realSpectrum(const double* x, int m, double* re, double* im);

// Smallest m >= 1 with 2^m >= n.
int transformOrder(int n);

} // namespace spectrum
