#pragma once
// MelCepstrum: the shape of a frame's spectrum in a few numbers, to compare the synthesis of an
// estimate with the recording: 25 ms Hann frames, 40 triangular mel filters from 60 Hz to a top
// frequency, log amplitudes, and their cosine transform (coefficients 1 .. 24; the level,
// coefficient 0, is left out, so the comparison sees the shape only).
// Re-entrant; any thread.
#include <array>
#include <cstddef>
#include <vector>

constexpr int kMelCoefficients = 24;
constexpr int kMelFilters = 40;
using MelFrame = std::array<double, kMelCoefficients>;
using MelSpectrum = std::array<double, kMelFilters>; // log amplitude (0.5 ln power) per filter

class MelCepstrum
{
public:
    MelCepstrum(double rate, double topHz);

    // One frame per centre (seconds); only those marked in `wanted` (when given) are computed,
    // the others are left zero.
    std::vector<MelFrame> frames(const float* x, std::size_t count, const std::vector<double>& centres,
                                 const std::vector<bool>* wanted = nullptr) const;

    // The log amplitudes of the filters, frame by frame, as frames() takes them (the same
    // frames computed and left zero).
    std::vector<MelSpectrum> logSpectra(const float* x, std::size_t count, const std::vector<double>& centres,
                                        const std::vector<bool>* wanted = nullptr) const;
    // Coefficient c (1 .. kMelCoefficients) of a frame's log amplitudes: the sum of each filter's
    // log amplitude times basis(c, filter).
    double coefficient(const MelSpectrum& logs, int c) const;
    double basis(int c, int filter) const { return m_dct[(c - 1) * kMelFilters + filter]; }

    // Distance of two frames in dB (10 / ln 10 x sqrt(2 x sum of squared differences)).
    static double distance(const MelFrame& a, const MelFrame& b);

    using Filter = std::vector<std::pair<int, double>>; // (bin, weight)
    const std::vector<Filter>& filters() const { return m_filters; }
    int fftSize() const { return m_nFftSize; }

private:
    MelSpectrum filterLogs(const std::vector<double>& power) const; // a frame's power spectrum filtered
    // The signal and the frames (indices into centres) that logSpectra() takes.
    struct Segment {
        const float* x;
        std::size_t count;
        const std::vector<double>& centres;
        const std::vector<std::size_t>& frames;
    };
    // Frames from .. to - 1 of the segment's list into `out`, two to a transform (from even).
    void analyse(const Segment& s, std::size_t from, std::size_t to, std::vector<MelSpectrum>& out) const;

    double m_dRate;
    int m_nLength;
    int m_nFftSize;
    std::vector<Filter> m_filters;
    std::vector<double> m_dct; // coefficient x filter
};
