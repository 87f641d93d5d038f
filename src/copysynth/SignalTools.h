#pragma once
// Small signal tools of the copy synthesis, all re-entrant (no static work arrays, unlike the
// analysis library's routines), so an estimation may run on a worker thread:
// - Fft: complex radix-2 transform of one size, twiddles computed once;
// - resampled(): band-limited resampling by windowed-sinc interpolation;
// - frame levels and band levels of a signal on the copy synthesis's frame grid.
// Units: samples full scale +-1, rates in Hz, levels in dB (10 log10 of the mean square; a
// silent frame is kSilentDb).
#include <complex>
#include <cstddef>
#include <vector>

constexpr double kSilentDb = -150.0;

// Level in dB of a mean square; kSilentDb for zero.
double levelDb(double meanSquare);

class Fft
{
public:
    explicit Fft(int size); // size a power of two, 2 or more
    int size() const { return m_nSize; }
    // In-place forward transform (no scaling). `data` holds size() values.
    void forward(std::complex<double>* data) const;
    // In-place inverse transform, scaled by 1 / size().
    void inverse(std::complex<double>* data) const;
    // Power spectrum |X(k)|^2, k = 0 .. size()/2, of `count` real values (zero-padded or cut to
    // size()), written to `power` (size()/2 + 1 values). `work` is scratch of size() values.
    void powerSpectrum(const double* real, int count, std::complex<double>* work, double* power) const;
    // The power spectra of two real signals at once (packed as the real and imaginary parts of one
    // transform), as powerSpectrum() gives each.
    void powerSpectrumPair(const double* a, const double* b, int count, std::complex<double>* work,
                           double* powerA, double* powerB) const;
    // Autocorrelations r[0..lags-1] of two real signals of `count` values (zero-padded to size(),
    // which must be at least count + lags for the result to be free of wrap-around), with one
    // forward and one inverse transform for both. `work` is scratch of size() values.
    void autocorrelationPair(const double* a, const double* b, int count, std::complex<double>* work,
                             int lags, double* ra, double* rb) const;

private:
    template <bool Inverse> void transform(std::complex<double>* data) const;

    int m_nSize;
    std::vector<std::complex<double>> m_twiddles;
    std::vector<int> m_bitReverse;
};

// The smallest power of two that is at least n (and at least 2).
int fftSizeFor(int n);

// `count` samples at `fromRate` resampled to `toRate` by windowed-sinc interpolation, low-passed
// below the lower Nyquist frequency. Equal rates give a copy.
std::vector<float> resampled(const float* samples, std::size_t count, double fromRate, double toRate);

// The mel scale, 2595 log10(1 + hz / 700), and back: the filter banks of both mel cepstra.
double melOfHz(double hz);
double hzOfMel(double mel);

// The periodic Hann window of length n.
std::vector<double> hannWindow(int n);

// Copies `length` samples centred on `centre` (sample index, may lie near or past the ends:
// missing samples read as 0) into `out`, multiplied by `window` (length values).
void windowedSegment(const float* samples, std::size_t count, double centre, int length,
                     const std::vector<double>& window, double* out);

// The state of every frame on the best path of a dynamic programme: from the last frame's state
// of lowest score (`lowestWins`) or of highest score, back through the back-pointers `from`
// (from[f][s] = the state of frame f - 1 before state s of frame f). One entry per frame of
// `score`; empty for no frames.
std::vector<int> tracedBack(const std::vector<std::vector<double>>& score,
                            const std::vector<std::vector<int>>& from, bool lowestWins);

// Power spectra of Hann-windowed frames of one length, one frame (or two) at a time, and the level
// of a band of the last frame: levelDb of twice the band's power over (transform size x the
// window's energy). Holds its own scratch arrays: one object per thread.
class FrameSpectrum
{
public:
    explicit FrameSpectrum(int length); // length 2 or more samples
    // The frame of `count` samples centred on `centre` (sample index; see windowedSegment).
    void analyse(const float* samples, std::size_t count, double centre);
    // Two frames in one transform; bandLevelDb() reads the first, or the second when asked.
    void analysePair(const float* samples, std::size_t count, double centre, double secondCentre);
    // Level (dB) of the bins from lo to hi Hz (the edges rounded inwards) at `rate`.
    double bandLevelDb(double lo, double hi, double rate, bool second = false) const;

private:
    int m_nLength;
    Fft m_fft;
    std::vector<double> m_window;
    double m_dEnergy = 0.0;
    std::vector<double> m_segment, m_secondSegment, m_power, m_secondPower;
    std::vector<std::complex<double>> m_work;
};
