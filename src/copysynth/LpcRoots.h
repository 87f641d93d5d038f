#pragma once
// Linear prediction of one analysis frame and the formant candidates of its roots, for the
// copy synthesis's formant tracker. Its own root finder (Laguerre's method with deflation and
// polishing), independent of the analysis library's factoring, which keeps its own numbers.
// Re-entrant; any thread.
#include <complex>
#include <vector>

struct FormantCandidate {
    double freq; // Hz
    double bw;   // Hz
};

// Predictor coefficients a[0..order] (a[0] = 1, A(z) = 1 + sum a[j] z^-j) of n samples by the
// autocorrelation method (Levinson-Durbin). false for a frame without energy.
bool lpcCoefficients(const double* x, int n, int order, double* a);

// The roots of the polynomial c[0] z^degree + c[1] z^(degree-1) + ... + c[degree] (c[0] != 0).
std::vector<std::complex<double>> polynomialRoots(const double* c, int degree);

// Formant candidates of a predictor of `order` at `rate`: the roots in the upper half plane,
// as frequency and bandwidth, sorted by frequency; roots at 0 Hz and at the Nyquist frequency
// are left out.
std::vector<FormantCandidate> formantCandidates(const double* a, int order, double rate);
