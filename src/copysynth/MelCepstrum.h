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
using MelFrame = std::array<double, kMelCoefficients>;

class MelCepstrum
{
public:
    MelCepstrum(double rate, double topHz);

    // One frame per centre (seconds); only those marked in `wanted` (when given) are computed,
    // the others are left zero.
    std::vector<MelFrame> frames(const float* x, std::size_t count, const std::vector<double>& centres,
                                 const std::vector<bool>* wanted = nullptr) const;

    // Distance of two frames in dB (10 / ln 10 x sqrt(2 x sum of squared differences)).
    static double distance(const MelFrame& a, const MelFrame& b);

private:
    double m_dRate;
    int m_nLength;
    int m_nFftSize;
    std::vector<std::vector<std::pair<int, double>>> m_filters; // per filter: (bin, weight)
    std::vector<double> m_dct;                                  // coefficient x filter
};
